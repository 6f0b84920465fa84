#pragma once

// Settings in one JSON file, $XDG_CONFIG_HOME/orvanta/settings.json (~/.config when unset).
// The whole file is rewritten after each change through a temporary file that replaces it, so
// a crash at any instant leaves either the old or the new file, and temporary files a crash
// left behind are removed at start. A write that fails leaves the file as it was, is reported
// in one line and to the save observer. A file that cannot be read or parsed reads as empty,
// is reported in one line, and is kept beside the new one (settings.json.broken, then
// settings.json.broken-2, ...) before the first write replaces it: nothing the user had is lost.

#include "services/UserDefaults.h"

#include <QVariantMap>

#include <functional>

namespace orvanta::desktop {

class JsonFileUserDefaults final : public services::UserDefaults
{
public:
    using Warn = std::function<void(const QString& line)>;

    // Larger files are not settings this program wrote; they are treated as malformed.
    static constexpr std::size_t kMaxFileBytes = 4 * 1024 * 1024;

    // warn receives the one-line reports (unreadable file, failed write); standard error by default.
    explicit JsonFileUserDefaults(QString path = defaultPath(), Warn warn = {});

    static QString defaultPath();

    QVariant value(const QString& key) const override;
    void setValue(const QString& key, const QVariant& value) override;

    QString path() const { return filePath; }

private:
    void load();
    bool save();
    bool keepUnusableFile();
    void report(const QString& line) const;

    QString filePath;
    Warn warn;
    QVariantMap values;
    bool keepBrokenFile = false;
};

} // namespace orvanta::desktop
