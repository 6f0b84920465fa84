#include "BoundedRead.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orvanta::files {

namespace {

ReadFailure systemFailure()
{
    return ReadFailure{std::strerror(errno)};
}

std::string sizeLimitText(std::size_t maxBytes)
{
    return "larger than " + std::to_string(maxBytes) + " bytes";
}

class FileDescriptor
{
public:
    explicit FileDescriptor(int value) : fd(value) {}
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor()
    {
        if (fd >= 0) {
            ::close(fd);
        }
    }
    int get() const { return fd; }

private:
    int fd;
};

} // namespace

std::variant<std::string, ReadFailure> readBoundedFile(const std::string& path, std::size_t maxBytes)
{
    // O_NONBLOCK: opening a FIFO with no writer would otherwise wait forever.
    const FileDescriptor fd(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    if (fd.get() < 0) {
        return systemFailure();
    }
    struct stat info
    {};
    if (::fstat(fd.get(), &info) != 0) {
        return systemFailure();
    }
    if (!S_ISREG(info.st_mode)) {
        return ReadFailure{"not a regular file"};
    }
    if (info.st_size < 0 || static_cast<unsigned long long>(info.st_size) > maxBytes) {
        return ReadFailure{sizeLimitText(maxBytes)};
    }
    // The file may grow while it is read: read at most one byte past the bound to notice.
    std::string content(static_cast<std::size_t>(info.st_size) + 1, '\0');
    std::size_t filled = 0;
    while (filled < content.size()) {
        const ssize_t got = ::read(fd.get(), content.data() + filled, content.size() - filled);
        if (got < 0) {
            if (errno == EINTR) {
                continue;
            }
            return systemFailure();
        }
        if (got == 0) {
            break;
        }
        filled += static_cast<std::size_t>(got);
        if (filled > maxBytes) {
            return ReadFailure{sizeLimitText(maxBytes)};
        }
        if (filled == content.size()) {
            content.resize(std::min(content.size() * 2, maxBytes + 1));
        }
    }
    content.resize(filled);
    return content;
}

} // namespace orvanta::files
