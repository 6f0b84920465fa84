#include "NumberFormat.h"

#include <array>
#include <charconv>

namespace orvanta::core {

namespace {

template <typename T> std::string shortest(T value)
{
    std::array<char, 64> buffer{};
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    std::string text(buffer.data(), result.ptr);
    // Integral values get ".0"; exponent forms, infinities and NaN already read as non-integers.
    if (text.find_first_of(".eni") == std::string::npos) {
        text += ".0";
    }
    return text;
}

} // namespace

std::string shortestFloat(float value)
{
    return shortest(value);
}

std::string shortestFloat(double value)
{
    return shortest(value);
}

} // namespace orvanta::core
