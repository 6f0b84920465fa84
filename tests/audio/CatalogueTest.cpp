#include "support/SimAudio.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tuple>

namespace orvanta::testing {
namespace {

using audio::AudioDeviceOption;
using ::testing::ElementsAre;

TEST(Catalogue, ListsOutputsInPlatformOrderAndHidesInputOnlyDevicesAndTheStackedDeviceButNoOtherAggregate)
{
    auto microphone = outputDevice("Microphone", "mic");
    microphone.outputStreams = 0;
    SimAudio sim({outputDevice("Speakers", "spk"), microphone, outputDevice("Speakers", "a-second")});
    hal::AudioObjectID stacked = 0, other = 0;
    const auto aggregate = [](const std::string& name, const std::string& uid) {
        const auto member = hal::PropertyList::dictionary({{"uid", hal::PropertyList::string("spk")}});
        return hal::PropertyList::dictionary({{"name", hal::PropertyList::string(name)},
                                              {"uid", hal::PropertyList::string(uid)},
                                              {"subdevices", hal::PropertyList::array({member})}});
    };
    sim.system.createAggregateDevice(aggregate("Orvanta", audio::stackedDeviceUID), stacked);
    sim.system.createAggregateDevice(aggregate("Studio Multi-Output", "com.quellon.stacked.copy"), other);
    EXPECT_THAT(sim.audio.getOutputDevices(),
                ElementsAre(AudioDeviceOption{"Speakers", "spk", false},
                            AudioDeviceOption{"Speakers", "a-second", false},
                            AudioDeviceOption{"Studio Multi-Output", "com.quellon.stacked.copy", false}));
    EXPECT_EQ(sim.audio.findStackedDeviceID(), stacked);
}

TEST(Catalogue, TellsBluetoothByTransportTypeAndReadsRatesWith48kAsTheFallbackFromTheFirstDeviceOfAUID)
{
    auto unreadable = outputDevice("Mystery", "mystery", hal::kAudioDeviceTransportTypeBluetooth, 96000.0);
    unreadable.failures = {{sim::CallKind::GetPropertyData, hal::kAudioDevicePropertyTransportType, {}, {}, -1},
                           {sim::CallKind::GetPropertyData, hal::kAudioDevicePropertyNominalSampleRate, {}, {}, -1}};
    SimAudio sim({outputDevice("LE", "le", hal::kAudioDeviceTransportTypeBluetoothLE, 44100.0),
                  outputDevice("Classic", "classic", hal::kAudioDeviceTransportTypeBluetooth, 0.0),
                  outputDevice("USB", "usb", hal::kAudioDeviceTransportTypeUSB, -44100.0),
                  outputDevice("AirPlay", "airplay", hal::kAudioDeviceTransportTypeAirPlay, 96000.0), unreadable,
                  outputDevice("Twin", "airplay", hal::kAudioDeviceTransportTypeBluetooth, 44100.0)});
    for (const auto& [uid, bluetooth, rate] :
         {std::tuple{"le", true, 44100.0}, std::tuple{"classic", true, 48000.0}, std::tuple{"usb", false, 48000.0},
          std::tuple{"airplay", false, 96000.0}, std::tuple{"mystery", false, 48000.0},
          std::tuple{"no-such-device", false, 48000.0}}) {
        EXPECT_EQ(sim.audio.isBluetoothDevice(uid), bluetooth) << uid;
        EXPECT_EQ(sim.audio.getNominalSampleRate(uid), rate) << uid;
    }
}

TEST(Catalogue, DeviceListShrinkingBetweenSizeAndReadLeavesZeroIDsThatMatchNothing)
{
    SimAudio sim({outputDevice("A", "a"), outputDevice("B", "b"), outputDevice("C", "c")});
    sim.system.setBeforeCall([&sim](const sim::CallRecord& call) {
        if (call.kind == sim::CallKind::GetPropertyData &&
            call.address.mSelector == hal::kAudioHardwarePropertyDevices) {
            sim.system.removeDevice("c");
        }
    });
    EXPECT_THAT(sim.audio.getAllDeviceIDs(), ElementsAre(::testing::_, ::testing::_, hal::kAudioObjectUnknown));
    sim.system.addDevice(outputDevice("C", "c"));
    EXPECT_THAT(sim.audio.getOutputDevices(),
                ElementsAre(AudioDeviceOption{"A", "a", false}, AudioDeviceOption{"B", "b", false}));
}

} // namespace
} // namespace orvanta::testing
