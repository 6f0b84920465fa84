#include "AggregateDescription.h"

#include "hal/PropertyTable.h"

namespace orvanta::pulse {

using namespace orvanta::hal;

namespace {

std::optional<std::vector<AggregateMember>> membersOf(const PropertyList& description)
{
    const auto* list = description.find(kAudioAggregateDeviceSubDeviceListKey);
    if (!list) {
        return std::vector<AggregateMember>{};
    }
    if (!list->asArray()) {
        return std::nullopt;
    }
    std::vector<AggregateMember> members;
    for (const auto& entry : *list->asArray()) {
        const auto* uid = entry.find(kAudioSubDeviceUIDKey);
        const auto* latency = entry.find(kAudioSubDeviceOutputLatencyKey);
        if (!uid || !uid->asString()) {
            return std::nullopt;
        }
        members.push_back({*uid->asString(),
                           latency && latency->asInteger() ? static_cast<double>(latency->asInteger()->value) : 0.0});
    }
    return members;
}

} // namespace

std::optional<AggregateDescription> readAggregateDescription(const PropertyList& description)
{
    const auto* uid = description.find(kAudioAggregateDeviceUIDKey);
    const auto* name = description.find(kAudioAggregateDeviceNameKey);
    auto members = membersOf(description);
    if (!uid || !uid->asString() || uid->asString()->empty() || !members) {
        return std::nullopt;
    }
    const std::string& sinkName = *uid->asString();
    return AggregateDescription{sinkName, name && name->asString() ? *name->asString() : sinkName, std::move(*members)};
}

} // namespace orvanta::pulse
