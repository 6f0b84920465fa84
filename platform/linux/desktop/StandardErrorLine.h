#pragma once

// The program's own warnings about files and outside input: one line on standard error,
// prefixed with the program's name and flushed at once.

#include <QString>

namespace orvanta::desktop {

void printStandardErrorLine(const QString& line);

} // namespace orvanta::desktop
