#pragma once

// The login item as an XDG autostart entry, $XDG_CONFIG_HOME/autostart/orvanta.desktop, that
// starts this very program. Desktops read that folder at login; an entry marked Hidden=true
// counts as switched off, as it does for them.

#include "services/LoginItems.h"

namespace orvanta::linux_platform {

class XdgAutostartLoginItems final : public platform::LoginItems
{
public:
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

} // namespace orvanta::linux_platform
