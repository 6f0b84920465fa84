#pragma once

// A slider over real numbers with tick marks below its track. The knob moves freely (it does
// not snap to the marks) and reports continuously while it is dragged. The value lives
// elsewhere: the slider reads it through a binding, writes every move back through it, and is
// handed a fresh binding on every update, so an action always reaches the current one.
//
// When the bound value is pushed into the control, a difference of 0.5 or less is left alone:
// the whole number that a drag stores must not pull the knob back from under the pointer,
// while a change made elsewhere (a button, Reset, the tray panel) does move it.

#include <QObject>
#include <QSlider>

#include <functional>

namespace orvanta::ui {

struct TickSliderValue
{
    std::function<double()> get;
    std::function<void(double)> set;
};

struct TickSliderModel
{
    TickSliderValue value;
    double minimum = 0.0;
    double maximum = 1.0;
    int numberOfTicks = 0;
    std::function<void(double)> onChanged; // told each new value, after the binding was written
};

class TickSlider : public QSlider
{
    Q_OBJECT

public:
    // The control's resolution: positions per unit of value, so that a drag can land between two
    // whole numbers and be rounded by whoever stores it.
    static constexpr int kStepsPerUnit = 100;
    static constexpr double kDeadBand = 0.5;

    explicit TickSlider(TickSliderModel model, QWidget* parent = nullptr);

    // Brings the control in line with a new model: the value (outside the dead band), the range
    // and the marks, and keeps the model for the next action.
    void updateFrom(TickSliderModel model);

    double doubleValue() const;
    double minimumValue() const;
    double maximumValue() const;
    int numberOfTickMarks() const { return ticks; }

private:
    // The slider's target: turns every move into a write through the current binding.
    class Coordinator : public QObject
    {
    public:
        Coordinator(TickSlider& slider, TickSliderModel model);
        void changed();

        TickSliderModel parent;

    private:
        TickSlider& slider;
    };

    void setDoubleValue(double value);
    void applyRangeAndTicks(const TickSliderModel& model);

    Coordinator* coordinator = nullptr;
    int ticks = 0;
};

} // namespace orvanta::ui
