#include "ModuleArguments.h"

#include <cctype>

namespace orvanta::pulse {

namespace {

bool needsQuotes(const std::string& value)
{
    if (value.empty()) {
        return true;
    }
    for (const char c : value) {
        if (std::isspace(static_cast<unsigned char>(c)) || c == '"' || c == '\'' || c == '\\') {
            return true;
        }
    }
    return false;
}

std::string quoted(const std::string& value)
{
    std::string out = "\"";
    for (const char c : value) {
        if (c == '"' || c == '\\') {
            out += '\\';
        }
        out += c;
    }
    return out + '"';
}

// Reads one value starting at text[pos]: quoted with ' or ", or up to the next blank.
std::string readValue(const std::string& text, std::size_t& pos)
{
    std::string value;
    if (pos < text.size() && (text[pos] == '"' || text[pos] == '\'')) {
        const char quote = text[pos++];
        while (pos < text.size() && text[pos] != quote) {
            if (text[pos] == '\\' && pos + 1 < text.size()) {
                ++pos;
            }
            value += text[pos++];
        }
        ++pos;
        return value;
    }
    while (pos < text.size() && !std::isspace(static_cast<unsigned char>(text[pos]))) {
        value += text[pos++];
    }
    return value;
}

} // namespace

std::string formatModuleArguments(const ModuleArgumentList& arguments)
{
    std::string out;
    for (const auto& [key, value] : arguments) {
        if (!out.empty()) {
            out += ' ';
        }
        out += key + '=' + (needsQuotes(value) ? quoted(value) : value);
    }
    return out;
}

std::map<std::string, std::string> parseModuleArguments(const std::string& text)
{
    std::map<std::string, std::string> arguments;
    std::size_t pos = 0;
    while (pos < text.size()) {
        while (pos < text.size() && std::isspace(static_cast<unsigned char>(text[pos]))) {
            ++pos;
        }
        const std::size_t equals = text.find('=', pos);
        if (pos >= text.size() || equals == std::string::npos) {
            break;
        }
        const std::string key = text.substr(pos, equals - pos);
        pos = equals + 1;
        arguments[key] = readValue(text, pos);
    }
    return arguments;
}

} // namespace orvanta::pulse
