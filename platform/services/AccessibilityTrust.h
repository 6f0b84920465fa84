#pragma once

// Whether the volume keys move both speakers: either this process may take them away from the
// rest of the desktop, or the desktop's own handling of them reaches the stacked device. When
// neither holds, obstacle() says why, and canPromptForTrust() whether promptForTrust() has
// anywhere useful to send the user.

namespace orvanta::services {

class AccessibilityTrust
{
public:
    enum class Obstacle
    {
        None,
        KeysHeldByAnotherProgram, // another program has the keys, and what it does with them misses our devices
        SessionGivesNoKeys,       // the session lets no program have the keys (Wayland)
        DesktopKeysUnknown,       // no program can be seen to handle the keys
    };

    virtual ~AccessibilityTrust() = default;

    virtual bool isProcessTrusted() = 0;
    // Sends the user to where trust is granted; the answer arrives through isProcessTrusted().
    virtual void promptForTrust() = 0;

    // Why the keys do not move both speakers, as of the last isProcessTrusted().
    virtual Obstacle obstacle() const { return Obstacle::KeysHeldByAnotherProgram; }
    // Whether promptForTrust() can show the user something here.
    virtual bool canPromptForTrust() const { return true; }

protected:
    AccessibilityTrust() = default;
    AccessibilityTrust(const AccessibilityTrust&) = default;
    AccessibilityTrust& operator=(const AccessibilityTrust&) = default;
};

} // namespace orvanta::services
