#include "XdgAutostartLoginItems.h"

#include "DesktopEntrySwitch.h"
#include "StandardErrorLine.h"
#include "files/BoundedRead.h"
#include "files/FileReplace.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <utility>

namespace orvanta::desktop {

XdgAutostartLoginItems::XdgAutostartLoginItems(QString entryPath, QString program)
    : path(std::move(entryPath)), executable(std::move(program))
{
    files::removeStaleTemporaries(path.toStdString());
}

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
    // The Exec key is read in three steps, undone here in reverse: string-value escapes
    // (backslash, newline, tab, carriage return), then the quoting of the argument (inside double
    // quotes '"', '`', '$' and '\' take a backslash), then field codes, where a literal '%' is
    // written "%%".
    QString quoted;
    for (const QChar c : program) {
        if (c == u'"' || c == u'`' || c == u'$' || c == u'\\') {
            quoted += u'\\';
        }
        quoted += c;
        if (c == u'%') {
            quoted += u'%';
        }
    }
    QString value;
    for (const QChar c : std::as_const(quoted)) {
        switch (c.unicode()) {
        case u'\\':
            value += QStringLiteral("\\\\");
            break;
        case u'\n':
            value += QStringLiteral("\\n");
            break;
        case u'\t':
            value += QStringLiteral("\\t");
            break;
        case u'\r':
            value += QStringLiteral("\\r");
            break;
        default:
            value += c;
        }
    }
    return u'"' + value + u'"';
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

services::LoginItems::Status XdgAutostartLoginItems::status() const
{
    const auto read = files::readBoundedFile(path.toStdString(), kMaxEntryBytes);
    const auto* content = std::get_if<std::string>(&read);
    if (!content) {
        return Status::NotRegistered;
    }
    return desktopEntrySwitchedOff(QString::fromUtf8(*content)) ? Status::NotRegistered : Status::Enabled;
}

std::optional<QString> XdgAutostartLoginItems::registerItem()
{
    const QString folder = QFileInfo(path).absolutePath();
    if (!QDir().mkpath(folder)) {
        return QStringLiteral("cannot create the folder %1").arg(folder);
    }
    if (const auto reason = files::replaceFile(path.toStdString(), entryText().toStdString())) {
        const QString problem = QStringLiteral("cannot write %1: %2").arg(path, QString::fromStdString(*reason));
        printStandardErrorLine(problem);
        return problem;
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

} // namespace orvanta::desktop
