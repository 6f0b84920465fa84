#pragma once

// The login item as an XDG autostart entry, $XDG_CONFIG_HOME/autostart/orvanta.desktop, that
// starts this very program. Desktops read that folder at login; an entry marked Hidden=true
// or X-GNOME-Autostart-enabled=false counts as switched off, as it does for them. The entry is
// written whole or not at all; a failed write leaves the earlier entry as it was.

#include "services/LoginItems.h"

namespace orvanta::desktop {

class XdgAutostartLoginItems final : public services::LoginItems
{
public:
    // A larger file is not an entry this program wrote; it reads as no entry.
    static constexpr std::size_t kMaxEntryBytes = 64 * 1024;

    // executable: what the entry starts (this program's absolute path).
    XdgAutostartLoginItems(QString entryPath, QString executable);

    static QString defaultEntryPath();

    Status status() const override;
    std::optional<QString> registerItem() override;
    std::optional<QString> unregisterItem() override;

    QString entryPath() const { return path; }

private:
    QString entryText() const;

    QString path;
    QString executable;
};

// The Exec value for a program path, quoted and escaped as desktop entries require.
QString desktopEntryExec(const QString& program);

} // namespace orvanta::desktop
