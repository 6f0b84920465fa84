#pragma once

// Reads a flat JSON object of string members keeping the members as written: in file order and
// with repeated names kept, which QJsonObject (sorted, last one wins) would hide.

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>
#include <utility>

namespace orvanta::testing {

using JsonMember = std::pair<QString, QString>;

// The members of {"name": "text", ...}; nothing when the text is not such an object.
std::optional<QList<JsonMember>> readOrderedJsonObject(const QByteArray& json);

} // namespace orvanta::testing
