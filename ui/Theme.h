#pragma once

// Fonts and colours of the views. Text sizes are named after their role and scaled from the
// desktop's own font, so the views follow the user's font settings. Colours that carry meaning
// (the Bluetooth blue, the green of a running sync, the red of the permission banner) come in
// a light and a dark shade, picked from the palette they are drawn on.

#include <QColor>
#include <QFont>
#include <QPalette>

namespace orvanta::ui {

enum class TextStyle
{
    Title,    // the product name in the main window
    Title2,   // the permission banner's symbol
    Title3,   // the delay step buttons
    Headline, // section titles
    Body,
    Caption,
    Caption2,
    Small, // the links under the support button
    Tiny,  // the version label
};

enum class Tint
{
    Primary,   // the palette's text colour
    Secondary, // dimmed text
    Accent,    // the palette's highlight
    Blue,
    Green,
    Gray,
    Red,
    Yellow,
    White,
};

QFont fontFor(TextStyle style, const QFont& base);
// The pixel height that a symbol drawn beside text of that style has.
int symbolSize(TextStyle style, const QFont& base);

bool isDark(const QPalette& palette);
QColor tintColor(Tint tint, const QPalette& palette);

} // namespace orvanta::ui
