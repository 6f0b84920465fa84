#include "Theme.h"

#include <QFontMetrics>

#include <algorithm>

namespace orvanta::ui {
namespace {

// Sizes relative to the body text, and the smallest point size each may shrink to.
struct Scale
{
    qreal factor;
    qreal minimumPoints;
    QFont::Weight weight;
};

Scale scaleOf(TextStyle style)
{
    switch (style) {
    case TextStyle::Title:
        return {1.6, 14.0, QFont::Bold};
    case TextStyle::Title2:
        return {1.3, 12.0, QFont::Normal};
    case TextStyle::Title3:
        return {1.15, 11.0, QFont::Normal};
    case TextStyle::Headline:
        return {1.0, 9.0, QFont::DemiBold};
    case TextStyle::Body:
        return {1.0, 8.0, QFont::Normal};
    case TextStyle::Caption:
        return {0.9, 8.0, QFont::Normal};
    case TextStyle::Caption2:
        return {0.85, 7.5, QFont::Normal};
    case TextStyle::Small:
        return {0.8, 7.0, QFont::Normal};
    case TextStyle::Tiny:
        return {0.72, 6.5, QFont::Normal};
    }
    return {1.0, 8.0, QFont::Normal};
}

QColor mixed(const QColor& a, const QColor& b, qreal amountOfB)
{
    const auto mix = [amountOfB](int x, int y) {
        return static_cast<int>(static_cast<qreal>(x) + (static_cast<qreal>(y) - static_cast<qreal>(x)) * amountOfB);
    };
    return QColor(mix(a.red(), b.red()), mix(a.green(), b.green()), mix(a.blue(), b.blue()));
}

} // namespace

QFont fontFor(TextStyle style, const QFont& base)
{
    const Scale scale = scaleOf(style);
    QFont font = base;
    if (base.pointSizeF() > 0) {
        font.setPointSizeF(std::max(scale.minimumPoints, base.pointSizeF() * scale.factor));
    } else if (base.pixelSize() > 0) {
        font.setPixelSize(std::max(9, static_cast<int>(static_cast<qreal>(base.pixelSize()) * scale.factor)));
    }
    font.setWeight(scale.weight);
    return font;
}

int symbolSize(TextStyle style, const QFont& base)
{
    return QFontMetrics(fontFor(style, base)).height();
}

bool isDark(const QPalette& palette)
{
    return palette.color(QPalette::Window).lightness() < 128;
}

QColor tintColor(Tint tint, const QPalette& palette)
{
    const bool dark = isDark(palette);
    switch (tint) {
    case Tint::Primary:
        return palette.color(QPalette::WindowText);
    case Tint::Secondary:
        return mixed(palette.color(QPalette::WindowText), palette.color(QPalette::Window), 0.42);
    case Tint::Accent:
        return palette.color(QPalette::Highlight);
    case Tint::Blue:
        return dark ? QColor(0x0a, 0x84, 0xff) : QColor(0x00, 0x7a, 0xff);
    case Tint::Green:
        return dark ? QColor(0x30, 0xd1, 0x58) : QColor(0x28, 0xa7, 0x45);
    case Tint::Gray:
        return dark ? QColor(0x8e, 0x8e, 0x93) : QColor(0x8e, 0x8e, 0x93);
    case Tint::Red:
        return dark ? QColor(0xff, 0x45, 0x3a) : QColor(0xd7, 0x26, 0x1e);
    case Tint::Yellow:
        return dark ? QColor(0xff, 0xd6, 0x0a) : QColor(0xf2, 0xb7, 0x05);
    case Tint::White:
        return QColor(Qt::white);
    }
    return palette.color(QPalette::WindowText);
}

} // namespace orvanta::ui
