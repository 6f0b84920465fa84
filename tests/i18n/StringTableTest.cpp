// Checks every string table as the program carries it (the compiled-in resource): one key set
// for all translations, placeholders intact, no gaps, nothing left untranslated by mistake.

#include "i18n/StringTable.h"
#include "i18n/LanguageList.h"
#include "i18n/LanguageManager.h"
#include "sim/MemoryUserDefaults.h"

#include <QFile>
#include <QRegularExpression>
#include <QSet>

#include <gtest/gtest.h>

#include <algorithm>

namespace orvanta::testing {
namespace {

struct Table
{
    QString tableName;
    i18n::StringTable texts;

    bool isEnglish() const { return tableName == u"en"; }
};

const QList<Table>& tables()
{
    static const QList<Table> loaded = [] {
        QList<Table> all;
        for (const auto& entry : i18n::kLanguageList) {
            all.append({entry.tableName.toString(), i18n::loadStringTable(entry.tableName)});
        }
        return all;
    }();
    return loaded;
}

// What English shows for a key: the English table's text for a named key, else the key itself.
QString englishTextOf(const QString& key)
{
    return tables().front().texts.value(key, key);
}

std::string where(const Table& table, const QString& key)
{
    return table.tableName.toStdString() + " / " + key.toStdString();
}

QList<QChar::Script> scriptsOf(const QString& tableName)
{
    static const QHash<QString, QList<QChar::Script>> scripts{
        {QStringLiteral("zh"), {QChar::Script_Han}},
        {QStringLiteral("ja"), {QChar::Script_Hiragana, QChar::Script_Katakana, QChar::Script_Han}},
        {QStringLiteral("ko"), {QChar::Script_Hangul}},
        {QStringLiteral("ru"), {QChar::Script_Cyrillic}},
        {QStringLiteral("uk"), {QChar::Script_Cyrillic}},
        {QStringLiteral("ky"), {QChar::Script_Cyrillic}},
        {QStringLiteral("ar"), {QChar::Script_Arabic}},
        {QStringLiteral("hi"), {QChar::Script_Devanagari}},
        {QStringLiteral("th"), {QChar::Script_Thai}},
        {QStringLiteral("he"), {QChar::Script_Hebrew}},
    };
    return scripts.value(tableName, {QChar::Script_Latin});
}

// Texts that rightly read the same as in English.
bool justifiedAsEnglish(const QString& tableName, const QString& key)
{
    // "OK" is the usual label of the affirmative button in most languages, and "ms" the
    // international symbol for milliseconds in languages written in Latin letters.
    if (key == u"OK" || (key == u"%@ ms" && scriptsOf(tableName) == QList<QChar::Script>{QChar::Script_Latin})) {
        return true;
    }
    // Dutch has the word "later" too, and French the word "microphone".
    return (tableName == u"nl" && key == u"Later") || (tableName == u"fr" && key == u"Microphone");
}

TEST(StringTables, EveryListedLanguageHasItsOwnTableWithEachKeyOnce)
{
    QSet<QString> names;
    QSet<QString> files;
    for (const auto& entry : i18n::kLanguageList) {
        names.insert(entry.displayName.toString());
        files.insert(entry.tableName.toString());
        // One member per line: a key written twice would count twice here but once in the table.
        QFile file(i18n::stringTablePath(entry.tableName));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
        const auto members = QString::fromUtf8(file.readAll()).count(QRegularExpression(QStringLiteral("\n\\s*\"")));
        EXPECT_EQ(members, i18n::loadStringTable(entry.tableName).size()) << file.fileName().toStdString();
    }
    EXPECT_EQ(names.size(), static_cast<qsizetype>(i18n::kLanguageList.size()));
    EXPECT_EQ(files.size(), names.size());

    sim::MemoryUserDefaults defaults;
    const i18n::LanguageManager manager(defaults);
    for (qsizetype i = 0; i < tables().size(); ++i) {
        EXPECT_EQ(manager.translations().value(i18n::kLanguageList[static_cast<std::size_t>(i)].displayName.toString()),
                  tables()[i].texts);
    }
}

TEST(StringTables, EveryTranslationHoldsTheSameKeysAndEnglishOnlyWhatItCannotShowAsTheKey)
{
    const auto keySet = [](const Table& table) {
        const auto keys = table.texts.keys();
        return QSet<QString>(keys.begin(), keys.end());
    };
    const QSet<QString> translated = keySet(tables()[1]);
    EXPECT_GT(translated.size(), 60);
    for (const auto& table : tables()) {
        if (!table.isEnglish()) {
            EXPECT_EQ(keySet(table), translated) << table.tableName.toStdString();
        }
    }
    for (auto entry = tables().front().texts.cbegin(); entry != tables().front().texts.cend(); ++entry) {
        // A named key ("delay_note") holds its English text; any other key is its own English text.
        const bool named = entry.key().contains(u'_');
        EXPECT_EQ(entry.value() != entry.key(), named) << entry.key().toStdString();
        if (named) {
            EXPECT_TRUE(translated.contains(entry.key())) << entry.key().toStdString();
        }
    }
}

TEST(StringTables, TextsKeepTheirPlaceholdersAndHaveNoGapsOrPadding)
{
    for (const auto& table : tables()) {
        for (auto entry = table.texts.cbegin(); entry != table.texts.cend(); ++entry) {
            const QString& text = entry.value();
            const QString english = englishTextOf(entry.key());
            EXPECT_EQ(text.count(QStringLiteral("%d")), english.count(QStringLiteral("%d")))
                << where(table, entry.key());
            EXPECT_EQ(text.count(QStringLiteral("%@")), english.count(QStringLiteral("%@")))
                << where(table, entry.key());
            // Every '%' starts one of the two placeholders the callers fill in.
            EXPECT_EQ(text.count(u'%'), text.count(QStringLiteral("%d")) + text.count(QStringLiteral("%@")))
                << where(table, entry.key());
            EXPECT_FALSE(text.trimmed().isEmpty() || text.front().isSpace()) << where(table, entry.key());
            if (!entry.key().back().isSpace()) {
                EXPECT_FALSE(text.back().isSpace()) << where(table, entry.key());
            }
        }
    }
}

TEST(StringTables, StepsAreThreeNumberedLinesNamingTheProductAndTheKeyNotesOneParagraph)
{
    for (const auto& table : tables()) {
        for (const QString& key : {QStringLiteral("instruction_text"), QStringLiteral("keys_taken_text")}) {
            const QStringList steps = table.texts.value(key).split(u'\n');
            ASSERT_EQ(steps.size(), 3) << where(table, key);
            for (qsizetype i = 0; i < steps.size(); ++i) {
                EXPECT_TRUE(steps[i].startsWith(QStringLiteral("%1. ").arg(i + 1))) << where(table, key);
                EXPECT_GT(steps[i].trimmed().size(), 3) << where(table, key);
            }
            EXPECT_TRUE(table.texts.value(key).contains(QStringLiteral("Orvanta"))) << where(table, key);
        }
        for (const QString& key : {QStringLiteral("keys_taken_reason"), QStringLiteral("keys_wayland_text")}) {
            ASSERT_TRUE(table.texts.contains(key)) << where(table, key);
            EXPECT_FALSE(table.texts.value(key).contains(u'\n')) << where(table, key);
        }
        const QString wayland = table.texts.value(QStringLiteral("keys_wayland_text"));
        EXPECT_TRUE(wayland.contains(QStringLiteral("Wayland")) && wayland.contains(QStringLiteral("X11")))
            << table.tableName.toStdString();
    }
}

TEST(StringTables, TheBluetoothDevicePrefixEndsInAColon)
{
    const QString key = QStringLiteral("Bluetooth device detected: ");
    for (const auto& table : tables()) {
        const bool fullWidth = table.tableName == u"zh" || table.tableName == u"ja";
        EXPECT_TRUE(table.texts.value(key, key).endsWith(fullWidth ? QStringLiteral("：") : QStringLiteral(": ")))
            << table.tableName.toStdString();
    }
}

TEST(StringTables, EachTranslationIsWrittenInItsLanguagesScriptAndNothingIsLeftInEnglishWithoutReason)
{
    for (const auto& table : tables()) {
        if (table.isEnglish()) {
            continue;
        }
        const auto scripts = scriptsOf(table.tableName);
        for (auto entry = table.texts.cbegin(); entry != table.texts.cend(); ++entry) {
            if (justifiedAsEnglish(table.tableName, entry.key())) {
                continue;
            }
            EXPECT_NE(entry.value(), englishTextOf(entry.key())) << where(table, entry.key());
            const auto codePoints = entry.value().toUcs4();
            EXPECT_TRUE(std::any_of(codePoints.begin(), codePoints.end(), [&scripts](char32_t c) {
                return scripts.contains(QChar::script(c));
            })) << where(table, entry.key());
        }
    }
}

} // namespace
} // namespace orvanta::testing
