#include "StandardErrorLine.h"

#include <cstdio>

namespace orvanta::linux_platform {

void printStandardErrorLine(const QString& line)
{
    std::fprintf(stderr, "orvanta: %s\n", qPrintable(line));
    std::fflush(stderr);
}

} // namespace orvanta::linux_platform
