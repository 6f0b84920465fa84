#pragma once

// Accessibility trust as a flag a test sets.

#include "services/AccessibilityTrust.h"

namespace orvanta::sim {

class SimAccessibilityTrust final : public services::AccessibilityTrust
{
public:
    bool isProcessTrusted() override;
    void promptForTrust() override;
    Obstacle obstacle() const override { return trusted ? Obstacle::None : blockedBy; }
    bool canPromptForTrust() const override { return canPrompt; }

    bool trusted = false;
    Obstacle blockedBy = Obstacle::KeysHeldByAnotherProgram;
    bool canPrompt = true;
    int queries = 0;
    int prompts = 0;
};

} // namespace orvanta::sim
