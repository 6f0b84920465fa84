// The test sounds a measurement hands to the stacked device's data thread: played from the first
// cycle that sees them, by member UID, in place of what the member would play, and not at all
// once they are over or stopped. No server: the cycles are driven by hand.

#include "pipewire/ProbeCue.h"
#include "pipewire/DelayLine.h"

#include <gtest/gtest.h>

#include <array>

namespace orvanta::pipewire {
namespace {

constexpr std::uint32_t kCycle = 4;

ProbeScript twoMembers()
{
    ProbeScript script;
    script.tracks.emplace_back("mA", std::vector<float>{0.1f, 0.2f, 0.3f, 0.4f, 0.5f, 0.6f});
    script.tracks.emplace_back("mB", std::vector<float>{-0.1f, -0.2f});
    return script;
}

std::array<float, kCycle * kChannels> cycleOf(float value)
{
    std::array<float, kCycle * kChannels> out{};
    out.fill(value);
    return out;
}

TEST(ProbeCue, EachMemberPlaysItsTrackFromTheFirstCycleThatSeesIt)
{
    const auto script = twoMembers();
    ProbeCue cue;
    cue.arm(&script);
    cue.beginCycle(1000);
    auto a = cycleOf(0.9f);
    auto b = cycleOf(0.9f);
    auto other = cycleOf(0.9f);
    ASSERT_TRUE(cue.render("mA", 1000, a.data(), kCycle));
    ASSERT_TRUE(cue.render("mB", 1000, b.data(), kCycle));
    ASSERT_TRUE(cue.render("mC", 1000, other.data(), kCycle));
    EXPECT_EQ(a, (std::array<float, 8>{0.1f, 0.1f, 0.2f, 0.2f, 0.3f, 0.3f, 0.4f, 0.4f}));
    // A shorter track ends in silence; a member without one is silent while the script plays.
    EXPECT_EQ(b, (std::array<float, 8>{-0.1f, -0.1f, -0.2f, -0.2f, 0.0f, 0.0f, 0.0f, 0.0f}));
    EXPECT_EQ(other, cycleOf(0.0f));

    cue.beginCycle(1000 + kCycle);
    ASSERT_TRUE(cue.render("mA", 1000 + kCycle, a.data(), kCycle));
    EXPECT_EQ(a, (std::array<float, 8>{0.5f, 0.5f, 0.6f, 0.6f, 0.0f, 0.0f, 0.0f, 0.0f}));

    // Over: the members play what they play again.
    cue.beginCycle(1000 + 2 * kCycle);
    auto after = cycleOf(0.9f);
    EXPECT_FALSE(cue.render("mA", 1000 + 2 * kCycle, after.data(), kCycle));
    EXPECT_EQ(after, cycleOf(0.9f));
}

TEST(ProbeCue, NothingIsPlayedWithoutAScriptOrAfterAStopEvenWithinACycle)
{
    const auto script = twoMembers();
    ProbeCue cue;
    for (const bool stopped : {false, true}) {
        if (stopped) {
            cue.arm(&script);
        }
        cue.beginCycle(1000);
        cue.arm(nullptr);
        auto out = cycleOf(0.9f);
        EXPECT_FALSE(cue.render("mA", 1000, out.data(), kCycle)) << stopped;
        EXPECT_EQ(out, cycleOf(0.9f));
    }
}

} // namespace
} // namespace orvanta::pipewire
