#pragma once

// Trust, on Linux, is whether this program can have the volume keys: an X11 display on which no
// other client holds them. Another program holding them (a desktop's own volume handler), or a
// Wayland session without X11 access, means not trusted. The prompt opens the desktop's keyboard
// shortcut settings, where the other handler's bindings can be released.

#include "X11VolumeKeys.h"
#include "services/AccessibilityTrust.h"

#include <QString>
#include <QStringList>

namespace orvanta::x11 {

class X11AccessibilityTrust final : public platform::AccessibilityTrust
{
public:
    explicit X11AccessibilityTrust(X11VolumeKeys& keys) : volumeKeys(keys) {}

    bool isProcessTrusted() override { return volumeKeys.canGrab(); }
    void promptForTrust() override;

private:
    X11VolumeKeys& volumeKeys;
};

// The program that shows keyboard shortcut settings on the desktop named by currentDesktop
// (the value of XDG_CURRENT_DESKTOP), with its arguments; empty when none is known.
QStringList shortcutSettingsCommand(const QString& currentDesktop);

} // namespace orvanta::x11
