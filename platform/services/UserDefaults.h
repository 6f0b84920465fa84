#pragma once

// The user's stored settings: typed values (string, integer, real, bool, dictionary) under
// string keys. A missing key reads as an invalid QVariant. Every change is stored at once; an
// observer learns after each write whether it reached storage, so the user can be told when
// changes are not being saved.

#include <QString>
#include <QVariant>

#include <functional>

namespace orvanta::services {

class UserDefaults
{
public:
    virtual ~UserDefaults() = default;

    virtual QVariant value(const QString& key) const = 0;
    virtual void setValue(const QString& key, const QVariant& value) = 0;

    using SaveObserver = std::function<void(bool saved)>;
    void setSaveObserver(SaveObserver observer) { saveObserver = std::move(observer); }

protected:
    UserDefaults() = default;
    UserDefaults(const UserDefaults&) = default;
    UserDefaults& operator=(const UserDefaults&) = default;

    // Implementations call this after every write with its outcome.
    void reportSaved(bool saved) const
    {
        if (saveObserver) {
            saveObserver(saved);
        }
    }

private:
    SaveObserver saveObserver;
};

} // namespace orvanta::services
