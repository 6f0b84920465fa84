// The backend's parts that need no server: the mirror, module argument quoting, the delay plan.

#include "pulse/LoopbackPlan.h"
#include "pulse/ModuleArguments.h"
#include "pulse/PulseMirror.h"

#include <gtest/gtest.h>

namespace orvanta::testing {
namespace {

using pulse::PulseMirror;

void sinkInfo(PulseMirror& mirror, std::uint32_t index, const char* name)
{
    pa_sink_info info{};
    info.index = index;
    info.name = name;
    info.owner_module = PA_INVALID_INDEX;
    mirror.update(info);
}

const char* sinkAt(const PulseMirror& mirror, std::uint32_t index)
{
    const auto it = mirror.sinks.find(index);
    return it == mirror.sinks.end() ? "" : it->second.name.c_str();
}

TEST(PulseMirror, ARemovalForgetsTheObjectOrItsLateInfoAndLeavesItsIndexFree)
{
    PulseMirror mirror;
    sinkInfo(mirror, 1, "spk");
    mirror.removeSink(1);
    EXPECT_TRUE(mirror.sinks.empty());
    sinkInfo(mirror, 1, "reused"); // a server may hand the index out again
    EXPECT_STREQ(sinkAt(mirror, 1), "reused");

    // A removal before its info drops that info only.
    mirror.removeSink(2);
    sinkInfo(mirror, 2, "late");
    EXPECT_EQ(mirror.sinks.count(2), 0u);
    sinkInfo(mirror, 2, "reused");
    EXPECT_STREQ(sinkAt(mirror, 2), "reused");

    // A new object announced at the index outweighs a removal still pending there.
    mirror.removeModule(7);
    mirror.announceNew(PA_SUBSCRIPTION_EVENT_MODULE, 7);
    mirror.addModule({7, "module-loopback", ""});
    EXPECT_EQ(mirror.modules.count(7), 1u);
}

TEST(PulseModuleArguments, ValuesWithBlanksQuotesAndBackslashesReadBackAsWritten)
{
    const pulse::ModuleArgumentList written{{"sink", "spk"},        {"label", "Living Room"}, {"quoted", R"(say "hi")"},
                                            {"path", R"(C:\dir\)"}, {"apostrophe", "it's"},   {"empty", ""}};
    const auto text = pulse::formatModuleArguments(written);
    EXPECT_EQ(text, R"(sink=spk label="Living Room" quoted="say \"hi\"" path="C:\\dir\\" apostrophe="it's" empty="")");
    const auto read = pulse::parseModuleArguments(text);
    ASSERT_EQ(read.size(), written.size());
    for (const auto& [key, value] : written) {
        EXPECT_EQ(read.at(key), value) << key;
    }
    EXPECT_EQ(pulse::parseModuleArguments("sink_properties='device.description=BT device.bus=bluetooth' rate=44100"),
              (std::map<std::string, std::string>{{"rate", "44100"},
                                                  {"sink_properties", "device.description=BT device.bus=bluetooth"}}));
}

TEST(LoopbackPlan, EveryMemberWaitsForTheOneThatDeclaresTheMost)
{
    EXPECT_EQ(pulse::holdBacks({{"spk", 0.0}, {"bt", 150.0}}), (pulse::HoldBacks{{"bt", 0.0}, {"spk", 150.0}}));
    // A negative declaration counts as none.
    EXPECT_EQ(pulse::holdBacks({{"spk", -20.0}, {"bt", 5.5}}), (pulse::HoldBacks{{"bt", 0.0}, {"spk", 5.5}}));
    // Loopbacks: the base plus the hold-back in whole ms, halves away from zero.
    EXPECT_EQ(pulse::loopbackLatencies({{"spk", 0.0}, {"bt", 150.5}}),
              (pulse::LoopbackLatencies{{"bt", 30}, {"spk", 181}}));
    // Loopbacks left by an earlier run stand for the differences between the declarations.
    EXPECT_EQ(pulse::declaredFromLoopbacks({{"bt", 30}, {"spk", 180}}),
              (pulse::DeclaredLatencies{{"bt", 150.0}, {"spk", 0.0}}));
}

} // namespace
} // namespace orvanta::testing
