#pragma once

// Where diagnostic lines go: one line per call, with no level and no timestamp. The process
// writes them to standard output, flushed at each line; tests collect them.

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace orvanta::core {

using DiagnosticLog = std::function<void(std::string_view line)>;

// Writes each line to standard output and flushes it.
DiagnosticLog standardOutputLog();

// Collects lines in memory, for tests and tools.
class CollectedLines
{
public:
    DiagnosticLog log()
    {
        return [this](std::string_view line) { lines.emplace_back(line); };
    }
    std::vector<std::string> lines;
};

} // namespace orvanta::core
