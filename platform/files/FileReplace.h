#pragma once

// Replaces a file whole. The new content goes to a temporary file beside it (PATH.tmp-XXXXXX),
// written with plain write() calls whose every result is checked, then fsync()ed and closed,
// and only then renamed over PATH. A full disk, a file-size limit, a failing flush or rename:
// any failure removes the temporary file, leaves PATH exactly as it was and gives the system's
// reason. A process killed at any instant leaves PATH old or new, and at most one temporary
// file, which removeStaleTemporaries() clears at the next start. A path that is a symbolic
// link has the file it points to replaced, and stays a link.

#include <optional>
#include <string>
#include <string_view>

namespace orvanta::files {

// Nothing on success; otherwise the system's description of what failed ("No space left on
// device").
std::optional<std::string> replaceFile(const std::string& path, std::string_view content);

// Removes temporary files that a killed writer left beside path: ours (PATH.tmp-XXXXXX) and the
// PATH.XXXXXX ones of earlier versions. Returns how many were removed.
int removeStaleTemporaries(const std::string& path);

} // namespace orvanta::files
