// The test sounds a measurement hands to the stacked device's data thread are not played at all once
// stopped, even within a cycle. (How they play is measured in the simulated room.)

#include "pipewire/ProbeCue.h"
#include "pipewire/DelayLine.h"

#include <gtest/gtest.h>

#include <array>

namespace orvanta::pipewire {
namespace {

TEST(ProbeCue, NothingIsPlayedWithoutAScriptOrAfterAStopEvenWithinACycle)
{
    ProbeScript script;
    script.tracks.emplace_back("mA", std::vector<float>{0.1f, 0.2f, 0.3f, 0.4f, 0.5f, 0.6f});
    ProbeCue cue;
    for (const bool stopped : {false, true}) {
        if (stopped) {
            cue.arm(&script);
        }
        cue.beginCycle(1000);
        cue.arm(nullptr);
        std::array<float, 4 * kChannels> out{};
        out.fill(0.9f);
        EXPECT_FALSE(cue.render("mA", 1000, out.data(), 4)) << stopped;
        EXPECT_EQ(out[0], 0.9f);
    }
}

} // namespace
} // namespace orvanta::pipewire
