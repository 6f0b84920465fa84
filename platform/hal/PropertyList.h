#pragma once

// A small property-list value: string, integer, array or dictionary. It carries an aggregate
// device's composition. Dictionaries keep their insertion order so that the exact composition a
// caller built can be checked entry by entry; integers keep the width they were made with.

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace orvanta::hal {

class PropertyList
{
public:
    enum class IntegerType
    {
        Signed64,
        Unsigned32,
    };

    struct Integer
    {
        std::int64_t value = 0;
        IntegerType type = IntegerType::Signed64;
        friend bool operator==(const Integer&, const Integer&) = default;
    };

    using Array = std::vector<PropertyList>;
    using Entry = std::pair<std::string, PropertyList>;
    using Dictionary = std::vector<Entry>;

    PropertyList() = default;

    static PropertyList string(std::string text) { return PropertyList(Value(std::move(text))); }
    static PropertyList integer(std::int64_t value)
    {
        return PropertyList(Value(Integer{value, IntegerType::Signed64}));
    }
    static PropertyList uint32(std::uint32_t value)
    {
        return PropertyList(Value(Integer{value, IntegerType::Unsigned32}));
    }
    static PropertyList array(Array items) { return PropertyList(Value(std::move(items))); }
    static PropertyList dictionary(Dictionary entries) { return PropertyList(Value(std::move(entries))); }

    bool isString() const { return std::holds_alternative<std::string>(value); }
    bool isInteger() const { return std::holds_alternative<Integer>(value); }
    bool isArray() const { return std::holds_alternative<Array>(value); }
    bool isDictionary() const { return std::holds_alternative<Dictionary>(value); }

    // Typed reads; nullptr when the value is of another kind.
    const std::string* asString() const { return std::get_if<std::string>(&value); }
    const Integer* asInteger() const { return std::get_if<Integer>(&value); }
    const Array* asArray() const { return std::get_if<Array>(&value); }
    const Dictionary* asDictionary() const { return std::get_if<Dictionary>(&value); }

    // The first entry with this key of a dictionary; nullptr when absent or not a dictionary.
    const PropertyList* find(const std::string& key) const;

    // A compact, deterministic text form for logs and test failure messages, for example
    // {"uid"="x", "drift"=1, "latency-out"=7200u}.
    std::string describe() const;

    friend bool operator==(const PropertyList&, const PropertyList&) = default;

private:
    using Value = std::variant<std::monostate, std::string, Integer, Array, Dictionary>;
    explicit PropertyList(Value v) : value(std::move(v)) {}

    Value value;
};

} // namespace orvanta::hal
