#pragma once

// The user's stored settings: typed values (string, integer, real, bool, dictionary) under
// string keys. A missing key reads as an invalid QVariant. Every change is stored at once.

#include <QString>
#include <QVariant>

namespace orvanta::platform {

class UserDefaults
{
public:
    virtual ~UserDefaults() = default;

    virtual QVariant value(const QString& key) const = 0;
    virtual void setValue(const QString& key, const QVariant& value) = 0;

protected:
    UserDefaults() = default;
    UserDefaults(const UserDefaults&) = default;
    UserDefaults& operator=(const UserDefaults&) = default;
};

} // namespace orvanta::platform
