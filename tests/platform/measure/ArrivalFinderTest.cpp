// Finding a known sound in a recording by the envelope of its cross-correlation, to a fraction of a frame.

#include "measure/ArrivalFinder.h"
#include "measure/CorrelationEnvelope.h"
#include "measure/Fft.h"
#include "measure/TestSignal.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>
#include <tuple>

namespace orvanta::measure {
namespace {

std::vector<float> withSignalAt(std::size_t frames, const std::vector<float>& signal, double start, float gain,
                                float noiseRms)
{
    std::vector<float> recording(frames, 0.0f);
    std::mt19937 random(7);
    std::normal_distribution<float> noise(0.0f, noiseRms);
    for (auto& sample : recording) {
        sample = noiseRms > 0.0f ? noise(random) : 0.0f;
    }
    // A start between two frames: the signal itself shifted by a fraction, through its spectrum.
    const std::size_t whole = static_cast<std::size_t>(start);
    const double fraction = start - static_cast<double>(whole);
    Spectrum shifted(transformSize(signal.size() * 2));
    for (std::size_t i = 0; i < signal.size(); ++i) {
        shifted[i] = signal[i];
    }
    transform(shifted, false);
    const std::size_t size = shifted.size();
    for (std::size_t k = 0; k < size; ++k) {
        const double f = k <= size / 2 ? static_cast<double>(k) : static_cast<double>(k) - static_cast<double>(size);
        const double angle = -2.0 * std::numbers::pi * f * fraction / static_cast<double>(size);
        shifted[k] *= std::complex<float>(static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle)));
    }
    transform(shifted, true);
    for (std::size_t i = 0; i < size && whole + i < frames; ++i) {
        recording[whole + i] += gain * shifted[i].real();
    }
    return recording;
}

// What the envelope of the recording against signal finds, over the whole recording.
std::optional<Arrival> arrivalIn(const std::vector<float>& recording, const std::vector<float>& signal)
{
    const auto envelope = Correlator(recording, kSignalFrames).envelope(signal);
    return peakWithin(envelope, 0, envelope.size(), backgroundLevel(envelope));
}

TEST(ArrivalFinder, FindsWhereTheSweepStartsToAFractionOfAFrameWhateverItsPolarity)
{
    for (const auto& [sweep, start, gain] :
         {std::tuple{Sweep::Rising, 1000.0, 0.5f}, std::tuple{Sweep::Rising, 12345.25, 0.5f},
          std::tuple{Sweep::Rising, 30000.5, 0.5f}, std::tuple{Sweep::Rising, 47000.75, 0.5f},
          std::tuple{Sweep::Falling, 20000.0, -0.3f}}) {
        const auto signal = testSignal(sweep);
        const auto arrival = arrivalIn(withSignalAt(kRate + kSignalFrames, signal, start, gain, 0.01f), signal);
        ASSERT_TRUE(arrival);
        EXPECT_NEAR(arrival->frame, start, 0.25) << start;
        EXPECT_TRUE(isFound(*arrival)) << arrival->strength << " " << arrival->sharpness;
    }
}

TEST(ArrivalFinder, NeitherNoiseNorTheOtherSpeakersSweepIsAnArrival)
{
    const auto noise =
        arrivalIn(withSignalAt(kRate, testSignal(Sweep::Rising), 0.0, 0.0f, 0.1f), testSignal(Sweep::Rising));
    const auto other =
        arrivalIn(withSignalAt(kRate, testSignal(Sweep::Falling), 20000.0, 0.5f, 0.001f), testSignal(Sweep::Rising));
    ASSERT_TRUE(noise && other);
    EXPECT_FALSE(isFound(*noise)) << noise->strength << " " << noise->sharpness;
    EXPECT_FALSE(isFound(*other)) << other->strength << " " << other->sharpness;
}

TEST(ArrivalFinder, TheCombLinesUpWithArrivalsAPeriodApartAndDoesNotSlidePastALostFirstOne)
{
    // To within the comb's millisecond blocks and the block either side of each tooth.
    std::vector<float> envelope(10 * kRate, 1.0f);
    for (const std::size_t at : {31000u, 31000u + 2 * kRate, 31000u + 4 * kRate}) {
        envelope[at] = 50.0f;
    }
    envelope[5000] = 80.0f; // a lone loud peak that does not repeat
    EXPECT_NEAR(static_cast<double>(alignComb(envelope, 2 * kRate, 3, kRate)), 31000.0, 2.0 * kRate / 1000);
    // The first of four arrivals, at 31000, is missing.
    envelope[31000] = envelope[5000] = 1.0f;
    envelope[31000 + 6 * kRate] = 50.0f;
    EXPECT_NEAR(static_cast<double>(alignComb(envelope, 2 * kRate, 4, kRate)), 31000.0, 2.0 * kRate / 1000);
}

} // namespace
} // namespace orvanta::measure
