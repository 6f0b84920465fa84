#pragma once

// Text from outside (a file name, a key of a document) made safe to print inside one line:
// control characters, including newlines and the C1 controls that terminals read as escape
// sequences, become visible escapes (\n, \t, \x1b, \u009b), and a long text is cut short.

#include <cstddef>
#include <string>
#include <string_view>

namespace orvanta::core {

inline constexpr std::size_t kOneLineQuoteLimit = 80;

// The whole of text (UTF-8), escaped.
std::string escapeControlCharacters(std::string_view text);

// At most limit bytes of text, cut at a character boundary and marked with "..." when cut,
// then escaped.
std::string quotedExcerpt(std::string_view text, std::size_t limit = kOneLineQuoteLimit);

} // namespace orvanta::core
