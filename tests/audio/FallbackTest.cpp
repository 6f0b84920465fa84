// Every platform call an operation makes is failed in turn: it still ends with its neutral result.

#include "support/SimAudio.h"

#include "sim/DeviceDescription.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

namespace orvanta::testing {
namespace {

constexpr hal::OSStatus kInjected = -4242;

// Runs operation once to count its calls, then once per call on a fresh system with that call failing.
void forEachFailedCall(const std::function<void(SimAudio&)>& prepare,
                       const std::function<void(SimAudio&, std::size_t failed)>& operationAndCheck)
{
    std::size_t total = 0;
    {
        SimAudio sim(sim::builtinDeviceDescription().devices);
        prepare(sim);
        sim.reset();
        operationAndCheck(sim, 0);
        total = sim.system.calls().size();
    }
    ASSERT_GT(total, 0u);
    for (std::size_t n = 1; n <= total; ++n) {
        SCOPED_TRACE("failing call " + std::to_string(n) + " of " + std::to_string(total));
        SimAudio sim(sim::builtinDeviceDescription().devices);
        prepare(sim);
        sim.reset();
        sim.system.failNthCallFromNow(n, kInjected);
        operationAndCheck(sim, n);
        // The calls before the failed one are the same as in the first run, so it did happen.
        ASSERT_EQ(sim.system.calls().at(n - 1).status, kInjected) << sim.system.calls().at(n - 1).toString();
    }
}

const std::string kSpeakers = "alsa_output.pci-0000_00_1f.3.analog-stereo";
const std::string kBluetooth = "bluez_output.A4_77_58_0C_11_2E.1";

void nothing(SimAudio&) {}
const auto startSync = [](SimAudio& sim) { ASSERT_EQ(sim.audio.createStackedDevice(kSpeakers, kBluetooth, 0, 0), 0); };

TEST(Fallbacks, QueriesFallToNeutralValuesAndAVolumeEndsInHardwareOrSoftwareButNeverHalfway)
{
    const auto full = SimAudio(sim::builtinDeviceDescription().devices).audio.getOutputDevices();
    forEachFailedCall(nothing, [&full](SimAudio& sim, std::size_t failed) {
        const auto devices = sim.audio.getOutputDevices();
        EXPECT_LE(devices.size(), full.size());
        for (const auto& device : devices) {
            const bool known = std::any_of(full.begin(), full.end(), [&device](const audio::AudioDeviceOption& f) {
                return (device.uid == f.uid || device.uid.empty()) && (device.name == f.name || device.name.empty()) &&
                       (!device.isBluetooth || f.isBluetooth);
            });
            EXPECT_TRUE(known) << device.name << " / " << device.uid;
        }
        const double rate = sim.audio.getNominalSampleRate(kBluetooth);
        EXPECT_TRUE(rate == 44100.0 || (failed > 0 && rate == 48000.0)) << rate;
        EXPECT_TRUE(sim.audio.isBluetoothDevice(kBluetooth) || failed > 0);
        EXPECT_TRUE(sim.audio.supportsHardwareVolume(kSpeakers) || failed > 0);
        sim.audio.setVolume(kBluetooth, 0.5f);
        const auto count = sim.printed.lines.size();
        EXPECT_TRUE(count == 0 || count == 1 || count == 3) << count;
        if (count == 3) {
            EXPECT_FALSE(sim.audio.deviceSupportsHardwareVolume().at(kBluetooth));
            EXPECT_EQ(sim.audio.softwareVolumes().at(kBluetooth), 0.5f);
        }
    });
}

TEST(Fallbacks, CreationEitherSucceedsOrReturnsTheInjectedStatus)
{
    forEachFailedCall(startSync, [](SimAudio& sim, std::size_t failed) {
        const auto status = sim.audio.createStackedDevice(kSpeakers, kBluetooth, 0, 150);
        const auto& calls = sim.system.calls();
        const bool creationFailed = failed > 0 && calls.at(failed - 1).kind == sim::CallKind::CreateAggregateDevice;
        EXPECT_EQ(status, creationFailed ? kInjected : hal::noErr);
        if (creationFailed) {
            EXPECT_EQ(sim.printed.lines.back(), "❌ Create Error: -4242");
            EXPECT_EQ(calls.back().kind, sim::CallKind::CreateAggregateDevice); // no default-output write after it
        } else {
            EXPECT_THAT(sim.printed.lines.back(), ::testing::StartsWith("✅ Sync Device Created! ID: "));
        }
    });
}

TEST(Fallbacks, RuntimeLatencyEitherAppliesOrStaysQuietOrReports)
{
    forEachFailedCall(startSync, [](SimAudio& sim, std::size_t) {
        sim.audio.setRuntimeLatency(kBluetooth, 150);
        for (const auto& line : sim.printed.lines) {
            EXPECT_TRUE(line == "⏱️ Real-time latency set on " + kBluetooth + ": 150ms (6615.0 frames)" ||
                        line == "⏱️ Real-time latency set on " + kBluetooth + ": 150ms (7200.0 frames)" ||
                        line == "ℹ️ Runtime latency set failed (-4242); will apply on next sync toggle.")
                << line;
        }
        EXPECT_LE(sim.printed.lines.size(), 1u);
    });
}

} // namespace
} // namespace orvanta::testing
