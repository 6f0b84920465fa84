#pragma once

// The audio hardware interface on a PipeWire system. Devices, volumes and the default output
// come from PipeWire's pulse server, as on PulseAudio (see PulseAudioHardware.h); the stacked
// device is a node hosted by this process (StackedNode.h), which the pulse server lists as a
// sink like any other. Its members are sub-device objects that carry their UID and their
// declared extra latency; each member's hold-back is worked out from those latencies: a member
// that declares more makes the others wait for it. A stacked sink left over from the loopback
// design is still recognised and removed. While the pulse server is away the node is still
// listed (as PulseAudioHardware lists a stacked device it will rebuild), so that taking it down or
// changing a delay then is what holds when the server returns.

#include "PipeWireLoop.h"
#include "StackedNode.h"
#include "hal/AudioHardware.h"
#include "pulse/PulseAudioHardware.h"

#include <map>
#include <memory>
#include <optional>
#include <string>

namespace orvanta::pipewire {

class PipeWireAudioHardware final : public hal::AudioHardware
{
public:
    static constexpr hal::AudioObjectID kMemberBase = 0x40000000;

    PipeWireAudioHardware(std::unique_ptr<pulse::PulseConnection> connection, std::unique_ptr<PipeWireLoop> session);
    ~PipeWireAudioHardware() override;

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

    pulse::PulseConnection& connection() { return server.connection(); }
    // The hosted stacked device, while there is one.
    const StackedNode* stackedNode() const { return node.get(); }
    StackedNode* stackedNode() { return node.get(); }

private:
    using ReadResult = std::variant<hal::PropertyValue, hal::OSStatus>;

    // The stacked device's own properties, or nothing when the server answers for the object.
    std::optional<ReadResult> readStacked(hal::AudioObjectID objectID, const hal::AudioObjectPropertyAddress& address);
    bool isStackedSink(hal::AudioObjectID objectID);
    bool serverAway();
    std::optional<std::string> memberOf(hal::AudioObjectID objectID) const;
    double rateOf(const std::string& uid);
    hal::OSStatus setDeclared(const std::string& uid, double frames);
    void applyHoldBacks();
    void destroyNode();

    pulse::PulseAudioHardware server;
    std::unique_ptr<PipeWireLoop> session;
    std::unique_ptr<StackedNode> node;
    std::map<std::string, double> declaredMs; // member UID -> declared extra latency
};

} // namespace orvanta::pipewire
