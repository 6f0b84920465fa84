#pragma once

// The two kinds of button at the foot of the main window: the support button (a symbol and a
// text centred on a lightly tinted rounded rectangle, all of it clickable) and a text that opens
// a web page, drawn like a link.

#include <QPushButton>

namespace orvanta::ui {

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
