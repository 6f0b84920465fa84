#pragma once

// The languages of the interface, in the order the language picker offers them. A language is
// known everywhere by its display name: the picker shows it, the tables are keyed by it and the
// settings store it. Each one has its string table, compiled into the program under tableName;
// the build reads the table names from the entries below, so this list is the only one.

#include <QStringView>
#include <Qt>

#include <array>

namespace orvanta::i18n {

struct LanguageEntry
{
    QStringView displayName;
    QStringView tableName;
    Qt::LayoutDirection direction = Qt::LeftToRight;
};

inline constexpr std::array<LanguageEntry, 23> kLanguageList{{
    {u"English", u"en"},
    {u"Español", u"es"},
    {u"Français", u"fr"},
    {u"Deutsch", u"de"},
    {u"中文", u"zh"},
    {u"Русский", u"ru"},
    {u"Português", u"pt"},
    {u"Italiano", u"it"},
    {u"Nederlands", u"nl"},
    {u"日本語", u"ja"},
    {u"한국어", u"ko"},
    {u"العربية", u"ar", Qt::RightToLeft},
    {u"हिन्दी", u"hi"},
    {u"Türkçe", u"tr"},
    {u"Tiếng Việt", u"vi"},
    {u"ไทย", u"th"},
    {u"Bahasa Indonesia", u"id"},
    {u"Bahasa Melayu", u"ms"},
    {u"Filipino", u"fil"},
    {u"Українська", u"uk"},
    {u"Polski", u"pl"},
    {u"Кыргызча", u"ky"},
    {u"עברית", u"he", Qt::RightToLeft},
}};

} // namespace orvanta::i18n
