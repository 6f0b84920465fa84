// Finding a known sound in a recording by the envelope of their cross-correlation: where it
// starts, to a fraction of a frame, whatever its polarity; and telling it from noise and from
// the other speaker's sweep.

#include "ArrivalFinder.h"
#include "CorrelationEnvelope.h"
#include "Fft.h"
#include "TestSignal.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

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

TEST(Fft, AForwardAndAnInverseTransformGiveBackTheInput)
{
    Spectrum data(1024);
    for (std::size_t i = 0; i < data.size(); ++i) {
        data[i] = {static_cast<float>(std::sin(0.1 * static_cast<double>(i))), static_cast<float>(i % 7) / 7.0f};
    }
    const Spectrum original = data;
    transform(data, false);
    transform(data, true);
    for (std::size_t i = 0; i < data.size(); ++i) {
        EXPECT_NEAR(data[i].real(), original[i].real(), 1e-4f) << i;
        EXPECT_NEAR(data[i].imag(), original[i].imag(), 1e-4f) << i;
    }
}

TEST(Fft, APureToneLandsInItsOwnBin)
{
    Spectrum data(256);
    for (std::size_t i = 0; i < data.size(); ++i) {
        data[i] = static_cast<float>(std::cos(2.0 * std::numbers::pi * 10.0 * static_cast<double>(i) / 256.0));
    }
    transform(data, false);
    EXPECT_NEAR(std::abs(data[10]), 128.0f, 1e-2f);
    EXPECT_NEAR(std::abs(data[246]), 128.0f, 1e-2f);
    EXPECT_NEAR(std::abs(data[11]), 0.0f, 1e-2f);
}

TEST(ArrivalFinder, FindsWhereTheSweepStartsToAFractionOfAFrame)
{
    const auto signal = testSignal(Sweep::Rising);
    for (const double start : {1000.0, 12345.25, 30000.5, 47000.75}) {
        const auto recording = withSignalAt(kRate + kSignalFrames, signal, start, 0.5f, 0.01f);
        const auto envelope = Correlator(recording, kSignalFrames).envelope(signal);
        const auto arrival = peakWithin(envelope, 0, envelope.size(), backgroundLevel(envelope));
        ASSERT_TRUE(arrival);
        EXPECT_NEAR(arrival->frame, start, 0.25) << start;
        EXPECT_TRUE(isFound(*arrival)) << arrival->strength << " " << arrival->sharpness;
    }
}

TEST(ArrivalFinder, APolarityTurnedRoundFindsTheSameStart)
{
    const auto signal = testSignal(Sweep::Falling);
    const auto recording = withSignalAt(kRate, signal, 20000.0, -0.3f, 0.01f);
    const auto envelope = Correlator(recording, kSignalFrames).envelope(signal);
    const auto arrival = peakWithin(envelope, 0, envelope.size(), backgroundLevel(envelope));
    ASSERT_TRUE(arrival);
    EXPECT_NEAR(arrival->frame, 20000.0, 0.25);
    EXPECT_TRUE(isFound(*arrival));
}

TEST(ArrivalFinder, NoiseAloneIsNotAnArrival)
{
    const auto signal = testSignal(Sweep::Rising);
    const auto recording = withSignalAt(kRate, signal, 0.0, 0.0f, 0.1f);
    const auto envelope = Correlator(recording, kSignalFrames).envelope(signal);
    const auto arrival = peakWithin(envelope, 0, envelope.size(), backgroundLevel(envelope));
    ASSERT_TRUE(arrival);
    EXPECT_FALSE(isFound(*arrival)) << arrival->strength << " " << arrival->sharpness;
}

TEST(ArrivalFinder, TheOtherSpeakersSweepIsNotTakenForThisOne)
{
    const auto recording = withSignalAt(kRate, testSignal(Sweep::Falling), 20000.0, 0.5f, 0.001f);
    const auto envelope = Correlator(recording, kSignalFrames).envelope(testSignal(Sweep::Rising));
    const auto arrival = peakWithin(envelope, 0, envelope.size(), backgroundLevel(envelope));
    ASSERT_TRUE(arrival);
    EXPECT_FALSE(isFound(*arrival)) << arrival->strength << " " << arrival->sharpness;
}

TEST(ArrivalFinder, TheCombLinesUpWithArrivalsAPeriodApart)
{
    std::vector<float> envelope(10 * kRate, 1.0f);
    for (const std::size_t at : {31000u, 31000u + 2 * kRate, 31000u + 4 * kRate}) {
        envelope[at] = 50.0f;
    }
    envelope[5000] = 80.0f; // a lone loud peak that does not repeat
    // To within the comb's millisecond blocks and the block either side of each tooth.
    const auto first = static_cast<double>(alignComb(envelope, 2 * kRate, 3, kRate));
    EXPECT_NEAR(first, 31000.0, 2.0 * kRate / 1000);
}

TEST(ArrivalFinder, TheCombDoesNotSlideOnPastALostFirstArrival)
{
    std::vector<float> envelope(10 * kRate, 1.0f);
    for (const std::size_t at : {31000u + 2 * kRate, 31000u + 4 * kRate, 31000u + 6 * kRate}) {
        envelope[at] = 50.0f; // the first of four arrivals, at 31000, is missing
    }
    const auto first = static_cast<double>(alignComb(envelope, 2 * kRate, 4, kRate));
    EXPECT_NEAR(first, 31000.0, 2.0 * kRate / 1000);
}

} // namespace
} // namespace orvanta::measure
