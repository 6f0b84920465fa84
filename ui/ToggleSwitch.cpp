#include "ToggleSwitch.h"

#include "Theme.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>

namespace orvanta::ui {
namespace {

constexpr int kTextGap = 10;

} // namespace

ToggleSwitch::ToggleSwitch(Size size, QWidget* parent) : QAbstractButton(parent), controlSize(size)
{
    setCheckable(true);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize ToggleSwitch::trackSize() const
{
    return controlSize == Size::Small ? QSize(30, 17) : QSize(38, 22);
}

QSize ToggleSwitch::sizeHint() const
{
    const QSize track = trackSize();
    const QFontMetrics metrics(font());
    const int textWidth = text().isEmpty() ? 0 : metrics.horizontalAdvance(text()) + kTextGap;
    return {textWidth + track.width() + 4, std::max(track.height(), metrics.height()) + 4};
}

QSize ToggleSwitch::minimumSizeHint() const
{
    return sizeHint();
}

QRect ToggleSwitch::switchRect() const
{
    const QSize track = trackSize();
    const int y = (height() - track.height()) / 2;
    const QRect trailing(width() - track.width() - 2, y, track.width(), track.height());
    return QStyle::visualRect(layoutDirection(), rect(), trailing);
}

bool ToggleSwitch::hitButton(const QPoint& pos) const
{
    // The whole row reacts, as a labelled switch does.
    return rect().contains(pos);
}

void ToggleSwitch::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette& colors = palette();
    const QRect track = switchRect();

    if (!text().isEmpty()) {
        const QRect textArea =
            QStyle::visualRect(layoutDirection(), rect(), QRect(0, 0, width() - track.width() - kTextGap, height()));
        painter.setPen(colors.color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::WindowText));
        const Qt::Alignment alignment = QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft | Qt::AlignVCenter);
        painter.drawText(textArea, static_cast<int>(alignment) | Qt::TextSingleLine,
                         fontMetrics().elidedText(text(), Qt::ElideRight, textArea.width()));
    }

    QColor trackColor = isChecked() ? tintColor(Tint::Accent, colors) : tintColor(Tint::Gray, colors);
    if (!isChecked()) {
        trackColor.setAlphaF(isDark(colors) ? 0.55f : 0.45f);
    }
    const qreal opacity = isEnabled() ? 1.0 : 0.4;
    painter.setOpacity(opacity);
    painter.setPen(Qt::NoPen);
    painter.setBrush(trackColor);
    const qreal radius = track.height() / 2.0;
    painter.drawRoundedRect(QRectF(track), radius, radius);

    const qreal knobInset = 2.0;
    const qreal knob = track.height() - 2 * knobInset;
    // The knob sits at the trailing end while on; in right-to-left layouts that end is on the left.
    const bool knobAtRight = isChecked() != (layoutDirection() == Qt::RightToLeft);
    const qreal knobX = knobAtRight ? track.right() + 1 - knobInset - knob : track.left() + knobInset;
    painter.setBrush(QColor(0, 0, 0, 40));
    painter.drawEllipse(QRectF(knobX, track.top() + knobInset + 0.6, knob, knob));
    painter.setBrush(Qt::white);
    painter.drawEllipse(QRectF(knobX, track.top() + knobInset, knob, knob));

    if (hasFocus()) {
        painter.setOpacity(1.0);
        QPen focus(tintColor(Tint::Accent, colors), 1.5);
        painter.setPen(focus);
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(track).adjusted(-1.5, -1.5, 1.5, 1.5), radius + 1.5, radius + 1.5);
    }
}

} // namespace orvanta::ui
