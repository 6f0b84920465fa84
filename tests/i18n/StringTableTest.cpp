// Every string table as the program carries it: one key set, placeholders intact, each text in
// its language.

#include "i18n/StringTable.h"
#include "i18n/LanguageList.h"

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
        {"zh", {QChar::Script_Han}},      {"ja", {QChar::Script_Hiragana, QChar::Script_Katakana, QChar::Script_Han}},
        {"ko", {QChar::Script_Hangul}},   {"ru", {QChar::Script_Cyrillic}},
        {"uk", {QChar::Script_Cyrillic}}, {"ky", {QChar::Script_Cyrillic}},
        {"ar", {QChar::Script_Arabic}},   {"hi", {QChar::Script_Devanagari}},
        {"th", {QChar::Script_Thai}},     {"he", {QChar::Script_Hebrew}}};
    return scripts.value(tableName, {QChar::Script_Latin});
}

// Texts that rightly read the same as in English.
bool justifiedAsEnglish(const QString& tableName, const QString& key)
{
    // "OK" is the usual button label, and "ms" the symbol in Latin script; Dutch says "later" too,
    // and French "microphone".
    if (key == u"OK" || (key == u"%@ ms" && scriptsOf(tableName) == QList<QChar::Script>{QChar::Script_Latin})) {
        return true;
    }
    return (tableName == u"nl" && key == u"Later") || (tableName == u"fr" && key == u"Microphone");
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

// Each text keeps its placeholders; each translation is written in its language's script, and
// nothing is left in English without reason.
TEST(StringTables, TextsKeepTheirPlaceholdersAndEachTranslationIsInItsLanguage)
{
    for (const auto& table : tables()) {
        const auto scripts = scriptsOf(table.tableName);
        for (auto entry = table.texts.cbegin(); entry != table.texts.cend(); ++entry) {
            const QString& text = entry.value();
            const QString english = englishTextOf(entry.key());
            for (const QString& placeholder : {QStringLiteral("%d"), QStringLiteral("%@")}) {
                EXPECT_EQ(text.count(placeholder), english.count(placeholder)) << where(table, entry.key());
            }
            // Every '%' starts one of the two placeholders the callers fill in.
            EXPECT_EQ(text.count(u'%'), text.count(QStringLiteral("%d")) + text.count(QStringLiteral("%@")))
                << where(table, entry.key());
            if (table.isEnglish() || justifiedAsEnglish(table.tableName, entry.key())) {
                continue;
            }
            EXPECT_NE(text, english) << where(table, entry.key());
            const auto codePoints = text.toUcs4();
            EXPECT_TRUE(std::any_of(codePoints.begin(), codePoints.end(), [&scripts](char32_t c) {
                return scripts.contains(QChar::script(c));
            })) << where(table, entry.key());
        }
    }
}

} // namespace
} // namespace orvanta::testing
