#pragma once

// Reads a whole file that comes from outside the program: only a regular file (a FIFO, a
// device such as /dev/zero or a folder is refused without waiting on it), and only up to a
// given size, so that no input can block the program or make it allocate without bound.

#include <cstddef>
#include <string>
#include <variant>

namespace orvanta::files {

struct ReadFailure
{
    std::string reason; // the system's description, or what is wrong with the file
};

std::variant<std::string, ReadFailure> readBoundedFile(const std::string& path, std::size_t maxBytes);

} // namespace orvanta::files
