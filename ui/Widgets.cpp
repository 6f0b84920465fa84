#include "Widgets.h"

#include <algorithm>

#include <QMouseEvent>
#include <QPainter>
#include <QProxyStyle>
#include <QResizeEvent>
#include <QStyle>

namespace orvanta::ui {
namespace {

// Asks for the knob to jump to a left click, on top of whatever style the desktop uses.
class JumpToClickStyle final : public QProxyStyle
{
public:
    using QProxyStyle::QProxyStyle;

    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returnData) const override
    {
        if (hint == QStyle::SH_Slider_AbsoluteSetButtons) {
            return Qt::LeftButton;
        }
        return QProxyStyle::styleHint(hint, option, widget, returnData);
    }
};

// The helper object of type T that a widget already has, if any.
template <typename T> T* directChild(QObject* owner)
{
    for (QObject* object : owner->children()) {
        if (auto* found = dynamic_cast<T*>(object)) {
            return found;
        }
    }
    return nullptr;
}

// Keeps a widget's text colour in its tint across palette changes.
class TintKeeper final : public QObject
{
public:
    TintKeeper(QWidget* widget, Tint tint) : QObject(widget), target(widget), color(tint) { apply(); }

    void setTint(Tint tint)
    {
        color = tint;
        apply();
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (watched == target && event->type() == QEvent::PaletteChange && !applying) {
            apply();
        }
        return false;
    }

private:
    void apply()
    {
        applying = true;
        // The tint is worked out against the palette the widget would have without its own text
        // colour, so that a light/dark switch is seen.
        QPalette inherited = target->parentWidget() ? target->parentWidget()->palette() : QPalette();
        QPalette colors = target->palette();
        const QColor tinted = tintColor(color, inherited);
        colors.setColor(QPalette::WindowText, tinted);
        colors.setColor(QPalette::Text, tinted);
        colors.setColor(QPalette::ButtonText, tinted);
        target->setPalette(colors);
        applying = false;
    }

    QWidget* target;
    Tint color;
    bool applying = false;
};

// Keeps a label's alignment in step with its layout direction.
class LayoutAlignment final : public QObject
{
public:
    LayoutAlignment(QLabel* label, Qt::Alignment logical) : QObject(label), target(label), alignment(logical)
    {
        apply();
    }

    void setAlignment(Qt::Alignment logical)
    {
        alignment = logical;
        apply();
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (watched == target && event->type() == QEvent::LayoutDirectionChange) {
            apply();
        }
        return false;
    }

private:
    void apply()
    {
        target->setAlignment(QStyle::visualAlignment(target->layoutDirection(), alignment) | Qt::AlignAbsolute);
    }

    QLabel* target;
    Qt::Alignment alignment;
};

} // namespace

void alignByLayout(QLabel* label, Qt::Alignment alignment)
{
    if (auto* keeper = directChild<LayoutAlignment>(label)) {
        keeper->setAlignment(alignment);
        return;
    }
    label->installEventFilter(new LayoutAlignment(label, alignment));
}

QLabel* makeTextLabel(TextStyle style, const QString& objectName, QWidget* parent, bool wrap)
{
    auto* label = new QLabel(parent);
    label->setObjectName(objectName);
    label->setFont(fontFor(style, parent->font()));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(wrap);
    alignByLayout(label, Qt::AlignLeading | Qt::AlignVCenter);
    return label;
}

int widestNumberWidth(const QFontMetrics& metrics, int digits, const QString& suffix)
{
    int widest = 0;
    for (char digit = '0'; digit <= '9'; ++digit) {
        widest = std::max(widest, metrics.horizontalAdvance(QString(digits, QChar::fromLatin1(digit)) + suffix));
    }
    // One pixel for the rounding of fractional advances.
    return widest + 1;
}

void applyTint(QWidget* widget, Tint tint)
{
    if (auto* keeper = directChild<TintKeeper>(widget)) {
        keeper->setTint(tint);
        return;
    }
    auto* keeper = new TintKeeper(widget, tint);
    widget->installEventFilter(keeper);
}

ElidedLabel::ElidedLabel(QWidget* parent) : QLabel(parent)
{
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    setTextFormat(Qt::PlainText);
    setWordWrap(false);
    alignByLayout(this, Qt::AlignLeading | Qt::AlignVCenter);
}

void ElidedLabel::setFullText(const QString& text)
{
    if (text == full && !QLabel::text().isEmpty()) {
        return;
    }
    full = text;
    setToolTip(QString());
    elide();
    updateGeometry();
}

QSize ElidedLabel::minimumSizeHint() const
{
    return {0, fontMetrics().height()};
}

QSize ElidedLabel::sizeHint() const
{
    return {fontMetrics().horizontalAdvance(full), fontMetrics().height()};
}

void ElidedLabel::resizeEvent(QResizeEvent* event)
{
    QLabel::resizeEvent(event);
    elide();
}

void ElidedLabel::elide()
{
    const QString shown = fontMetrics().elidedText(full, Qt::ElideRight, std::max(0, contentsRect().width()));
    setText(shown);
    // The whole name is still there for whoever hovers over a cut one.
    setToolTip(shown == full ? QString() : full);
}

RoundedPanel::RoundedPanel(Tint tint, qreal opacity, qreal radius, QWidget* parent)
    : QWidget(parent), color(tint), alpha(opacity), cornerRadius(radius)
{}

void RoundedPanel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    QColor fill = tintColor(color, palette());
    fill.setAlphaF(static_cast<float>(alpha));
    painter.setBrush(fill);
    painter.drawRoundedRect(QRectF(rect()), cornerRadius, cornerRadius);
}

StatusDot::StatusDot(QWidget* parent) : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void StatusDot::setOn(bool on)
{
    if (on != lit) {
        lit = on;
        update();
    }
}

void StatusDot::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(tintColor(lit ? Tint::Green : Tint::Gray, palette()));
    painter.drawEllipse(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
}

QFrame* makeDivider(QWidget* parent)
{
    auto* line = new QFrame(parent);
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    return line;
}

DirectSlider::DirectSlider(QWidget* parent) : QSlider(Qt::Horizontal, parent)
{
    auto* jump = new JumpToClickStyle();
    jump->setParent(this);
    setStyle(jump);
}

void DirectSlider::mousePressEvent(QMouseEvent* event)
{
    handlingPress = true;
    QSlider::mousePressEvent(event);
    handlingPress = false;
}

} // namespace orvanta::ui
