#pragma once

// The small rules the views share: which device counts as Bluetooth, the delay a device shows,
// the volume as a percentage, and the filling-in of a translated text's number.

#include "state/AppState.h"

#include <QString>

namespace orvanta::ui {

// A device counts as Bluetooth when it is present and either reports itself as one or the user
// marked it as one.
bool isTreatedAsBluetooth(const state::OptionalDevice& device, const state::OverrideMap& overrides);

// The stored delay for the device, 0 when there is none (or no device).
int storedDelay(const state::OptionalDevice& device, const state::DelayMap& delays);

// The volume times 100 with the fraction dropped: 0.999 is 99, 1.0 is 100.
int volumePercent(float volume);

// A slider value as whole milliseconds, halves away from zero (123.5 is 124).
int roundedDelay(double value);

// Fills the one integer placeholder of a translated text ("Decrease by %d ms", or "%1$d" where a
// language moves it). "%%" stands for a percent sign; any other "%" stays as it is.
QString formatWithInteger(const QString& format, long long value);

} // namespace orvanta::ui
