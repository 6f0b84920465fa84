#pragma once

// Trust, on Linux, is whether the volume keys move both speakers. While sync is on the stacked
// device is the default output, so a desktop that handles the keys itself (they change the
// default output's volume) already moves both speakers, with its own on-screen display; and
// where no program holds the keys, this program grabs them itself. So, on an X11 display, the
// keys are covered when this program can grab them, or when another client holds them and the
// real sound server is in use. Without X11 (a Wayland session) they are covered when the
// session's desktop is one known to handle volume keys. The simulated sound system is reached
// only by this program's own grab.
//
// The prompt opens the desktop's keyboard shortcut settings, where another program's bindings
// can be released; it is offered only when those settings are known and installed.

#include "X11VolumeKeys.h"
#include "services/AccessibilityTrust.h"

#include <QString>
#include <QStringList>

namespace orvanta::x11 {

class X11AccessibilityTrust final : public services::AccessibilityTrust
{
public:
    enum class Sound
    {
        Server,    // the desktop's volume keys reach the stacked device
        Simulated, // they do not
    };

    // currentDesktop: the value of XDG_CURRENT_DESKTOP.
    X11AccessibilityTrust(X11VolumeKeys& keys, Sound sound, QString currentDesktop);

    bool isProcessTrusted() override;
    void promptForTrust() override;
    Obstacle obstacle() const override { return lastObstacle; }
    bool canPromptForTrust() const override;

private:
    X11VolumeKeys& volumeKeys;
    Sound sound;
    QString desktop;
    Obstacle lastObstacle = Obstacle::None;
};

// The program that shows keyboard shortcut settings on the desktop named by currentDesktop
// (the value of XDG_CURRENT_DESKTOP), with its arguments; empty when none is known.
QStringList shortcutSettingsCommand(const QString& currentDesktop);

// Whether the desktop named by currentDesktop handles the volume keys itself, changing the
// default output's volume.
bool desktopHandlesVolumeKeys(const QString& currentDesktop);

} // namespace orvanta::x11
