#include "AudioTypes.h"

namespace orvanta::hal {

std::string fourCharString(std::uint32_t code)
{
    std::string text(4, ' ');
    for (int i = 0; i < 4; ++i) {
        text[static_cast<std::size_t>(i)] = static_cast<char>((code >> (24 - 8 * i)) & 0xFFu);
    }
    return text;
}

} // namespace orvanta::hal
