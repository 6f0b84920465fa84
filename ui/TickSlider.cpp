#include "TickSlider.h"

#include <QSignalBlocker>

#include <cmath>

namespace orvanta::ui {
namespace {

int toPosition(double value)
{
    return static_cast<int>(std::lround(value * TickSlider::kStepsPerUnit));
}

double toValue(int position)
{
    return static_cast<double>(position) / TickSlider::kStepsPerUnit;
}

} // namespace

TickSlider::Coordinator::Coordinator(TickSlider& owner, TickSliderModel model)
    : QObject(&owner), parent(std::move(model)), slider(owner)
{}

void TickSlider::Coordinator::changed()
{
    const double value = slider.doubleValue();
    // Writing the value redraws the owner, which hands over a new model while this one runs:
    // each callback is copied out before it is called.
    const auto set = parent.value.set;
    if (set) {
        set(value);
    }
    const auto onChanged = parent.onChanged;
    if (onChanged) {
        onChanged(value);
    }
}

TickSlider::TickSlider(TickSliderModel model, QWidget* parent) : QSlider(Qt::Horizontal, parent)
{
    const double initial = model.value.get ? model.value.get() : model.minimum;
    applyRangeAndTicks(model);
    setDoubleValue(initial);
    setTickPosition(QSlider::TicksBelow);
    setTracking(true);
    setSingleStep(kStepsPerUnit);
    setPageStep(50 * kStepsPerUnit);
    coordinator = new Coordinator(*this, std::move(model));
    // Only the user's moves reach the target: the value pushed in by updateFrom() is set with
    // the control's signals blocked.
    connect(this, &QSlider::valueChanged, coordinator, [this] { coordinator->changed(); });
}

void TickSlider::updateFrom(TickSliderModel model)
{
    if (model.value.get) {
        const double bound = model.value.get();
        if (std::abs(doubleValue() - bound) > kDeadBand) {
            setDoubleValue(bound);
        }
    }
    applyRangeAndTicks(model);
    coordinator->parent = std::move(model);
}

double TickSlider::doubleValue() const
{
    return toValue(value());
}

double TickSlider::minimumValue() const
{
    return toValue(minimum());
}

double TickSlider::maximumValue() const
{
    return toValue(maximum());
}

void TickSlider::setDoubleValue(double newValue)
{
    const QSignalBlocker quiet(this);
    setValue(toPosition(newValue));
}

void TickSlider::applyRangeAndTicks(const TickSliderModel& model)
{
    const QSignalBlocker quiet(this);
    setRange(toPosition(model.minimum), toPosition(model.maximum));
    ticks = model.numberOfTicks;
    // n marks split the track into n - 1 equal parts, the first mark at the minimum.
    const int span = maximum() - minimum();
    setTickInterval(ticks > 1 ? std::max(1, span / (ticks - 1)) : 0);
}

} // namespace orvanta::ui
