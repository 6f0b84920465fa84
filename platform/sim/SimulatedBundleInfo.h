#pragma once

// Build information set by the test: a version, or none at all.

#include "services/BundleInfo.h"

namespace orvanta::sim {

class SimulatedBundleInfo final : public services::BundleInfo
{
public:
    explicit SimulatedBundleInfo(std::optional<QString> version = QStringLiteral("1.0.0"))
        : shortVersion(std::move(version))
    {}

    std::optional<QString> shortVersionString() const override { return shortVersion; }

    std::optional<QString> shortVersion;
};

} // namespace orvanta::sim
