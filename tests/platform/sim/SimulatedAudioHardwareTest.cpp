#include "sim/SimulatedAudioHardware.h"

#include "hal/PropertyTable.h"

#include <gtest/gtest.h>

namespace orvanta::sim {
namespace {

using namespace orvanta::hal;

DeviceSpec device(std::string uid, AudioObjectID id, UInt32 outputStreams = 1)
{
    DeviceSpec spec;
    spec.name = spec.uid = std::move(uid);
    spec.id = id;
    spec.outputStreams = outputStreams;
    return spec;
}

class SimulatedSystem : public ::testing::Test
{
protected:
    SimulatedAudioHardware system{SystemSpec{{device("a", 10), device("b", 11), device("mic", 12, 0)}, {}, {}}};
    Float64 rate = 12345.0;

    OSStatus read(AudioObjectID id, const PropertyKey& key, UInt32 size, void* out)
    {
        return system.getPropertyData(id, key.address(), 0, nullptr, size, out);
    }
    OSStatus setDefault(AudioObjectID id)
    {
        return system.setPropertyData(1, kDefaultOutputDevice.address(), 0, nullptr, sizeof id, &id);
    }
};

TEST_F(SimulatedSystem, UnknownObjectsPropertiesSizesAndWritesFailAsTheRealServiceDoesAndLeaveTheBufferAlone)
{
    EXPECT_EQ(read(99, kNominalSampleRate, sizeof rate, &rate), kAudioHardwareBadObjectError);
    EXPECT_EQ(read(10, kActiveSubDeviceList, 4, &rate), kAudioHardwareUnknownPropertyError);
    EXPECT_EQ(read(10, kNominalSampleRate, 4, &rate), kAudioHardwareBadPropertySizeError);
    EXPECT_EQ(system.setPropertyData(10, kNominalSampleRate.address(), 0, nullptr, sizeof rate, &rate),
              kAudioHardwareIllegalOperationError);
    EXPECT_EQ(rate, 12345.0);
    AudioObjectID ids[1] = {};
    UInt32 size = sizeof ids;
    ASSERT_EQ(system.getPropertyData(1, kDevices.address(), 0, nullptr, size, ids), noErr);
    EXPECT_EQ(std::pair(size, ids[0]), std::pair(4u, 10u)); // cut to the buffer
}

TEST_F(SimulatedSystem, DefaultOutputAcceptsOnlyOutputDevicesAndCreationNeedsAUIDAndDestroyingItHandsItOn)
{
    for (const auto& [id, status] : {std::pair{11u, noErr}, std::pair{12u, kAudioHardwareBadDeviceError},
                                     std::pair{77u, kAudioHardwareBadDeviceError}}) {
        EXPECT_EQ(setDefault(id), status) << id;
    }
    EXPECT_EQ(system.defaultOutputDevice(), 11u);
    AudioObjectID aggregate = 0;
    const auto member = PropertyList::dictionary({{"uid", PropertyList::string("a")}});
    ASSERT_EQ(system.createAggregateDevice(PropertyList::dictionary({{"uid", PropertyList::string("s")},
                                                                     {"subdevices", PropertyList::array({member})}}),
                                           aggregate),
              noErr);
    ASSERT_EQ(setDefault(aggregate), noErr);
    ASSERT_EQ(system.destroyAggregateDevice(aggregate), noErr);
    EXPECT_EQ(system.defaultOutputDevice(), 10u);
}

} // namespace
} // namespace orvanta::sim
