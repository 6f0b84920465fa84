#pragma once

// A switch-style toggle: the title on the leading side, a sliding switch on the trailing side.
// It is a checkable button, so keyboards, screen readers and tests treat it like a check box.

#include <QAbstractButton>

namespace orvanta::ui {

class ToggleSwitch : public QAbstractButton
{
    Q_OBJECT

public:
    enum class Size
    {
        Regular,
        Small,
    };

    explicit ToggleSwitch(Size size = Size::Regular, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    // The rectangle of the switch itself, in widget coordinates.
    QRect switchRect() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    bool hitButton(const QPoint& pos) const override;

private:
    QSize trackSize() const;

    Size controlSize;
};

} // namespace orvanta::ui
