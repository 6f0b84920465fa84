#include "JsonFileUserDefaults.h"

#include "StandardErrorLine.h"
#include "files/BoundedRead.h"
#include "files/FileReplace.h"
#include "files/KeptCopy.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

#include <cerrno>
#include <sys/stat.h>

namespace orvanta::desktop {

JsonFileUserDefaults::JsonFileUserDefaults(QString path, Warn warnLine)
    : filePath(std::move(path)), warn(std::move(warnLine))
{
    files::removeStaleTemporaries(filePath.toStdString());
    load();
}

QString JsonFileUserDefaults::defaultPath()
{
    QString base = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (base.isEmpty() || QDir::isRelativePath(base)) {
        base = QDir::homePath() + QStringLiteral("/.config");
    }
    return base + QStringLiteral("/orvanta/settings.json");
}

QVariant JsonFileUserDefaults::value(const QString& key) const
{
    return values.value(key);
}

void JsonFileUserDefaults::setValue(const QString& key, const QVariant& value)
{
    values.insert(key, value);
    reportSaved(save());
}

void JsonFileUserDefaults::load()
{
    struct stat info
    {};
    if (::lstat(QFile::encodeName(filePath).constData(), &info) != 0 && errno == ENOENT) {
        return;
    }
    const auto read = files::readBoundedFile(filePath.toStdString(), kMaxFileBytes);
    if (const auto* failure = std::get_if<files::ReadFailure>(&read)) {
        report(QStringLiteral("%1: cannot read the settings (%2); starting with defaults")
                   .arg(filePath, QString::fromStdString(failure->reason)));
        keepBrokenFile = true;
        return;
    }
    QJsonParseError error{};
    const auto document = QJsonDocument::fromJson(QByteArray::fromStdString(std::get<std::string>(read)), &error);
    if (error.error != QJsonParseError::NoError || !document.isObject()) {
        const QString problem = error.error != QJsonParseError::NoError
                                    ? error.errorString() + QStringLiteral(" at offset %1").arg(error.offset)
                                    : QStringLiteral("not a JSON object");
        report(QStringLiteral("%1: malformed settings (%2); starting with defaults, the file is kept aside")
                   .arg(filePath, problem));
        keepBrokenFile = true;
        return;
    }
    values = document.object().toVariantMap();
}

bool JsonFileUserDefaults::keepUnusableFile()
{
    const auto kept = files::keepCopy(filePath.toStdString());
    if (const auto* failure = std::get_if<files::KeepFailure>(&kept)) {
        report(QStringLiteral("%1: cannot keep a copy of the unusable settings (%2); not overwriting them")
                   .arg(filePath, QString::fromStdString(failure->reason)));
        return false;
    }
    report(QStringLiteral("%1: the unusable settings are kept as %2")
               .arg(filePath, QString::fromStdString(std::get<files::KeptCopy>(kept).path)));
    keepBrokenFile = false;
    return true;
}

bool JsonFileUserDefaults::save()
{
    const QString folder = QFileInfo(filePath).absolutePath();
    if (!QDir().mkpath(folder)) {
        report(QStringLiteral("%1: cannot save the settings: cannot create the folder %2").arg(filePath, folder));
        return false;
    }
    if (keepBrokenFile && !keepUnusableFile()) {
        return false;
    }
    const QByteArray content = QJsonDocument(QJsonObject::fromVariantMap(values)).toJson(QJsonDocument::Indented);
    if (const auto reason = files::replaceFile(filePath.toStdString(), content.toStdString())) {
        report(QStringLiteral("%1: cannot save the settings: %2").arg(filePath, QString::fromStdString(*reason)));
        return false;
    }
    return true;
}

void JsonFileUserDefaults::report(const QString& line) const
{
    if (warn) {
        warn(line);
        return;
    }
    printStandardErrorLine(line);
}

} // namespace orvanta::desktop
