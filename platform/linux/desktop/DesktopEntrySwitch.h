#pragma once

// Whether a desktop entry in the autostart folder is switched off, as desktops read it: in its
// [Desktop Entry] group, Hidden=true (the XDG way) or X-GNOME-Autostart-enabled=false (GNOME's
// way, which its settings write when the user turns an entry off).

#include <QString>

namespace orvanta::desktop {

bool desktopEntrySwitchedOff(const QString& text);

} // namespace orvanta::desktop
