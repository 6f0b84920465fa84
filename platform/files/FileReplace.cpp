#include "FileReplace.h"

#include <cerrno>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orvanta::files {

namespace {

constexpr std::string_view kTemporaryInfix = ".tmp-";
constexpr std::size_t kRandomPartLength = 6; // the XXXXXX of mkstemp()
// A kept copy of a malformed file is named PATH.broken, which is as long as a temporary name
// of earlier versions; it is never a temporary file.
constexpr std::string_view kKeptCopySuffix = "broken";

std::string systemReason(int error)
{
    return std::strerror(error);
}

std::string folderOf(const std::string& path)
{
    const auto parent = std::filesystem::path(path).parent_path();
    return parent.empty() ? std::string(".") : parent.string();
}

// Writes all of content, retrying after signals and short writes. Gives errno on failure.
int writeAll(int fd, std::string_view content)
{
    while (!content.empty()) {
        const ssize_t written = ::write(fd, content.data(), content.size());
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            return errno;
        }
        if (written == 0) {
            return EIO;
        }
        content.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}

// Permissions for the new file: those of the file it replaces, else readable by everyone.
mode_t modeFor(const std::string& path)
{
    struct stat existing
    {};
    if (::stat(path.c_str(), &existing) == 0) {
        return existing.st_mode & 07777;
    }
    return 0644;
}

// Makes the rename itself durable. A folder that cannot be synced changes nothing about
// which content the file has, so its failure is not one of the write.
void syncFolder(const std::string& folder)
{
    const int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
}

bool isRandomPart(std::string_view text)
{
    if (text.size() != kRandomPartLength) {
        return false;
    }
    for (const char c : text) {
        const bool alphanumeric = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
        if (!alphanumeric) {
            return false;
        }
    }
    return true;
}

bool isStaleTemporary(std::string_view name, std::string_view base)
{
    if (name.size() <= base.size() || name.substr(0, base.size()) != base) {
        return false;
    }
    auto rest = name.substr(base.size());
    if (rest.starts_with(kTemporaryInfix)) {
        return isRandomPart(rest.substr(kTemporaryInfix.size()));
    }
    return rest.starts_with('.') && isRandomPart(rest.substr(1)) && rest.substr(1) != kKeptCopySuffix;
}

// The file a symbolic link points to, so that the link itself (to a file kept elsewhere, say
// under version control) stays; the path itself otherwise.
std::string fileBehind(const std::string& path)
{
    std::error_code error;
    if (!std::filesystem::is_symlink(path, error)) {
        return path;
    }
    const auto target = std::filesystem::canonical(path, error);
    return error ? path : target.string();
}

} // namespace

std::optional<std::string> replaceFile(const std::string& linkOrPath, std::string_view content)
{
    const std::string path = fileBehind(linkOrPath);
    std::string temporary = path + std::string(kTemporaryInfix) + std::string(kRandomPartLength, 'X');
    const int fd = ::mkostemp(temporary.data(), O_CLOEXEC);
    if (fd < 0) {
        return systemReason(errno);
    }
    int error = ::fchmod(fd, modeFor(path)) == 0 ? 0 : errno;
    if (error == 0) {
        error = writeAll(fd, content);
    }
    if (error == 0 && ::fsync(fd) != 0) {
        error = errno;
    }
    // close() is where some file systems report a write that could not be done.
    if (::close(fd) != 0 && error == 0) {
        error = errno;
    }
    if (error == 0 && ::rename(temporary.c_str(), path.c_str()) != 0) {
        error = errno;
    }
    if (error != 0) {
        ::unlink(temporary.c_str());
        return systemReason(error);
    }
    syncFolder(folderOf(path));
    return std::nullopt;
}

int removeStaleTemporaries(const std::string& path)
{
    const std::string base = std::filesystem::path(path).filename().string();
    std::error_code error;
    int removed = 0;
    std::filesystem::directory_iterator entry(folderOf(path), error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        std::error_code ignored;
        if (isStaleTemporary(name, base) && entry->is_regular_file(ignored) &&
            std::filesystem::remove(entry->path(), ignored)) {
            ++removed;
        }
    }
    return removed;
}

} // namespace orvanta::files
