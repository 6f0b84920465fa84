#include "support/SimAudio.h"

#include "sim/DeviceDescription.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tuple>
#include <unordered_set>

namespace orvanta::testing {
namespace {

using audio::AudioDeviceOption;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(Catalogue, ListsOutputsInPlatformOrderAndLeavesInputOnlyDevicesOut)
{
    SimAudio sim(sim::builtinDeviceDescription().devices);
    const auto devices = sim.audio.getOutputDevices();
    EXPECT_THAT(devices,
                ElementsAre(AudioDeviceOption{"Built-in Speakers", "alsa_output.pci-0000_00_1f.3.analog-stereo", false},
                            AudioDeviceOption{"Bluetooth Speaker", "bluez_output.A4_77_58_0C_11_2E.1", true},
                            AudioDeviceOption{"Bluetooth LE Headphones", "bluez_output.F0_4B_3A_22_90_71.1", true},
                            AudioDeviceOption{"USB Headset", "alsa_output.usb-Headset_00.analog-stereo", false},
                            AudioDeviceOption{"HDMI Display", "alsa_output.pci-0000_01_00.1.hdmi-stereo", false}));
}

TEST(Catalogue, SizesTheListThenReadsItAndEachDeviceInTheSpecifiedOrder)
{
    SimAudio empty({});
    EXPECT_THAT(empty.audio.getAllDeviceIDs(), IsEmpty());
    EXPECT_THAT(empty.audio.getOutputDevices(), IsEmpty());
    EXPECT_THAT(empty.calls(), ElementsAre("size 1 'dev#' glob 0 -> 0", "get 1 'dev#' glob 0 [0] -> 0",
                                           "size 1 'dev#' glob 0 -> 0", "get 1 'dev#' glob 0 [0] -> 0"));
    SimAudio sim({outputDevice("Speakers", "spk")});
    sim.audio.getOutputDevices();
    const auto id = std::to_string(sim.idOf("spk"));
    EXPECT_THAT(sim.calls(),
                ElementsAre("size 1 'dev#' glob 0 -> 0", "get 1 'dev#' glob 0 [4] -> 0",
                            "size " + id + " 'stm#' outp 0 -> 0", "get " + id + " 'lnam' glob 0 [8] -> 0",
                            "get " + id + " 'uid ' glob 0 [8] -> 0", "get " + id + " 'tran' glob 0 [4] -> 0"));
}

hal::AudioObjectID addAggregate(SimAudio& sim, const std::string& name, const std::string& uid)
{
    hal::AudioObjectID id = 0;
    sim.system.createAggregateDevice(
        hal::PropertyList::dictionary({{"name", hal::PropertyList::string(name)},
                                       {"uid", hal::PropertyList::string(uid)},
                                       {"subdevices", hal::PropertyList::array({hal::PropertyList::dictionary(
                                                          {{"uid", hal::PropertyList::string("spk")}})})}}),
        id);
    return id;
}

TEST(Catalogue, HidesTheStackedDeviceButListsOtherAggregatesAndDevicesOfTheSameName)
{
    SimAudio sim({outputDevice("Speakers", "spk"), outputDevice("Speakers", "a-second")});
    const auto stacked = addAggregate(sim, "Orvanta", audio::stackedDeviceUID);
    addAggregate(sim, "Studio Multi-Output", "com.quellon.stacked.copy");
    EXPECT_THAT(sim.audio.getOutputDevices(),
                ElementsAre(AudioDeviceOption{"Speakers", "spk", false},
                            AudioDeviceOption{"Speakers", "a-second", false},
                            AudioDeviceOption{"Studio Multi-Output", "com.quellon.stacked.copy", false}));
    EXPECT_EQ(sim.audio.findStackedDeviceID(), stacked);
}

TEST(Catalogue, TellsBluetoothByTransportTypeAndReadsRatesWith48kAsTheFallback)
{
    auto unreadable = outputDevice("Mystery", "mystery", hal::kAudioDeviceTransportTypeBluetooth, 96000.0);
    unreadable.failures = {{sim::CallKind::GetPropertyData, hal::kAudioDevicePropertyTransportType, {}, {}, -1},
                           {sim::CallKind::GetPropertyData, hal::kAudioDevicePropertyNominalSampleRate, {}, {}, -1}};
    SimAudio sim({outputDevice("LE", "le", hal::kAudioDeviceTransportTypeBluetoothLE, 44100.0),
                  outputDevice("Classic", "classic", hal::kAudioDeviceTransportTypeBluetooth, 0.0),
                  outputDevice("USB", "usb", hal::kAudioDeviceTransportTypeUSB, -44100.0),
                  outputDevice("Built-in", "builtin"),
                  outputDevice("AirPlay", "airplay", hal::kAudioDeviceTransportTypeAirPlay, 96000.0), unreadable});
    for (const auto& [uid, bluetooth, rate] :
         {std::tuple{"le", true, 44100.0}, std::tuple{"classic", true, 48000.0}, std::tuple{"usb", false, 48000.0},
          std::tuple{"builtin", false, 48000.0}, std::tuple{"airplay", false, 96000.0},
          std::tuple{"mystery", false, 48000.0}, std::tuple{"no-such-device", false, 48000.0}}) {
        EXPECT_EQ(sim.audio.isBluetoothDevice(uid), bluetooth) << uid;
        EXPECT_EQ(sim.audio.getNominalSampleRate(uid), rate) << uid;
    }
    const auto devices = sim.audio.getOutputDevices();
    EXPECT_TRUE(devices[0].isBluetooth);
    EXPECT_FALSE(devices[5].isBluetooth);
}

TEST(Catalogue, UIDLookupStopsAtTheFirstMatch)
{
    SimAudio sim({outputDevice("A", "same", hal::kAudioDeviceTransportTypeBluetooth, 44100.0),
                  outputDevice("B", "same", hal::kAudioDeviceTransportTypeUSB, 96000.0), outputDevice("C", "other")});
    EXPECT_EQ(sim.audio.getNominalSampleRate("same"), 44100.0);
    EXPECT_THAT(sim.calls({"get"}), ElementsAre("get 1 'dev#' glob 0 [12] -> 0", "get 2 'uid ' glob 0 [8] -> 0",
                                                "get 2 'nsrt' glob 0 [8] -> 0"));
}

// Removes a device while the device list is read, after it was sized.
void removeDuringListRead(SimAudio& sim, const std::string& uid)
{
    sim.system.setBeforeCall([&sim, uid](const sim::CallRecord& call) {
        if (call.kind == sim::CallKind::GetPropertyData &&
            call.address.mSelector == hal::kAudioHardwarePropertyDevices) {
            sim.system.removeDevice(uid);
        }
    });
}

TEST(Catalogue, DeviceListShrinkingBetweenSizeAndReadLeavesZeroIDsThatMatchNothing)
{
    SimAudio sim({outputDevice("A", "a"), outputDevice("B", "b"), outputDevice("C", "c")});
    removeDuringListRead(sim, "c");
    const auto ids = sim.audio.getAllDeviceIDs();
    ASSERT_EQ(ids.size(), 3u);
    EXPECT_EQ(ids[2], hal::kAudioObjectUnknown);
    sim.system.addDevice(outputDevice("D", "d"));
    removeDuringListRead(sim, "d");
    const auto devices = sim.audio.getOutputDevices();
    ASSERT_EQ(devices.size(), 2u);
    EXPECT_EQ(devices[1].uid, "b");
}

TEST(AudioDeviceOption, EqualityAndHashCoverAllThreeFields)
{
    const AudioDeviceOption base{"Speaker", "uid-1", false};
    std::unordered_set<AudioDeviceOption> set{
        base, {"Speaker", "uid-1", true}, {"Speaker 2", "uid-1", false}, {"Speaker", "uid-2", false}, base};
    EXPECT_EQ(set.size(), 4u);
    EXPECT_EQ(std::hash<AudioDeviceOption>{}(base), std::hash<AudioDeviceOption>{}(AudioDeviceOption(base)));
    EXPECT_NE(base, (AudioDeviceOption{"Speaker", "uid-1", true}));
}

} // namespace
} // namespace orvanta::testing
