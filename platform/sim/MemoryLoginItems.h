#pragma once

// A login item kept in memory, for tests: settable status and failures, counted calls.

#include "services/LoginItems.h"

namespace orvanta::sim {

class MemoryLoginItems final : public services::LoginItems
{
public:
    Status status() const override { return current; }
    std::optional<QString> registerItem() override;
    std::optional<QString> unregisterItem() override;

    Status current = Status::NotRegistered;
    std::optional<QString> registerError;   // when set, registerItem() fails with it
    std::optional<QString> unregisterError; // when set, unregisterItem() fails with it
    int registerCalls = 0;
    int unregisterCalls = 0;
};

} // namespace orvanta::sim
