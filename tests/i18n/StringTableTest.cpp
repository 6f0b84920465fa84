// Checks every string table as the program carries it (the compiled-in resource): the right
// keys in the right order, placeholders intact, no gaps, nothing left untranslated by mistake.

#include "ExpectedKeys.h"
#include "ExpectedLanguages.h"
#include "OrderedJsonObject.h"
#include "QtPrinters.h"

#include "i18n/LanguageList.h"
#include "i18n/LanguageManager.h"
#include "i18n/StringTable.h"
#include "sim/services/MemoryUserDefaults.h"

#include <QFile>
#include <QSet>

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

namespace orvanta::testing {
namespace {

struct TableFile
{
    QString displayName;
    QString tableName;
    QList<JsonMember> members;

    bool isEnglish() const { return tableName == u"en"; }
    std::string label() const { return tableName.toStdString(); }
};

QList<TableFile> loadTableFiles()
{
    QList<TableFile> tables;
    for (const auto& language : kExpectedLanguages) {
        QFile file(i18n::stringTablePath(language.tableName));
        const bool opened = file.open(QIODevice::ReadOnly);
        const auto members = opened ? readOrderedJsonObject(file.readAll()) : std::nullopt;
        EXPECT_TRUE(members) << "unreadable table " << file.fileName().toStdString();
        tables.append(
            {language.displayName.toString(), language.tableName.toString(), members.value_or(QList<JsonMember>{})});
    }
    return tables;
}

const QList<TableFile>& tableFiles()
{
    static const QList<TableFile> tables = loadTableFiles();
    return tables;
}

QStringList expectedKeysOf(const TableFile& table)
{
    QStringList keys;
    for (const auto& expected : kExpectedKeys) {
        if (table.isEnglish() ? expected.inEnglishTable : expected.translated) {
            keys.append(expected.key.toString());
        }
    }
    return keys;
}

QStringList keysOf(const TableFile& table)
{
    QStringList keys;
    for (const auto& [key, text] : table.members) {
        keys.append(key);
    }
    return keys;
}

// The text a table holds for a key, if it holds the key.
std::optional<QString> textOf(const TableFile& table, QStringView key)
{
    const auto member =
        std::find_if(table.members.begin(), table.members.end(), [key](const JsonMember& m) { return m.first == key; });
    if (member == table.members.end()) {
        return std::nullopt;
    }
    return member->second;
}

// Three lines, "1. ", "2. ", "3. " in ASCII digits, one of them naming the product in Latin letters.
void expectThreeNumberedStepsNaming(const TableFile& table, QStringView key, const QString& name)
{
    const auto text = textOf(table, key);
    ASSERT_TRUE(text) << table.label() << " / " << key.toString().toStdString();
    const QStringList steps = text->split(u'\n');
    ASSERT_EQ(steps.size(), 3) << table.label() << " / " << key.toString().toStdString();
    for (qsizetype i = 0; i < steps.size(); ++i) {
        EXPECT_TRUE(steps[i].startsWith(QStringLiteral("%1. ").arg(i + 1)))
            << table.label() << " / " << key.toString().toStdString() << " step " << i + 1;
        EXPECT_GT(steps[i].trimmed().size(), 3)
            << table.label() << " / " << key.toString().toStdString() << " step " << i + 1 << " is empty";
    }
    EXPECT_TRUE(text->contains(name)) << table.label() << " / " << key.toString().toStdString();
}

QList<QChar::Script> scriptsOf(const QString& tableName);

// Texts that rightly read the same as in English.
bool justifiedAsEnglish(const QString& tableName, const QString& key)
{
    // "OK" is the usual label of the affirmative button in most languages.
    if (key == u"OK") {
        return true;
    }
    // "ms" is the international symbol for milliseconds in languages written in Latin letters.
    if (key == u"%@ ms" && scriptsOf(tableName) == QList<QChar::Script>{QChar::Script_Latin}) {
        return true;
    }
    // Dutch has the word "later" too, and French the word "microphone".
    return (tableName == u"nl" && key == u"Later") || (tableName == u"fr" && key == u"Microphone");
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

bool writtenIn(const QString& text, const QList<QChar::Script>& scripts)
{
    const auto codePoints = text.toUcs4();
    return std::any_of(codePoints.begin(), codePoints.end(),
                       [&scripts](char32_t c) { return scripts.contains(QChar::script(c)); });
}

// Every '%' must start one of the two placeholders the callers fill in.
bool onlyKnownPlaceholders(const QString& text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'%' && (i + 1 == text.size() || (text[i + 1] != u'd' && text[i + 1] != u'@'))) {
            return false;
        }
    }
    return true;
}

TEST(StringTables, TheLanguageListNamesEveryTableOnce)
{
    ASSERT_EQ(i18n::kLanguageList.size(), kExpectedLanguages.size());
    QSet<QString> names;
    QSet<QString> files;
    for (std::size_t i = 0; i < kExpectedLanguages.size(); ++i) {
        EXPECT_EQ(i18n::kLanguageList[i].displayName, kExpectedLanguages[i].displayName) << i;
        EXPECT_EQ(i18n::kLanguageList[i].tableName, kExpectedLanguages[i].tableName) << i;
        names.insert(i18n::kLanguageList[i].displayName.toString());
        files.insert(i18n::kLanguageList[i].tableName.toString());
        EXPECT_TRUE(QFile::exists(i18n::stringTablePath(i18n::kLanguageList[i].tableName))) << i;
    }
    EXPECT_EQ(names.size(), 23);
    EXPECT_EQ(files.size(), 23);
}

TEST(StringTables, KeysAreTheExpectedOnesInTableOrder)
{
    QSet<QString> allKeys;
    for (const auto& table : tableFiles()) {
        const QStringList keys = keysOf(table);
        EXPECT_EQ(keys, expectedKeysOf(table)) << table.label();
        EXPECT_EQ(keys.size(), table.isEnglish() ? 64 : 74) << table.label();
        EXPECT_EQ(QSet<QString>(keys.begin(), keys.end()).size(), keys.size()) << table.label() << ": repeated key";
        allKeys.unite(QSet<QString>(keys.begin(), keys.end()));
    }
    EXPECT_EQ(allKeys.size(), 78);
}

TEST(StringTables, TheManagerHoldsExactlyTheCompiledTables)
{
    sim::MemoryUserDefaults defaults;
    const i18n::LanguageManager manager(defaults);
    for (const auto& table : tableFiles()) {
        QHash<QString, QString> expected;
        for (const auto& [key, text] : table.members) {
            expected.insert(key, text);
        }
        EXPECT_EQ(manager.translations().value(table.displayName), expected) << table.label();
    }
}

TEST(StringTables, EnglishShowsEachKeyAsItsOwnText)
{
    for (const auto& table : tableFiles()) {
        if (!table.isEnglish()) {
            continue;
        }
        for (const auto& [key, text] : table.members) {
            EXPECT_EQ(text, englishTextOf(key)) << key.toStdString();
        }
    }
}

TEST(StringTables, PlaceholdersAreKept)
{
    for (const auto& table : tableFiles()) {
        for (const auto& [key, text] : table.members) {
            const std::string where = table.label() + " / " + key.toStdString();
            EXPECT_EQ(text.count(QStringLiteral("%d")), key.count(QStringLiteral("%d"))) << where;
            EXPECT_EQ(text.count(QStringLiteral("%@")), key.count(QStringLiteral("%@"))) << where;
            EXPECT_TRUE(onlyKnownPlaceholders(text)) << where;
        }
    }
}

TEST(StringTables, InstructionsAreThreeNumberedStepsNamingTheProduct)
{
    for (const auto& table : tableFiles()) {
        expectThreeNumberedStepsNaming(table, kInstructionKey, QStringLiteral("'Orvanta'"));
    }
}

TEST(StringTables, TakenKeysStepsAreThreeNumberedStepsNamingTheProduct)
{
    for (const auto& table : tableFiles()) {
        expectThreeNumberedStepsNaming(table, kKeysTakenKey, QStringLiteral("Orvanta"));
    }
}

TEST(StringTables, TheVolumeKeyNotesAreSingleParagraphs)
{
    for (const auto& table : tableFiles()) {
        for (const QStringView key : {kKeysTakenReasonKey, kKeysWaylandKey}) {
            const auto text = textOf(table, key);
            if (!text) {
                ADD_FAILURE() << table.label() << " / " << key.toString().toStdString() << " missing";
                continue;
            }
            EXPECT_FALSE(text->contains(u'\n')) << table.label() << " / " << key.toString().toStdString();
        }
    }
}

TEST(StringTables, TheWaylandNoteNamesBothSessionKindsAsTheyAre)
{
    for (const auto& table : tableFiles()) {
        const auto text = textOf(table, kKeysWaylandKey);
        if (!text) {
            ADD_FAILURE() << table.label() << " / " << kKeysWaylandKey.toString().toStdString() << " missing";
            continue;
        }
        EXPECT_TRUE(text->contains(QStringLiteral("Wayland"))) << table.label();
        EXPECT_TRUE(text->contains(QStringLiteral("X11"))) << table.label();
    }
}

TEST(StringTables, TheBluetoothDevicePrefixEndsInAColon)
{
    const QString key = QStringLiteral("Bluetooth device detected: ");
    for (const auto& table : tableFiles()) {
        const auto member = std::find_if(table.members.begin(), table.members.end(),
                                         [&key](const JsonMember& m) { return m.first == key; });
        ASSERT_NE(member, table.members.end()) << table.label();
        const bool fullWidth = table.tableName == u"zh" || table.tableName == u"ja";
        EXPECT_TRUE(member->second.endsWith(fullWidth ? QStringLiteral("：") : QStringLiteral(": "))) << table.label();
    }
}

TEST(StringTables, NoTextIsEmptyOrPaddedWhereItsKeyIsNot)
{
    for (const auto& table : tableFiles()) {
        for (const auto& [key, text] : table.members) {
            const std::string where = table.label() + " / " + key.toStdString();
            EXPECT_FALSE(text.trimmed().isEmpty()) << where;
            EXPECT_FALSE(text.front().isSpace()) << where;
            if (!key.back().isSpace()) {
                EXPECT_FALSE(text.back().isSpace()) << where;
            }
        }
    }
}

TEST(StringTables, NothingIsLeftInEnglishWithoutReason)
{
    for (const auto& table : tableFiles()) {
        if (table.isEnglish()) {
            continue;
        }
        for (const auto& [key, text] : table.members) {
            if (!justifiedAsEnglish(table.tableName, key)) {
                EXPECT_NE(text, englishTextOf(key)) << table.label() << " / " << key.toStdString();
            }
        }
    }
}

TEST(StringTables, EachTableIsWrittenInItsLanguagesScript)
{
    for (const auto& table : tableFiles()) {
        const auto scripts = scriptsOf(table.tableName);
        for (const auto& [key, text] : table.members) {
            if (!justifiedAsEnglish(table.tableName, key)) {
                EXPECT_TRUE(writtenIn(text, scripts)) << table.label() << " / " << key.toStdString();
            }
        }
    }
}

TEST(StringTables, OnlyArabicAndHebrewAreWrittenRightToLeft)
{
    int rightToLeft = 0;
    for (const auto& language : kExpectedLanguages) {
        const QString name = language.displayName.toString();
        EXPECT_EQ(i18n::LanguageManager::layoutDirectionOf(name), language.direction) << name.toStdString();
        rightToLeft += i18n::LanguageManager::layoutDirectionOf(name) == Qt::RightToLeft ? 1 : 0;
    }
    EXPECT_EQ(rightToLeft, 2);
    EXPECT_EQ(i18n::LanguageManager::layoutDirectionOf(QStringLiteral("Klingon")), Qt::LeftToRight);
}

} // namespace
} // namespace orvanta::testing
