#include "CorrelationEnvelope.h"

#include <algorithm>

namespace orvanta::measure {

namespace {

Spectrum padded(std::span<const float> samples, std::size_t size)
{
    Spectrum data(size);
    std::transform(samples.begin(), samples.end(), data.begin(), [](float s) { return std::complex<float>(s, 0.0f); });
    return data;
}

} // namespace

Correlator::Correlator(std::span<const float> recording, std::size_t maxSignalFrames)
    // Room for the longest lag and the signal, so that no correlation wraps round.
    : frames(recording.size()), recorded(padded(recording, transformSize(recording.size() + maxSignalFrames)))
{
    transform(recorded, false);
}

std::vector<float> Correlator::envelope(std::span<const float> signal) const
{
    const std::size_t size = recorded.size();
    Spectrum product = padded(signal.first(std::min(signal.size(), size)), size);
    transform(product, false);
    // The correlation's spectrum, kept to positive frequencies (doubled) so that the inverse
    // transform is the analytic signal, whose magnitude is the envelope.
    for (std::size_t k = 0; k < size; ++k) {
        const float weight = k == 0 || k == size / 2 ? 1.0f : (k < size / 2 ? 2.0f : 0.0f);
        product[k] = recorded[k] * std::conj(product[k]) * weight;
    }
    transform(product, true);
    std::vector<float> result(frames);
    for (std::size_t n = 0; n < frames; ++n) {
        result[n] = std::abs(product[n]);
    }
    return result;
}

} // namespace orvanta::measure
