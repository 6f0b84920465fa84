#pragma once

// The small rules the views share: the volume as a percentage, a slider's delay in whole
// milliseconds, and the filling-in of a translated text's number.

#include <QString>

namespace orvanta::ui {

// The volume times 100 with the fraction dropped: 0.999 is 99, 1.0 is 100.
int volumePercent(float volume);

// A slider value as whole milliseconds, halves away from zero (123.5 is 124).
int roundedDelay(double value);

// Fills the one integer placeholder of a translated text ("Decrease by %d ms", or "%1$d" where a
// language moves it). "%%" stands for a percent sign; any other "%" stays as it is.
QString formatWithInteger(const QString& format, long long value);

} // namespace orvanta::ui
