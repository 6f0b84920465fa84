#include "PersistedMaps.h"

#include "AppState.h"

#include <cmath>
#include <limits>

namespace orvanta::state {

namespace {

// A whole number: an integer, or a real without a fractional part, within int's range.
std::optional<int> wholeNumber(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::LongLong:
    case QMetaType::ULong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::Float:
        break;
    default:
        return std::nullopt;
    }
    const double number = value.toDouble();
    if (std::trunc(number) != number || number < std::numeric_limits<int>::min() ||
        number > std::numeric_limits<int>::max()) {
        return std::nullopt;
    }
    return static_cast<int>(number);
}

// A delay the program could have stored: a whole number within the delay limits. Anything else was not
// written by it, so the stored map is not to be trusted.
std::optional<int> storedDelay(const QVariant& value)
{
    const auto number = wholeNumber(value);
    if (!number || *number < AppState::kMinDelayMs || *number > AppState::kMaxDelayMs) {
        return std::nullopt;
    }
    return number;
}

std::optional<bool> boolean(const QVariant& value)
{
    return value.typeId() == QMetaType::Bool ? std::optional<bool>(value.toBool()) : std::nullopt;
}

template <typename T, typename Convert>
std::optional<std::map<std::string, T>> fromStored(const QVariant& stored, Convert convert)
{
    if (stored.typeId() != QMetaType::QVariantMap) {
        return std::nullopt;
    }
    std::map<std::string, T> converted;
    const QVariantMap dictionary = stored.toMap();
    for (auto it = dictionary.begin(); it != dictionary.end(); ++it) {
        const auto value = convert(it.value());
        if (!value) {
            return std::nullopt;
        }
        converted[it.key().toStdString()] = *value;
    }
    return converted;
}

template <typename T> QVariantMap toStoredMap(const std::map<std::string, T>& map)
{
    QVariantMap stored;
    for (const auto& [uid, value] : map) {
        stored.insert(QString::fromStdString(uid), QVariant::fromValue(value));
    }
    return stored;
}

} // namespace

std::optional<std::map<std::string, int>> delaysFromStored(const QVariant& stored)
{
    return fromStored<int>(stored, storedDelay);
}

std::optional<std::map<std::string, bool>> overridesFromStored(const QVariant& stored)
{
    return fromStored<bool>(stored, boolean);
}

QVariantMap toStored(const std::map<std::string, int>& delays)
{
    return toStoredMap(delays);
}

QVariantMap toStored(const std::map<std::string, bool>& overrides)
{
    return toStoredMap(overrides);
}

} // namespace orvanta::state
