#pragma once

// Whether this process may take the volume keys away from the rest of the desktop.

namespace orvanta::platform {

class AccessibilityTrust
{
public:
    virtual ~AccessibilityTrust() = default;

    virtual bool isProcessTrusted() = 0;
    // Sends the user to where trust is granted; the answer arrives through isProcessTrusted().
    virtual void promptForTrust() = 0;

protected:
    AccessibilityTrust() = default;
    AccessibilityTrust(const AccessibilityTrust&) = default;
    AccessibilityTrust& operator=(const AccessibilityTrust&) = default;
};

} // namespace orvanta::platform
