#pragma once

// What the program knows about its own build.

#include <QString>

#include <optional>

namespace orvanta::services {

class BundleInfo
{
public:
    virtual ~BundleInfo() = default;

    // The version shown to users (for example 1.4.2), or nothing when the build carries none.
    virtual std::optional<QString> shortVersionString() const = 0;

protected:
    BundleInfo() = default;
    BundleInfo(const BundleInfo&) = default;
    BundleInfo& operator=(const BundleInfo&) = default;
};

} // namespace orvanta::services
