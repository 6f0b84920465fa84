#pragma once

// Numbers in diagnostic lines: floating-point values in the shortest decimal form that reads
// back to the same value, always with a fractional part (0.5, 1.0, 7200.0).

#include <string>

namespace orvanta::core {

std::string shortestFloat(float value);
std::string shortestFloat(double value);

} // namespace orvanta::core
