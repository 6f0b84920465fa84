#include "MemoryUserDefaults.h"

namespace orvanta::sim {

QVariant MemoryUserDefaults::value(const QString& key) const
{
    return values.value(key);
}

void MemoryUserDefaults::setValue(const QString& key, const QVariant& value)
{
    values.insert(key, value);
    ++writes;
    reportSaved(!failWrites);
}

} // namespace orvanta::sim
