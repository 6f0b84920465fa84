#include "SimDeviceSpec.h"

#include <array>
#include <utility>

namespace orvanta::sim {

namespace {

constexpr std::array<std::pair<CallKind, const char*>, 6> kCallNames{{
    {CallKind::GetPropertyDataSize, "getPropertyDataSize"},
    {CallKind::GetPropertyData, "getPropertyData"},
    {CallKind::SetPropertyData, "setPropertyData"},
    {CallKind::HasProperty, "hasProperty"},
    {CallKind::CreateAggregateDevice, "createAggregateDevice"},
    {CallKind::DestroyAggregateDevice, "destroyAggregateDevice"},
}};

} // namespace

std::optional<CallKind> callKindFromName(const std::string& name)
{
    for (const auto& [kind, text] : kCallNames) {
        if (name == text) {
            return kind;
        }
    }
    return std::nullopt;
}

const char* callKindName(CallKind kind)
{
    for (const auto& [candidate, text] : kCallNames) {
        if (candidate == kind) {
            return text;
        }
    }
    return "unknown";
}

} // namespace orvanta::sim
