#include "PropertyList.h"

#include <string>

namespace orvanta::hal {

const PropertyList* PropertyList::find(const std::string& key) const
{
    const auto* entries = asDictionary();
    if (!entries) {
        return nullptr;
    }
    for (const auto& [entryKey, entryValue] : *entries) {
        if (entryKey == key) {
            return &entryValue;
        }
    }
    return nullptr;
}

std::string PropertyList::describe() const
{
    if (const auto* text = asString()) {
        return '"' + *text + '"';
    }
    if (const auto* number = asInteger()) {
        return std::to_string(number->value) + (number->type == IntegerType::Unsigned32 ? "u" : "");
    }
    std::string out;
    if (const auto* items = asArray()) {
        out = "(";
        for (std::size_t i = 0; i < items->size(); ++i) {
            out += (i ? ", " : "") + (*items)[i].describe();
        }
        return out + ")";
    }
    if (const auto* entries = asDictionary()) {
        out = "{";
        for (std::size_t i = 0; i < entries->size(); ++i) {
            out += (i ? ", \"" : "\"") + (*entries)[i].first + "\"=" + (*entries)[i].second.describe();
        }
        return out + "}";
    }
    return "null";
}

} // namespace orvanta::hal
