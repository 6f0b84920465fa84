#pragma once

// What a stacked device's composition asks for, read from its property list: its UID and name,
// and each member's UID with the extra latency it declares, in frames at the member's rate.

#include "hal/PropertyList.h"

#include <optional>
#include <string>
#include <vector>

namespace orvanta::pulse {

struct AggregateMember
{
    std::string uid;
    double frames = 0;
};

struct AggregateDescription
{
    std::string uid;
    std::string name;
    std::vector<AggregateMember> members;
};

// Nothing when the composition lacks a UID or a member lacks its own.
std::optional<AggregateDescription> readAggregateDescription(const hal::PropertyList& description);

} // namespace orvanta::pulse
