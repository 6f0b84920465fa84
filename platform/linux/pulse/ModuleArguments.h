#pragma once

// Module argument strings as the sound server reads them: key=value pairs separated by blanks,
// values quoted when they hold blanks or quotes.

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace orvanta::pulse {

using ModuleArgumentList = std::vector<std::pair<std::string, std::string>>;

std::string formatModuleArguments(const ModuleArgumentList& arguments);
// Unparsable text gives what could be read up to the problem.
std::map<std::string, std::string> parseModuleArguments(const std::string& text);

} // namespace orvanta::pulse
