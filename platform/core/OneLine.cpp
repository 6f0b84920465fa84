#include "OneLine.h"

namespace orvanta::core {

namespace {

// "\x1b" for a byte, or "\u009b" for a C1 control (width 4).
std::string hexEscape(const char* prefix, unsigned value, int width)
{
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string escaped = prefix;
    for (int shift = (width - 1) * 4; shift >= 0; shift -= 4) {
        escaped += kDigits[(value >> static_cast<unsigned>(shift)) & 0xfu];
    }
    return escaped;
}

} // namespace

std::string escapeControlCharacters(std::string_view text)
{
    std::string escaped;
    escaped.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const auto next = i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : 0u;
        if (byte == '\n') {
            escaped += "\\n";
        } else if (byte == '\r') {
            escaped += "\\r";
        } else if (byte == '\t') {
            escaped += "\\t";
        } else if (byte < 0x20 || byte == 0x7f) {
            escaped += hexEscape("\\x", byte, 2);
        } else if (byte == 0xc2 && next >= 0x80 && next <= 0x9f) {
            // U+0080 to U+009F in UTF-8: the C1 controls (0x9b starts an escape sequence).
            escaped += hexEscape("\\u", next, 4);
            ++i;
        } else {
            escaped += static_cast<char>(byte);
        }
    }
    return escaped;
}

std::string quotedExcerpt(std::string_view text, std::size_t limit)
{
    if (text.size() <= limit) {
        return escapeControlCharacters(text);
    }
    std::size_t cut = limit;
    // Do not split a UTF-8 sequence: back up to the start of the character at the cut.
    while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xc0) == 0x80) {
        --cut;
    }
    return escapeControlCharacters(text.substr(0, cut)) + "...";
}

} // namespace orvanta::core
