#pragma once

// The audio hardware interface over the user's sound server. Devices are sinks (the UID is the
// sink's name, the name its description) and sources that are not monitors (input only). A
// stacked device is a null sink whose monitor feeds one loopback per member; each loopback is
// a sub-device that carries its member's UID, and its latency keeps the members in step with
// their declared extra latencies (see LoopbackPlan.h). Reads come from the connection's
// mirror; writes wait for the server with a bound, and a missing server is a status. While the
// server is away, the stacked device this process made is still listed, as it will be rebuilt
// when the server returns: taking it down or changing a member's delay then changes what is
// rebuilt.

#include "LoopbackPlan.h"
#include "PulseConnection.h"
#include "PulseObjects.h"
#include "hal/AudioHardware.h"
#include "hal/PropertyValue.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace orvanta::pulse {

class PulseAudioHardware final : public hal::AudioHardware
{
public:
    // Object IDs: the kind in the high bits, the server's index in the low ones.
    static constexpr hal::AudioObjectID kSinkBase = 0x10000000;
    static constexpr hal::AudioObjectID kSourceBase = 0x20000000;
    static constexpr hal::AudioObjectID kLoopbackBase = 0x30000000;
    // The stacked device while the server is away, and after it (+1, +2, ...) its members.
    static constexpr hal::AudioObjectID kPlannedBase = 0x50000000;
    static constexpr hal::AudioObjectID kIndexMask = 0x0FFFFFFF;

    explicit PulseAudioHardware(std::unique_ptr<PulseConnection> connection);
    ~PulseAudioHardware() override;

    hal::OSStatus getPropertyDataSize(hal::AudioObjectID objectID, const hal::AudioObjectPropertyAddress& address,
                                      hal::UInt32 qualifierDataSize, const void* qualifierData,
                                      hal::UInt32& outDataSize) override;
    hal::OSStatus getPropertyData(hal::AudioObjectID objectID, const hal::AudioObjectPropertyAddress& address,
                                  hal::UInt32 qualifierDataSize, const void* qualifierData, hal::UInt32& ioDataSize,
                                  void* outData) override;
    hal::OSStatus setPropertyData(hal::AudioObjectID objectID, const hal::AudioObjectPropertyAddress& address,
                                  hal::UInt32 qualifierDataSize, const void* qualifierData, hal::UInt32 dataSize,
                                  const void* data) override;
    bool hasProperty(hal::AudioObjectID objectID, const hal::AudioObjectPropertyAddress& address) override;
    hal::OSStatus createAggregateDevice(const hal::PropertyList& description, hal::AudioObjectID& outDeviceID) override;
    hal::OSStatus destroyAggregateDevice(hal::AudioObjectID deviceID) override;

    PulseConnection& connection() { return *server; }
    // The devices the server lists, in the order of the device list.
    std::vector<hal::AudioObjectID> serverDevices();

private:
    using Value = hal::PropertyValue;

    // The property's current value, or the status that reading it gives.
    std::variant<Value, hal::OSStatus> read(hal::AudioObjectID objectID,
                                            const hal::AudioObjectPropertyAddress& address);
    std::variant<Value, hal::OSStatus> readDevice(hal::AudioObjectID objectID,
                                                  const hal::AudioObjectPropertyAddress& address);
    std::variant<Value, hal::OSStatus> readLoopback(hal::AudioObjectID objectID,
                                                    const hal::AudioObjectPropertyAddress& address);
    std::variant<Value, hal::OSStatus> readPlanned(hal::AudioObjectID objectID,
                                                   const hal::AudioObjectPropertyAddress& address);
    // The stacked device this process made, while the server is away.
    std::optional<std::string> planned() const;
    std::optional<std::string> plannedMember(hal::AudioObjectID objectID) const;
    // Loopback modules are sub-device objects; their server indices need not fit beside a kind.
    hal::AudioObjectID loopbackID(std::uint32_t module);
    std::optional<Loopback> loopbackFor(hal::AudioObjectID objectID);
    hal::OSStatus writeFailure() const;
    hal::OSStatus setDefaultOutput(hal::AudioObjectID deviceID);
    hal::OSStatus setSinkVolume(hal::AudioObjectID sinkID, hal::AudioObjectPropertyElement element, float level);
    hal::OSStatus setExtraLatency(const std::string& stackedName, const std::string& member, double frames);
    hal::OSStatus retime(const std::string& stackedName, const DeclaredLatencies& declared);
    DeclaredLatencies declaredLatencies(const std::string& stackedName);
    void unloadStacked(const std::string& sinkName);
    void updateRestorePlan(const std::string& stackedName);

    std::unique_ptr<PulseConnection> server;
    std::map<std::string, DeclaredLatencies> declaredByStacked; // stacked devices this process made
    std::map<std::string, std::string> labels;
    // member UID -> the loopback that plays while its successor fills
    std::map<std::string, std::uint32_t> handOvers;
    std::map<std::uint32_t, hal::AudioObjectID> loopbackIDs;
    std::map<hal::AudioObjectID, std::uint32_t> loopbackModules;
    hal::AudioObjectID nextLoopbackID = kLoopbackBase + 1;
};

} // namespace orvanta::pulse
