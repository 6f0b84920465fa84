#include "support/SimAudio.h"

#include "sim/DeviceDescription.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unordered_set>

namespace orvanta::testing {
namespace {

using audio::AudioDeviceOption;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(Catalogue, EmptySystemGivesEmptyCatalogue)
{
    SimAudio sim({});
    EXPECT_THAT(sim.audio.getAllDeviceIDs(), IsEmpty());
    EXPECT_THAT(sim.audio.getOutputDevices(), IsEmpty());
    // The device list is sized first, then read with that size, on each call.
    EXPECT_THAT(sim.calls(), ElementsAre("size 1 'dev#' glob 0 -> 0", "get 1 'dev#' glob 0 [0] -> 0",
                                         "size 1 'dev#' glob 0 -> 0", "get 1 'dev#' glob 0 [0] -> 0"));
}

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

TEST(Catalogue, ReadsEachDeviceInTheSpecifiedOrder)
{
    SimAudio sim({outputDevice("Speakers", "spk")});
    sim.audio.getOutputDevices();
    const auto id = std::to_string(sim.idOf("spk"));
    EXPECT_THAT(sim.calls(),
                ElementsAre("size 1 'dev#' glob 0 -> 0", "get 1 'dev#' glob 0 [4] -> 0",
                            "size " + id + " 'stm#' outp 0 -> 0", "get " + id + " 'lnam' glob 0 [8] -> 0",
                            "get " + id + " 'uid ' glob 0 [8] -> 0", "get " + id + " 'tran' glob 0 [4] -> 0"));
}

TEST(Catalogue, HidesTheStackedDeviceButUIDLookupStillFindsIt)
{
    SimAudio sim({outputDevice("Speakers", "spk"), outputDevice("Phones", "phones")});
    hal::AudioObjectID leftover = 0;
    ASSERT_EQ(sim.system.createAggregateDevice(
                  hal::PropertyList::dictionary({{"name", hal::PropertyList::string("Orvanta")},
                                                 {"uid", hal::PropertyList::string(audio::stackedDeviceUID)},
                                                 {"subdevices", hal::PropertyList::array({hal::PropertyList::dictionary(
                                                                    {{"uid", hal::PropertyList::string("spk")}})})}}),
                  leftover),
              hal::noErr);

    const auto devices = sim.audio.getOutputDevices();
    ASSERT_EQ(devices.size(), 2u);
    EXPECT_EQ(devices[0].uid, "spk");
    EXPECT_EQ(devices[1].uid, "phones");
    EXPECT_EQ(sim.audio.findStackedDeviceID(), leftover);
}

TEST(Catalogue, ListsOtherAggregatesLikeAnyDevice)
{
    SimAudio sim({outputDevice("Speakers", "spk")});
    hal::AudioObjectID id = 0;
    sim.system.createAggregateDevice(
        hal::PropertyList::dictionary({{"name", hal::PropertyList::string("Studio Multi-Output")},
                                       {"uid", hal::PropertyList::string("com.quellon.stacked.copy")},
                                       {"subdevices", hal::PropertyList::array({hal::PropertyList::dictionary(
                                                          {{"uid", hal::PropertyList::string("spk")}})})}}),
        id);
    const auto devices = sim.audio.getOutputDevices();
    ASSERT_EQ(devices.size(), 2u);
    EXPECT_EQ(devices[1], (AudioDeviceOption{"Studio Multi-Output", "com.quellon.stacked.copy", false}));
}

TEST(Catalogue, TellsBluetoothByTransportType)
{
    auto unreadable = outputDevice("Mystery", "mystery", hal::kAudioDeviceTransportTypeBluetooth);
    unreadable.failures.push_back({sim::CallKind::GetPropertyData, hal::kAudioDevicePropertyTransportType, {}, {}, -1});
    SimAudio sim({outputDevice("LE", "le", hal::kAudioDeviceTransportTypeBluetoothLE),
                  outputDevice("Classic", "classic", hal::kAudioDeviceTransportTypeBluetooth),
                  outputDevice("USB", "usb", hal::kAudioDeviceTransportTypeUSB), outputDevice("Built-in", "builtin"),
                  outputDevice("AirPlay", "airplay", hal::kAudioDeviceTransportTypeAirPlay), unreadable});

    EXPECT_TRUE(sim.audio.isBluetoothDevice("le"));
    EXPECT_TRUE(sim.audio.isBluetoothDevice("classic"));
    EXPECT_FALSE(sim.audio.isBluetoothDevice("usb"));
    EXPECT_FALSE(sim.audio.isBluetoothDevice("builtin"));
    EXPECT_FALSE(sim.audio.isBluetoothDevice("airplay"));
    EXPECT_FALSE(sim.audio.isBluetoothDevice("mystery"));
    EXPECT_FALSE(sim.audio.isBluetoothDevice("no-such-device"));

    const auto devices = sim.audio.getOutputDevices();
    EXPECT_TRUE(devices[0].isBluetooth);
    EXPECT_FALSE(devices[5].isBluetooth);
}

TEST(Catalogue, NominalSampleRateFallsBackTo48k)
{
    auto zero = outputDevice("Zero", "zero", hal::kAudioDeviceTransportTypeUSB, 0.0);
    auto negative = outputDevice("Negative", "negative", hal::kAudioDeviceTransportTypeUSB, -44100.0);
    auto failing = outputDevice("Failing", "failing", hal::kAudioDeviceTransportTypeUSB, 96000.0);
    failing.failures.push_back(
        {sim::CallKind::GetPropertyData, hal::kAudioDevicePropertyNominalSampleRate, {}, {}, -1});
    SimAudio sim({outputDevice("BT", "bt", hal::kAudioDeviceTransportTypeBluetooth, 44100.0), zero, negative, failing});

    EXPECT_EQ(sim.audio.getNominalSampleRate("bt"), 44100.0);
    EXPECT_EQ(sim.audio.getNominalSampleRate("zero"), 48000.0);
    EXPECT_EQ(sim.audio.getNominalSampleRate("negative"), 48000.0);
    EXPECT_EQ(sim.audio.getNominalSampleRate("failing"), 48000.0);
    EXPECT_EQ(sim.audio.getNominalSampleRate("unknown"), 48000.0);
}

TEST(Catalogue, UIDLookupStopsAtTheFirstMatch)
{
    SimAudio sim({outputDevice("A", "same", hal::kAudioDeviceTransportTypeBluetooth, 44100.0),
                  outputDevice("B", "same", hal::kAudioDeviceTransportTypeUSB, 96000.0), outputDevice("C", "other")});
    EXPECT_EQ(sim.audio.getNominalSampleRate("same"), 44100.0);
    EXPECT_THAT(sim.calls({"get"}), ElementsAre("get 1 'dev#' glob 0 [12] -> 0", "get 2 'uid ' glob 0 [8] -> 0",
                                                "get 2 'nsrt' glob 0 [8] -> 0"));
}

TEST(Catalogue, RenamedDeviceGivesAnUnequalRecord)
{
    SimAudio sim({outputDevice("Desk Speaker", "desk")});
    const auto before = sim.audio.getOutputDevices();
    sim.system.renameDevice("desk", "Desk Speaker (2)");
    const auto after = sim.audio.getOutputDevices();
    ASSERT_EQ(before.size(), 1u);
    ASSERT_EQ(after.size(), 1u);
    EXPECT_EQ(before[0].uid, after[0].uid);
    EXPECT_NE(before[0], after[0]);
}

TEST(Catalogue, KeepsOrderAndDuplicatesWhenNamesAreShared)
{
    SimAudio sim({outputDevice("Speaker", "z-second"), outputDevice("Speaker", "a-first")});
    const auto devices = sim.audio.getOutputDevices();
    ASSERT_EQ(devices.size(), 2u);
    EXPECT_EQ(devices[0].uid, "z-second");
    EXPECT_EQ(devices[1].uid, "a-first");
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
    const auto ids = sim.audio.getAllDeviceIDs();
    sim.system.setBeforeCall({});
    ASSERT_EQ(ids.size(), 3u);
    EXPECT_EQ(ids[2], hal::kAudioObjectUnknown);

    sim.system.addDevice(outputDevice("D", "d"));
    sim.system.setBeforeCall([&sim](const sim::CallRecord& call) {
        if (call.kind == sim::CallKind::GetPropertyData &&
            call.address.mSelector == hal::kAudioHardwarePropertyDevices) {
            sim.system.removeDevice("d");
        }
    });
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
