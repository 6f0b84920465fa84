#include "DesktopEntrySwitch.h"

#include <QList>
#include <QStringView>

namespace orvanta::desktop {

bool desktopEntrySwitchedOff(const QString& text)
{
    bool inMainGroup = false;
    for (const QStringView rawLine : QStringView(text).split(u'\n')) {
        const QStringView line = rawLine.trimmed();
        if (line.startsWith(u'[')) {
            inMainGroup = line == u"[Desktop Entry]";
            continue;
        }
        const auto equals = line.indexOf(u'=');
        if (!inMainGroup || line.startsWith(u'#') || equals < 0) {
            continue;
        }
        // Spaces around '=' are allowed; keys and boolean values are case-sensitive.
        const QStringView key = line.first(equals).trimmed();
        const QStringView value = line.sliced(equals + 1).trimmed();
        if ((key == u"Hidden" && value == u"true") || (key == u"X-GNOME-Autostart-enabled" && value == u"false")) {
            return true;
        }
    }
    return false;
}

} // namespace orvanta::desktop
