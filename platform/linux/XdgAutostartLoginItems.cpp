#include "XdgAutostartLoginItems.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QTextStream>

namespace orvanta::linux_platform {

XdgAutostartLoginItems::XdgAutostartLoginItems(QString entryPath, QString program)
    : path(std::move(entryPath)), executable(std::move(program))
{}

QString XdgAutostartLoginItems::defaultEntryPath()
{
    QString base = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (base.isEmpty() || QDir::isRelativePath(base)) {
        base = QDir::homePath() + QStringLiteral("/.config");
    }
    return base + QStringLiteral("/autostart/orvanta.desktop");
}

QString desktopEntryExec(const QString& program)
{
    // Inside double quotes, '"', '`', '$' and '\' are escaped with a backslash; the value's
    // own backslashes are escaped once more because the whole value is a string value.
    QString quoted;
    for (const QChar c : program) {
        if (c == u'"' || c == u'`' || c == u'$' || c == u'\\') {
            quoted += u'\\';
        }
        quoted += c;
    }
    quoted.replace(u'\\', QStringLiteral("\\\\"));
    return u'"' + quoted + u'"';
}

QString XdgAutostartLoginItems::entryText() const
{
    return QStringLiteral("[Desktop Entry]\n"
                          "Type=Application\n"
                          "Name=Orvanta\n"
                          "Comment=Play sound through two speakers at once\n"
                          "Exec=%1\n"
                          "Icon=orvanta\n"
                          "Terminal=false\n"
                          "X-GNOME-Autostart-enabled=true\n")
        .arg(desktopEntryExec(executable));
}

platform::LoginItems::Status XdgAutostartLoginItems::status() const
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        return Status::NotRegistered;
    }
    QTextStream stream(&file);
    bool inMainGroup = false;
    while (!stream.atEnd()) {
        QString line = stream.readLine().trimmed();
        if (line.startsWith(u'[')) {
            inMainGroup = line == QStringLiteral("[Desktop Entry]");
        } else if (inMainGroup && line.remove(u' ') == QStringLiteral("Hidden=true")) {
            return Status::NotRegistered;
        }
    }
    return Status::Enabled;
}

std::optional<QString> XdgAutostartLoginItems::registerItem()
{
    const QString folder = QFileInfo(path).absolutePath();
    if (!QDir().mkpath(folder)) {
        return QStringLiteral("cannot create the folder %1").arg(folder);
    }
    QSaveFile file(path);
    const QByteArray content = entryText().toUtf8();
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.commit()) {
        return QStringLiteral("cannot write %1: %2").arg(path, file.errorString());
    }
    return std::nullopt;
}

std::optional<QString> XdgAutostartLoginItems::unregisterItem()
{
    QFile file(path);
    if (!file.exists() || file.remove()) {
        return std::nullopt;
    }
    return QStringLiteral("cannot remove %1: %2").arg(path, file.errorString());
}

} // namespace orvanta::linux_platform
