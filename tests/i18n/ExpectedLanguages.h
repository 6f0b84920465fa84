#pragma once

// The 23 languages as the picker must offer them: display name, table file, writing direction.

#include <QStringView>
#include <Qt>

#include <array>

namespace orvanta::testing {

struct ExpectedLanguage
{
    QStringView displayName;
    QStringView tableName;
    Qt::LayoutDirection direction;
};

inline constexpr std::array<ExpectedLanguage, 23> kExpectedLanguages{{
    {u"English", u"en", Qt::LeftToRight},
    {u"Español", u"es", Qt::LeftToRight},
    {u"Français", u"fr", Qt::LeftToRight},
    {u"Deutsch", u"de", Qt::LeftToRight},
    {u"中文", u"zh", Qt::LeftToRight},
    {u"Русский", u"ru", Qt::LeftToRight},
    {u"Português", u"pt", Qt::LeftToRight},
    {u"Italiano", u"it", Qt::LeftToRight},
    {u"Nederlands", u"nl", Qt::LeftToRight},
    {u"日本語", u"ja", Qt::LeftToRight},
    {u"한국어", u"ko", Qt::LeftToRight},
    {u"العربية", u"ar", Qt::RightToLeft},
    {u"हिन्दी", u"hi", Qt::LeftToRight},
    {u"Türkçe", u"tr", Qt::LeftToRight},
    {u"Tiếng Việt", u"vi", Qt::LeftToRight},
    {u"ไทย", u"th", Qt::LeftToRight},
    {u"Bahasa Indonesia", u"id", Qt::LeftToRight},
    {u"Bahasa Melayu", u"ms", Qt::LeftToRight},
    {u"Filipino", u"fil", Qt::LeftToRight},
    {u"Українська", u"uk", Qt::LeftToRight},
    {u"Polski", u"pl", Qt::LeftToRight},
    {u"Кыргызча", u"ky", Qt::LeftToRight},
    {u"עברית", u"he", Qt::RightToLeft},
}};

} // namespace orvanta::testing
