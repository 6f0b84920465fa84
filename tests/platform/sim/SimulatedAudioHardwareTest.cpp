#include "sim/SimulatedAudioHardware.h"

#include "hal/PropertyTable.h"

#include <gtest/gtest.h>

namespace orvanta::sim {
namespace {

using namespace orvanta::hal;

DeviceSpec device(std::string uid, std::optional<AudioObjectID> id = {})
{
    DeviceSpec spec;
    spec.name = "Device " + uid;
    spec.uid = std::move(uid);
    spec.id = id;
    return spec;
}

PropertyList stacked(std::initializer_list<std::pair<std::string, std::uint32_t>> members)
{
    PropertyList::Array list;
    for (const auto& [uid, frames] : members) {
        list.push_back(PropertyList::dictionary(
            {{"uid", PropertyList::string(uid)}, {"latency-out", PropertyList::uint32(frames)}}));
    }
    return PropertyList::dictionary({{"name", PropertyList::string("Orvanta")},
                                     {"uid", PropertyList::string("stacked")},
                                     {"subdevices", PropertyList::array(std::move(list))}});
}

class SimulatedSystem : public ::testing::Test
{
protected:
    SimulatedAudioHardware system{SystemSpec{{device("a", 10), device("b", 11)}, {}, {}}};

    OSStatus read(AudioObjectID id, const PropertyKey& key, UInt32 size, void* out)
    {
        return system.getPropertyData(id, key.address(), 0, nullptr, size, out);
    }
    std::string readUID(AudioObjectID id)
    {
        StringRef ref = nullptr;
        const OSStatus status = read(id, kDeviceUID, sizeof ref, &ref);
        return status == noErr ? OwnedString(ref).text() : "(" + std::to_string(status) + ")";
    }
};

TEST_F(SimulatedSystem, UnknownObjectsPropertiesAndSizesFailAsTheRealServiceDoes)
{
    UInt32 size = 0;
    Float64 rate = 0;
    EXPECT_EQ(system.getPropertyDataSize(99, kNominalSampleRate.address(), 0, nullptr, size),
              kAudioHardwareBadObjectError);
    EXPECT_EQ(read(99, kNominalSampleRate, sizeof rate, &rate), kAudioHardwareBadObjectError);
    EXPECT_EQ(system.setPropertyData(99, kExtraLatency.address(), 0, nullptr, sizeof rate, &rate),
              kAudioHardwareBadObjectError);
    EXPECT_FALSE(system.hasProperty(99, kDeviceUID.address()));
    EXPECT_FALSE(system.hasProperty(kAudioObjectUnknown, kDeviceUID.address()));
    EXPECT_EQ(system.destroyAggregateDevice(99), kAudioHardwareBadObjectError);
    // Unknown properties, wrong sizes and refused writes.
    Float32 level = 0.5f;
    EXPECT_EQ(read(10, kActiveSubDeviceList, 4, &rate), kAudioHardwareUnknownPropertyError);
    EXPECT_EQ(read(10, kNominalSampleRate, 4, &rate), kAudioHardwareBadPropertySizeError);
    EXPECT_EQ(system.setPropertyData(10, kNominalSampleRate.address(), 0, nullptr, sizeof rate, &rate),
              kAudioHardwareIllegalOperationError);
    EXPECT_EQ(system.setPropertyData(10, kVirtualMainVolume.address(), 0, nullptr, sizeof level, &level),
              kAudioHardwareUnknownPropertyError);
    // The device list answers only in the global scope, main element.
    EXPECT_EQ(system.getPropertyDataSize(1, {kAudioHardwarePropertyDevices, kAudioObjectPropertyScopeOutput, 0}, 0,
                                         nullptr, size),
              kAudioHardwareUnknownPropertyError);
}

TEST_F(SimulatedSystem, AggregateSubDevicesCarryMemberUIDsAndTakeExtraLatency)
{
    AudioObjectID aggregate = 0;
    ASSERT_EQ(system.createAggregateDevice(stacked({{"a", 0}, {"missing", 5}, {"b", 7200}}), aggregate), noErr);
    EXPECT_EQ(aggregate, 12u);

    UInt32 size = 0;
    ASSERT_EQ(system.getPropertyDataSize(aggregate, kActiveSubDeviceList.address(), 0, nullptr, size), noErr);
    ASSERT_EQ(size, 8u); // the missing member has no active sub-device
    AudioObjectID subs[2] = {};
    ASSERT_EQ(read(aggregate, kActiveSubDeviceList, size, subs), noErr);
    EXPECT_EQ(readUID(subs[0]), "a");
    EXPECT_EQ(readUID(subs[1]), "b");
    EXPECT_EQ(readUID(aggregate), "stacked");

    Float64 frames = 0;
    ASSERT_EQ(read(subs[1], kExtraLatency, sizeof frames, &frames), noErr);
    EXPECT_EQ(frames, 7200.0);
    frames = 6615.0;
    ASSERT_EQ(system.setPropertyData(subs[1], kExtraLatency.address(), 0, nullptr, sizeof frames, &frames), noErr);
    EXPECT_EQ(system.subDevice(subs[1])->extraLatencyFrames, 6615.0);

    ASSERT_EQ(system.destroyAggregateDevice(aggregate), noErr);
    EXPECT_EQ(system.subDevice(subs[0]), nullptr);
    EXPECT_EQ(readUID(subs[0]), "(" + std::to_string(kAudioHardwareBadObjectError) + ")");
}

TEST_F(SimulatedSystem, DefaultOutputAcceptsOnlyOutputDevicesAndCreationNeedsAUID)
{
    auto mic = device("mic", 12);
    mic.outputStreams = 0;
    mic.inputStreams = 1;
    system.addDevice(mic);
    for (const auto& [id, status] : {std::pair{11u, noErr}, std::pair{12u, kAudioHardwareBadDeviceError},
                                     std::pair{77u, kAudioHardwareBadDeviceError}}) {
        EXPECT_EQ(system.setPropertyData(1, kDefaultOutputDevice.address(), 0, nullptr, sizeof id, &id), status) << id;
    }
    EXPECT_EQ(system.defaultOutputDevice(), 11u);

    AudioObjectID aggregate = 0;
    EXPECT_EQ(system.createAggregateDevice(PropertyList::dictionary({}), aggregate),
              kAudioHardwareIllegalOperationError);
    EXPECT_EQ(system.createAggregateDevice(PropertyList::string("stacked"), aggregate),
              kAudioHardwareIllegalOperationError);
    EXPECT_EQ(aggregate, 0u);
    EXPECT_EQ(system.destroyAggregateDevice(10), kAudioHardwareIllegalOperationError);

    // Destroying the default output hands it to another device.
    ASSERT_EQ(system.createAggregateDevice(stacked({{"a", 0}}), aggregate), noErr);
    ASSERT_EQ(system.setPropertyData(1, kDefaultOutputDevice.address(), 0, nullptr, sizeof aggregate, &aggregate),
              noErr);
    ASSERT_EQ(system.destroyAggregateDevice(aggregate), noErr);
    EXPECT_EQ(system.defaultOutputDevice(), 10u);
}

TEST_F(SimulatedSystem, ArrayReadsAreCutToTheBufferAndFailedReadsLeaveItAlone)
{
    AudioObjectID ids[1] = {};
    UInt32 size = sizeof ids;
    ASSERT_EQ(system.getPropertyData(1, kDevices.address(), 0, nullptr, size, ids), noErr);
    EXPECT_EQ(size, 4u);
    EXPECT_EQ(ids[0], 10u);

    system.addFailure(std::nullopt, {CallKind::GetPropertyData, kAudioDevicePropertyNominalSampleRate, {}, {}, -1});
    Float64 rate = 12345.0;
    EXPECT_EQ(read(10, kNominalSampleRate, sizeof rate, &rate), -1);
    EXPECT_EQ(rate, 12345.0);
}

} // namespace
} // namespace orvanta::sim
