#pragma once

// Accessibility trust as a flag a test sets.

#include "services/AccessibilityTrust.h"

namespace orvanta::sim {

class SimAccessibilityTrust final : public platform::AccessibilityTrust
{
public:
    bool isProcessTrusted() override;
    void promptForTrust() override;

    bool trusted = false;
    int queries = 0;
    int prompts = 0;
};

} // namespace orvanta::sim
