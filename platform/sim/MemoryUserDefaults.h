#pragma once

// Settings kept in memory, for tests. Counts writes so tests can tell "stored" from "not stored",
// and can report writes as failed, as a full disk would.

#include "services/UserDefaults.h"

#include <QVariantMap>

namespace orvanta::sim {

class MemoryUserDefaults final : public services::UserDefaults
{
public:
    QVariant value(const QString& key) const override;
    void setValue(const QString& key, const QVariant& value) override;

    QVariantMap values;
    int writes = 0;
    bool failWrites = false; // each write still changes values, but is reported as not saved
};

} // namespace orvanta::sim
