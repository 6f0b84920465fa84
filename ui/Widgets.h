#pragma once

// Small building blocks of the views: a one-line label that elides, a rounded coloured panel,
// the status dot, a divider, a slider that jumps to where it is clicked, and the buttons
// (defined in Buttons.cpp).

#include "Theme.h"

#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QWidget>

class QToolButton;

namespace orvanta::ui {

// One line of text, cut with an ellipsis when it does not fit.
class ElidedLabel : public QLabel
{
    Q_OBJECT

public:
    explicit ElidedLabel(QWidget* parent = nullptr);

    void setFullText(const QString& text);
    QString fullText() const { return full; }

    QSize minimumSizeHint() const override;
    QSize sizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void elide();

    QString full;
};

// A panel drawn as a rounded rectangle of one colour; holds a layout like any widget.
class RoundedPanel : public QWidget
{
    Q_OBJECT

public:
    RoundedPanel(Tint tint, qreal opacity, qreal radius, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Tint color;
    qreal alpha;
    qreal cornerRadius;
};

// The panel's status dot: green while sync is on, gray otherwise.
class StatusDot : public QWidget
{
    Q_OBJECT

public:
    explicit StatusDot(QWidget* parent = nullptr);

    void setOn(bool on);
    bool isOn() const { return lit; }

    QSize sizeHint() const override { return {8, 8}; }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool lit = false;
};

QFrame* makeDivider(QWidget* parent = nullptr);

// A plain-text label in the style's font, aligned to the leading edge of the layout, wrapping
// onto more lines when wrap is set.
QLabel* makeTextLabel(TextStyle style, const QString& objectName, QWidget* parent, bool wrap = false);

// A horizontal slider whose knob goes straight to a click on the track and is dragged from there,
// so that a click is one edit with a beginning and an end, as a drag is.
class DirectSlider : public QSlider
{
    Q_OBJECT

public:
    explicit DirectSlider(QWidget* parent = nullptr);

    // True while a mouse press is being handled, before the drag it may start is announced.
    bool isHandlingPress() const { return handlingPress; }

protected:
    void mousePressEvent(QMouseEvent* event) override;

private:
    bool handlingPress = false;
};

// Aligns the label's text by the layout's direction, not by the direction of the text itself:
// a device name in Latin letters still starts at the right edge of a right-to-left window.
// alignment is logical (Qt::AlignLeading, Qt::AlignTrailing, ...).
void alignByLayout(QLabel* label, Qt::Alignment alignment);

// The width that any whole number of up to digits digits followed by suffix takes in metrics
// ("100%", "600 ms"), so a label sized by it never cuts a value, at any text size.
int widestNumberWidth(const QFontMetrics& metrics, int digits, const QString& suffix);

// Draws the widget's text in tint, worked out again from its palette whenever that changes
// (a switch between light and dark), so the colour stays legible on the new background.
void applyTint(QWidget* widget, Tint tint);

// A button that shows only a symbol of size pixels, drawn flat until the pointer is over it.
QToolButton* makeSymbolButton(const QString& symbol, Tint tint, int size, const QString& objectName, QWidget* parent);

// A flat button with a symbol beside its text, the size of the parent's body text.
QToolButton* makeCommandButton(const QString& symbol, Tint tint, const QString& objectName, QWidget* parent);

// A symbol and a text centred on a lightly tinted rounded rectangle, all of it clickable.
class SupportButton final : public QPushButton
{
public:
    explicit SupportButton(QWidget* parent);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {0, sizeHint().height()}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
};

// A text that opens a web page, drawn like a link.
class LinkButton final : public QPushButton
{
public:
    explicit LinkButton(QWidget* parent);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
};

} // namespace orvanta::ui
