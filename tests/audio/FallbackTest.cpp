// Every platform call an operation makes is failed in turn: it still ends with its neutral result.

#include "support/SimAudio.h"

#include "sim/DeviceDescription.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

namespace orvanta::testing {
namespace {

constexpr hal::OSStatus kInjected = -4242;

// Runs check once to count its calls, then once per call on a fresh system with that call failing.
void forEachFailedCall(const std::function<void(SimAudio&, std::size_t failed)>& check)
{
    const auto devices = sim::builtinDeviceDescription().devices;
    std::size_t total = 0;
    for (std::size_t n = 0; n == 0 || n <= total; ++n) {
        SCOPED_TRACE("failing call " + std::to_string(n) + " of " + std::to_string(total));
        SimAudio sim(devices);
        if (n > 0) {
            sim.system.failNthCallFromNow(n, kInjected);
        }
        check(sim, n);
        if (n == 0) {
            total = sim.system.calls().size();
        } else { // the calls before the failed one are those of the first run, so it did happen
            ASSERT_EQ(sim.system.calls().at(n - 1).status, kInjected) << sim.system.calls().at(n - 1).toString();
        }
    }
}

const std::string kSpeakers = "alsa_output.pci-0000_00_1f.3.analog-stereo";
const std::string kBluetooth = "bluez_output.A4_77_58_0C_11_2E.1";

TEST(Fallbacks, QueriesFallToNeutralValuesAndAVolumeEndsInHardwareOrSoftwareButNeverHalfway)
{
    const auto full = SimAudio(sim::builtinDeviceDescription().devices).audio.getOutputDevices();
    forEachFailedCall([&full](SimAudio& sim, std::size_t failed) {
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

} // namespace
} // namespace orvanta::testing
