#include "DiagnosticLog.h"

#include <cstdio>

namespace orvanta::core {

DiagnosticLog standardOutputLog()
{
    return [](std::string_view line) {
        std::fwrite(line.data(), 1, line.size(), stdout);
        std::fputc('\n', stdout);
        std::fflush(stdout);
    };
}

} // namespace orvanta::core
