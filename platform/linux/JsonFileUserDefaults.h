#pragma once

// Settings in one JSON file, $XDG_CONFIG_HOME/orvanta/settings.json (~/.config when unset).
// The whole file is rewritten after each change through a temporary file that replaces it, so
// a crash at any instant leaves either the old or the new file. A file that cannot be read or
// parsed reads as empty, is reported in one line, and is kept beside the new one as
// settings.json.broken before the first write replaces it: nothing the user had is lost.

#include "services/UserDefaults.h"

#include <QVariantMap>

#include <functional>

namespace orvanta::linux_platform {

class JsonFileUserDefaults final : public platform::UserDefaults
{
public:
    using Warn = std::function<void(const QString& line)>;

    // warn receives the one-line reports (unreadable file, failed write); standard error by default.
    explicit JsonFileUserDefaults(QString path = defaultPath(), Warn warn = {});

    static QString defaultPath();

    QVariant value(const QString& key) const override;
    void setValue(const QString& key, const QVariant& value) override;

    QString path() const { return filePath; }

private:
    void load();
    void save();
    void report(const QString& line) const;

    QString filePath;
    Warn warn;
    QVariantMap values;
    bool keepBrokenFile = false;
};

} // namespace orvanta::linux_platform
