#include "JsonFileUserDefaults.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#include <cstdio>

namespace orvanta::linux_platform {

JsonFileUserDefaults::JsonFileUserDefaults(QString path, Warn warnLine)
    : filePath(std::move(path)), warn(std::move(warnLine))
{
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
    save();
}

void JsonFileUserDefaults::load()
{
    QFile file(filePath);
    if (!file.exists()) {
        return;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        report(QStringLiteral("%1: cannot read the settings (%2); starting with defaults")
                   .arg(filePath, file.errorString()));
        keepBrokenFile = true;
        return;
    }
    QJsonParseError error{};
    const auto document = QJsonDocument::fromJson(file.readAll(), &error);
    if (error.error != QJsonParseError::NoError || !document.isObject()) {
        const QString problem = error.error != QJsonParseError::NoError
                                    ? error.errorString() + QStringLiteral(" at offset %1").arg(error.offset)
                                    : QStringLiteral("not a JSON object");
        report(QStringLiteral("%1: malformed settings (%2); starting with defaults, the file is kept as %1.broken")
                   .arg(filePath, problem));
        keepBrokenFile = true;
        return;
    }
    values = document.object().toVariantMap();
}

void JsonFileUserDefaults::save()
{
    QDir().mkpath(QFileInfo(filePath).absolutePath());
    if (keepBrokenFile) {
        const QString broken = filePath + QStringLiteral(".broken");
        QFile::remove(broken);
        if (!QFile::rename(filePath, broken)) {
            report(QStringLiteral("%1: cannot keep the unreadable settings as %2; not overwriting them")
                       .arg(filePath, broken));
            return;
        }
        keepBrokenFile = false;
    }
    QSaveFile file(filePath);
    const QByteArray content = QJsonDocument(QJsonObject::fromVariantMap(values)).toJson(QJsonDocument::Indented);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.commit()) {
        report(QStringLiteral("%1: cannot save the settings: %2").arg(filePath, file.errorString()));
    }
}

void JsonFileUserDefaults::report(const QString& line) const
{
    if (warn) {
        warn(line);
        return;
    }
    std::fprintf(stderr, "orvanta: %s\n", qPrintable(line));
    std::fflush(stderr);
}

} // namespace orvanta::linux_platform
