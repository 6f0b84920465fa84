#include "X11AccessibilityTrust.h"

#include <QProcess>
#include <QStandardPaths>

namespace orvanta::x11 {

QStringList shortcutSettingsCommand(const QString& currentDesktop)
{
    const QStringList desktops = currentDesktop.toLower().split(u':', Qt::SkipEmptyParts);
    for (const auto& desktop : desktops) {
        if (desktop == u"gnome" || desktop == u"unity" || desktop == u"budgie") {
            return {"gnome-control-center", "keyboard"};
        }
        if (desktop == u"kde") {
            return {"systemsettings", "kcm_keys"};
        }
        if (desktop == u"xfce") {
            return {"xfce4-keyboard-settings"};
        }
        if (desktop == u"x-cinnamon" || desktop == u"cinnamon") {
            return {"cinnamon-settings", "keyboard"};
        }
        if (desktop == u"mate") {
            return {"mate-keybinding-properties"};
        }
        if (desktop == u"lxqt") {
            return {"lxqt-config-globalkeyshortcuts"};
        }
    }
    return {};
}

bool desktopHandlesVolumeKeys(const QString& currentDesktop)
{
    static const QStringList known{"gnome", "unity",    "budgie", "kde",    "xfce", "x-cinnamon", "cinnamon",
                                   "mate",  "pantheon", "lxqt",   "deepin", "ukui", "cosmic"};
    const QStringList desktops = currentDesktop.toLower().split(u':', Qt::SkipEmptyParts);
    for (const auto& desktop : desktops) {
        if (known.contains(desktop)) {
            return true;
        }
    }
    return false;
}

X11AccessibilityTrust::X11AccessibilityTrust(X11VolumeKeys& keys, Sound soundSystem, QString currentDesktop)
    : volumeKeys(keys), sound(soundSystem), desktop(std::move(currentDesktop))
{}

bool X11AccessibilityTrust::isProcessTrusted()
{
    const bool server = sound == Sound::Server;
    if (!volumeKeys.hasDisplay()) {
        const bool covered = server && desktopHandlesVolumeKeys(desktop);
        lastObstacle =
            covered ? Obstacle::None : (server ? Obstacle::DesktopKeysUnknown : Obstacle::SessionGivesNoKeys);
        return covered;
    }
    if (volumeKeys.canGrab()) {
        lastObstacle = Obstacle::None;
        return true;
    }
    // The grab is refused: either another client holds the keys, or this keyboard map has none.
    if (!volumeKeys.hasVolumeKeys()) {
        lastObstacle = Obstacle::DesktopKeysUnknown;
        return false;
    }
    lastObstacle = server ? Obstacle::None : Obstacle::KeysHeldByAnotherProgram;
    return server;
}

bool X11AccessibilityTrust::canPromptForTrust() const
{
    const QStringList command = shortcutSettingsCommand(desktop);
    return lastObstacle == Obstacle::KeysHeldByAnotherProgram && !command.isEmpty() &&
           !QStandardPaths::findExecutable(command.first()).isEmpty();
}

void X11AccessibilityTrust::promptForTrust()
{
    const QStringList command = shortcutSettingsCommand(desktop);
    if (!command.isEmpty()) {
        QProcess::startDetached(command.first(), command.mid(1));
    }
}

} // namespace orvanta::x11
