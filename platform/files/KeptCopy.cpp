#include "KeptCopy.h"

#include <cerrno>
#include <cstring>

#include <unistd.h>

namespace orvanta::files {

namespace {

// Enough for years of daily incidents; past it, nothing more is kept and nothing is replaced.
constexpr int kMostKeptCopies = 1000;

std::string candidateName(const std::string& path, int number)
{
    const std::string kept = path + ".broken";
    return number == 1 ? kept : kept + "-" + std::to_string(number);
}

} // namespace

std::variant<KeptCopy, KeepFailure> keepCopy(const std::string& path)
{
    // link() refuses an existing name, so two kept copies can never meet at one name, not even
    // with another process choosing at the same moment.
    for (int number = 1; number <= kMostKeptCopies; ++number) {
        std::string candidate = candidateName(path, number);
        if (::link(path.c_str(), candidate.c_str()) == 0) {
            return KeptCopy{std::move(candidate)};
        }
        if (errno != EEXIST) {
            return KeepFailure{std::strerror(errno)};
        }
    }
    return KeepFailure{"too many kept copies already"};
}

} // namespace orvanta::files
