#pragma once

// A plain radix-2 fast Fourier transform, enough to correlate a few seconds of sound quickly.

#include <complex>
#include <cstddef>
#include <vector>

namespace orvanta::measure {

using Spectrum = std::vector<std::complex<float>>;

// The smallest power of two that holds at least `frames` values.
std::size_t transformSize(std::size_t frames);

// In place; data.size() must be a power of two. The inverse is scaled by 1/size, so a forward
// transform followed by an inverse one gives back what went in.
void transform(Spectrum& data, bool inverse);

} // namespace orvanta::measure
