// The stacked device's delay line without a server: exact hold-backs, crossfaded changes, and
// nothing but finite samples within full scale.

#include "pipewire/DelayLine.h"
#include "pipewire/LatencyReport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <numbers>
#include <vector>

namespace orvanta::pipewire {
namespace {

constexpr std::uint32_t kCycle = 256;

// Feeds the line cycle by cycle from a source and renders the tap after each cycle, as the
// node does; gives the tap's left channel.
std::vector<float> run(
    DelayLine& line, DelayTap& tap, std::size_t cycles, float (*source)(std::uint64_t),
    const std::function<void(std::size_t)>& beforeCycle = [](std::size_t) {})
{
    std::vector<float> input(kCycle * kChannels);
    std::vector<float> output(kCycle * kChannels);
    std::vector<float> left;
    for (std::size_t cycle = 0; cycle < cycles; ++cycle) {
        beforeCycle(cycle);
        for (std::uint32_t i = 0; i < kCycle; ++i) {
            input[i * kChannels] = input[i * kChannels + 1] = source(line.written() + i);
        }
        line.write(input.data(), kCycle);
        tap.render(line, output.data(), kCycle);
        for (std::uint32_t i = 0; i < kCycle; ++i) {
            left.push_back(output[i * kChannels]);
        }
    }
    return left;
}

float impulseEvery4096(std::uint64_t frame)
{
    return frame % 4096 == 100 ? 1.0f : 0.0f;
}

float tone(std::uint64_t frame)
{
    return static_cast<float>(0.5 * std::sin(2.0 * std::numbers::pi * 440.0 * static_cast<double>(frame) / kRate));
}

TEST(DelayLine, ATapPlaysTheInputExactlyItsHoldBackLaterAcrossTheRingsEnd)
{
    for (const std::uint32_t holdBack : {0u, 1u, 240u, 28800u}) {
        DelayLine line;
        DelayTap tap;
        tap.setHoldBack(holdBack); // before the first sound: in effect from the first sample
        const auto out = run(line, tap, 600, impulseEvery4096); // 2.3 rings
        for (std::size_t frame = 0; frame < out.size(); ++frame) {
            const std::uint64_t source = frame;
            const bool expected = source >= holdBack && impulseEvery4096(source - holdBack) > 0;
            ASSERT_EQ(out[frame], expected ? 1.0f : 0.0f) << "hold-back " << holdBack << ", frame " << frame;
        }
    }
}

// Each change crossfades, never stepping further than the tone itself does between two samples, and
// the tap settles exactly on the last hold-back set: two changes (600 ms, then 37 ms), and a new
// hold-back every cycle (5 ms), more often than a fade takes.
TEST(DelayLine, AChangeCrossfadesWithoutAStepLargerThanTheSignalsOwnAndEndsExact)
{
    for (const bool everyCycle : {false, true}) {
        DelayLine line;
        DelayTap tap;
        std::uint32_t last = 0;
        const auto out = run(line, tap, 600, tone, [&](std::size_t cycle) {
            if (everyCycle ? cycle >= 100 && cycle < 400 : cycle == 100 || cycle == 200) {
                last = everyCycle ? static_cast<std::uint32_t>((cycle * 7919) % 28801) : cycle == 100 ? 28800u : 1776u;
                tap.setHoldBack(last);
            }
        });
        const double ownStep = 0.5 * 2.0 * std::numbers::pi * 440.0 / kRate;
        for (std::size_t frame = 1; frame < out.size(); ++frame) {
            ASSERT_LE(std::abs(out[frame] - out[frame - 1]), ownStep * 1.05) << everyCycle << ", frame " << frame;
        }
        EXPECT_EQ(tap.currentHoldBack(), last);
        EXPECT_NEAR(out.back(), tone(out.size() - 1 - last), 1e-6);
    }
}

TEST(DelayLine, OutputIsFiniteAndWithinFullScaleWhateverComesInAndAHoldBackBeyondTheRingIsCut)
{
    DelayLine line;
    DelayTap tap;
    const auto out = run(line, tap, 100, [](std::uint64_t frame) {
        constexpr float kWild[] = {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
                                   7.5f, -3.0f};
        return kWild[frame % 4];
    });
    for (const float sample : out) {
        ASSERT_TRUE(std::isfinite(sample));
        ASSERT_LE(std::abs(sample), 1.0f);
    }
    tap.setHoldBack(10'000'000);
    EXPECT_EQ(tap.targetHoldBack(), DelayLine::kMaxHoldBackFrames);
}

TEST(LatencyReport, TellsTheLaterMembersOwnLatencyPlusItsHoldBack)
{
    spa_latency_info slowSink = SPA_LATENCY_INFO(SPA_DIRECTION_INPUT, .min_quantum = 1.0f, .max_quantum = 1.0f,
                                                 .min_ns = 40'000'000, .max_ns = 40'000'000);
    // Held back 150 ms with no latency of its own, against a sink of 40 ms plus a cycle.
    const auto info = reportedLatency({{slowSink, 0}, {std::nullopt, 7200}});
    ASSERT_TRUE(info.has_value());
    EXPECT_EQ(info->min_ns, 150'000'000u);
    EXPECT_EQ(info->max_quantum, 0.0f);

    // Held back 10 ms on top of the slow sink: that one is now the later member.
    const auto other = reportedLatency({{slowSink, 480}, {std::nullopt, 0}});
    ASSERT_TRUE(other.has_value());
    EXPECT_EQ(other->min_ns, 50'000'000u);
    EXPECT_EQ(other->max_quantum, 1.0f);
}

} // namespace
} // namespace orvanta::pipewire
