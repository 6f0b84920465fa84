#pragma once

// The two per-device maps as they are stored in the settings: a dictionary from device UID to
// a whole number of milliseconds from 0 to 600, and one from device UID to a boolean. A stored
// dictionary is taken whole or not at all: one value of the wrong kind, or a delay out of that
// range, makes it unusable.

#include <QVariant>

#include <map>
#include <optional>
#include <string>

namespace orvanta::state {

std::optional<std::map<std::string, int>> delaysFromStored(const QVariant& stored);
std::optional<std::map<std::string, bool>> overridesFromStored(const QVariant& stored);

QVariantMap toStored(const std::map<std::string, int>& delays);
QVariantMap toStored(const std::map<std::string, bool>& overrides);

} // namespace orvanta::state
