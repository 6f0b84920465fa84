#include "Fft.h"

#include <cmath>
#include <numbers>
#include <utility>

namespace orvanta::measure {

std::size_t transformSize(std::size_t frames)
{
    std::size_t size = 1;
    while (size < frames) {
        size <<= 1;
    }
    return size;
}

namespace {

void reorderByReversedBits(Spectrum& data)
{
    const std::size_t size = data.size();
    for (std::size_t i = 1, j = 0; i < size; ++i) {
        std::size_t bit = size >> 1;
        for (; (j & bit) != 0; bit >>= 1) {
            j ^= bit;
        }
        j ^= bit;
        if (i < j) {
            std::swap(data[i], data[j]);
        }
    }
}

} // namespace

void transform(Spectrum& data, bool inverse)
{
    const std::size_t size = data.size();
    reorderByReversedBits(data);
    const double sign = inverse ? 1.0 : -1.0;
    for (std::size_t length = 2; length <= size; length <<= 1) {
        const std::size_t half = length / 2;
        // Twiddles worked out in double precision once per stage keep long transforms accurate.
        std::vector<std::complex<float>> twiddles(half);
        for (std::size_t k = 0; k < half; ++k) {
            const double angle = sign * 2.0 * std::numbers::pi * static_cast<double>(k) / static_cast<double>(length);
            twiddles[k] = {static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle))};
        }
        for (std::size_t start = 0; start < size; start += length) {
            for (std::size_t k = 0; k < half; ++k) {
                const auto odd = data[start + k + half] * twiddles[k];
                data[start + k + half] = data[start + k] - odd;
                data[start + k] += odd;
            }
        }
    }
    if (inverse) {
        const float scale = 1.0f / static_cast<float>(size);
        for (auto& value : data) {
            value *= scale;
        }
    }
}

} // namespace orvanta::measure
