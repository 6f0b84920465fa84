#include "StandardErrorLine.h"

#include <cstdio>

namespace orvanta::desktop {

void printStandardErrorLine(const QString& line)
{
    std::fprintf(stderr, "orvanta: %s\n", qPrintable(line));
    std::fflush(stderr);
}

} // namespace orvanta::desktop
