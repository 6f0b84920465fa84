#include "MemoryLoginItems.h"

namespace orvanta::sim {

std::optional<QString> MemoryLoginItems::registerItem()
{
    ++registerCalls;
    if (registerError) {
        return registerError;
    }
    current = Status::Enabled;
    return std::nullopt;
}

std::optional<QString> MemoryLoginItems::unregisterItem()
{
    ++unregisterCalls;
    if (unregisterError) {
        return unregisterError;
    }
    current = Status::NotRegistered;
    return std::nullopt;
}

} // namespace orvanta::sim
