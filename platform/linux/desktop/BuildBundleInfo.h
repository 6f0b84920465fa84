#pragma once

// The version the program was built as, handed in by main() from the build configuration. A
// build configured without a version carries none.

#include "services/BundleInfo.h"

namespace orvanta::desktop {

class BuildBundleInfo final : public services::BundleInfo
{
public:
    // An empty version counts as none.
    explicit BuildBundleInfo(const QString& version);

    std::optional<QString> shortVersionString() const override { return shortVersion; }

private:
    std::optional<QString> shortVersion;
};

} // namespace orvanta::desktop
