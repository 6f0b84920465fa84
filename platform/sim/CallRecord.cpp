#include "CallRecord.h"

namespace orvanta::sim {

namespace {

std::string addressText(const hal::AudioObjectPropertyAddress& address)
{
    return "'" + hal::fourCharString(address.mSelector) + "' " + hal::fourCharString(address.mScope) + " " +
           std::to_string(address.mElement);
}

std::string statusText(hal::OSStatus status)
{
    return " -> " + std::to_string(status);
}

} // namespace

std::string CallRecord::toString() const
{
    const std::string object = std::to_string(objectID);
    switch (kind) {
    case CallKind::GetPropertyDataSize:
        return "size " + object + " " + addressText(address) + statusText(status);
    case CallKind::GetPropertyData:
        return "get " + object + " " + addressText(address) + " [" + std::to_string(dataSize) + "]" +
               statusText(status);
    case CallKind::SetPropertyData:
        return "set " + object + " " + addressText(address) + " [" + std::to_string(dataSize) + "] " + value +
               statusText(status);
    case CallKind::HasProperty:
        return "has " + object + " " + addressText(address) + " -> " + (answer ? "true" : "false");
    case CallKind::CreateAggregateDevice:
        return "create " + value + statusText(status) + " id " + std::to_string(createdID);
    case CallKind::DestroyAggregateDevice:
        return "destroy " + object + statusText(status);
    }
    return {};
}

} // namespace orvanta::sim
