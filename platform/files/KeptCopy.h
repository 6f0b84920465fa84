#pragma once

// Keeps a file that could not be used (a malformed settings file) under a name of its own:
// PATH.broken, or PATH.broken-2, PATH.broken-3, ... when earlier copies are kept already. An
// earlier copy is never overwritten, and PATH itself stays where it is until a new file
// replaces it.

#include <string>
#include <variant>

namespace orvanta::files {

struct KeptCopy
{
    std::string path;
};

struct KeepFailure
{
    std::string reason; // the system's description
};

std::variant<KeptCopy, KeepFailure> keepCopy(const std::string& path);

} // namespace orvanta::files
