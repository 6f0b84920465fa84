#pragma once

// Whether the application opens when the user logs in.

#include <QString>

#include <optional>

namespace orvanta::services {

class LoginItems
{
public:
    enum class Status
    {
        NotRegistered = 0,
        Enabled = 1,
        RequiresApproval = 2,
        NotFound = 3,
    };

    virtual ~LoginItems() = default;

    virtual Status status() const = 0;
    // Each gives a readable description of what went wrong, or nothing on success.
    virtual std::optional<QString> registerItem() = 0;
    virtual std::optional<QString> unregisterItem() = 0;

protected:
    LoginItems() = default;
    LoginItems(const LoginItems&) = default;
    LoginItems& operator=(const LoginItems&) = default;
};

} // namespace orvanta::services
