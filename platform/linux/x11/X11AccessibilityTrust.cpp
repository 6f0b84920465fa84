#include "X11AccessibilityTrust.h"

#include <QProcess>

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

void X11AccessibilityTrust::promptForTrust()
{
    const QStringList command = shortcutSettingsCommand(qEnvironmentVariable("XDG_CURRENT_DESKTOP"));
    if (!command.isEmpty()) {
        QProcess::startDetached(command.first(), command.mid(1));
    }
}

} // namespace orvanta::x11
