#include "Widgets.h"

#include "Symbols.h"
#include "Theme.h"

#include <QPainter>
#include <QToolButton>

#include <algorithm>

namespace orvanta::ui {

QToolButton* makeSymbolButton(const QString& symbol, Tint tint, int size, const QString& objectName, QWidget* parent)
{
    auto* button = new QToolButton(parent);
    button->setObjectName(objectName);
    button->setIcon(symbolIcon(symbol, tint));
    button->setIconSize(QSize(size, size));
    button->setAutoRaise(true);
    button->setToolButtonStyle(Qt::ToolButtonIconOnly);
    button->setCursor(Qt::PointingHandCursor);
    return button;
}

QToolButton* makeCommandButton(const QString& symbol, Tint tint, const QString& objectName, QWidget* parent)
{
    const int size = symbolSize(TextStyle::Body, parent->font()) - 2;
    auto* button = makeSymbolButton(symbol, tint, size, objectName, parent);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    return button;
}

SupportButton::SupportButton(QWidget* parent) : QPushButton(parent)
{
    setFlat(true);
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    QFont medium = font();
    medium.setWeight(QFont::Medium);
    setFont(medium);
}

QSize SupportButton::sizeHint() const
{
    const QFontMetrics metrics(font());
    const int symbol = metrics.height();
    return {symbol + 6 + metrics.horizontalAdvance(text()) + 16, std::max(symbol, metrics.height()) + 16};
}

void SupportButton::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor fill = tintColor(Tint::Secondary, palette());
    fill.setAlphaF(isDown() ? 0.2f : (underMouse() ? 0.15f : 0.1f));
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(QRectF(rect()), 8, 8);
    if (hasFocus()) {
        painter.setPen(QPen(tintColor(Tint::Accent, palette()), 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.75, 0.75, -0.75, -0.75), 8, 8);
    }

    const QFontMetrics metrics(font());
    const int symbol = metrics.height();
    const QString shown = metrics.elidedText(text(), Qt::ElideRight, std::max(0, width() - symbol - 6 - 16));
    const int textWidth = metrics.horizontalAdvance(shown) + 1;
    const int contentWidth = symbol + 6 + textWidth;
    const int left = (width() - contentWidth) / 2;
    const bool rtl = layoutDirection() == Qt::RightToLeft;
    const QRect symbolRect(rtl ? left + textWidth + 6 : left, (height() - symbol) / 2, symbol, symbol);
    const QRect textRect(rtl ? left : left + symbol + 6, 0, textWidth, height());
    painter.drawPixmap(symbolRect, symbolPixmap(QStringLiteral("cup.and.saucer.fill"),
                                                tintColor(Tint::Primary, palette()), symbol, devicePixelRatioF()));
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(textRect, static_cast<int>(Qt::AlignCenter) | Qt::TextSingleLine, shown);
}

void SupportButton::enterEvent(QEnterEvent* event)
{
    QPushButton::enterEvent(event);
    update();
}

void SupportButton::leaveEvent(QEvent* event)
{
    QPushButton::leaveEvent(event);
    update();
}

LinkButton::LinkButton(QWidget* parent) : QPushButton(parent)
{
    setFlat(true);
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setFont(fontFor(TextStyle::Small, parent->font()));
}

QSize LinkButton::sizeHint() const
{
    const QFontMetrics metrics(font());
    return {metrics.horizontalAdvance(text()) + 2, metrics.height() + 2};
}

void LinkButton::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    QFont shown = font();
    shown.setUnderline(underMouse() || hasFocus());
    painter.setFont(shown);
    painter.setPen(isDark(palette()) ? tintColor(Tint::Blue, palette()).lighter(115) : palette().color(QPalette::Link));
    painter.drawText(rect(), Qt::AlignCenter, text());
}

void LinkButton::enterEvent(QEnterEvent* event)
{
    QPushButton::enterEvent(event);
    update();
}

void LinkButton::leaveEvent(QEvent* event)
{
    QPushButton::leaveEvent(event);
    update();
}

} // namespace orvanta::ui
