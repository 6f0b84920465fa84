#include "SimAccessibilityTrust.h"

namespace orvanta::sim {

bool SimAccessibilityTrust::isProcessTrusted()
{
    ++queries;
    return trusted;
}

void SimAccessibilityTrust::promptForTrust()
{
    ++prompts;
}

} // namespace orvanta::sim
