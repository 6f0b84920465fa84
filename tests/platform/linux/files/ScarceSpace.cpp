#include "ScarceSpace.h"

#include <QFile>

#include <cerrno>
#include <csignal>
#include <cstring>

#include <fcntl.h>
#include <sys/mount.h>
#include <unistd.h>

namespace orvanta::testing {

namespace {

// Room for a few small files, so that the folder starts out usable.
constexpr const char* kTmpfsOptions = "size=128k,mode=0700";

// Writes to a filler file until the file system refuses.
void fillUp(const QString& path)
{
    const int fd = ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd < 0) {
        return;
    }
    const std::string block(4096, 'x');
    while (::write(fd, block.data(), block.size()) > 0) {
    }
    // The last partial page, byte by byte.
    while (::write(fd, "x", 1) > 0) {
    }
    ::close(fd);
}

} // namespace

ScarceSpace::ScarceSpace(Kind spaceKind) : kind(spaceKind)
{
    if (kind == Kind::FileSizeLimit) {
        ready = directory.isValid();
        return;
    }
    if (::geteuid() != 0) {
        reason = QStringLiteral("mounting a tmpfs needs root");
        return;
    }
    if (::mount("tmpfs", QFile::encodeName(directory.path()).constData(), "tmpfs", MS_NOSUID | MS_NODEV,
                kTmpfsOptions) != 0) {
        reason = QStringLiteral("cannot mount a tmpfs: ") + QString::fromLocal8Bit(std::strerror(errno));
        return;
    }
    mounted = true;
    ready = true;
}

ScarceSpace::~ScarceSpace()
{
    if (mounted) {
        ::umount2(QFile::encodeName(directory.path()).constData(), MNT_DETACH);
    }
}

QString ScarceSpace::failureText() const
{
    return QString::fromLocal8Bit(std::strerror(kind == Kind::SmallTmpfs ? ENOSPC : EFBIG));
}

ScarceSpace::Full::Full(ScarceSpace& scarce) : space(scarce)
{
    if (space.kind == Kind::SmallTmpfs) {
        fillUp(space.filePath(QStringLiteral("filler")));
        return;
    }
    // A write past the limit raises SIGXFSZ, which would end the process; ignored, the write
    // fails with EFBIG instead. The limit is on this process: keep the window short.
    std::signal(SIGXFSZ, SIG_IGN);
    ::getrlimit(RLIMIT_FSIZE, &savedLimit);
    rlimit tight = savedLimit;
    tight.rlim_cur = 0;
    ::setrlimit(RLIMIT_FSIZE, &tight);
}

ScarceSpace::Full::~Full()
{
    if (space.kind == Kind::SmallTmpfs) {
        QFile::remove(space.filePath(QStringLiteral("filler")));
        return;
    }
    ::setrlimit(RLIMIT_FSIZE, &savedLimit);
}

} // namespace orvanta::testing
