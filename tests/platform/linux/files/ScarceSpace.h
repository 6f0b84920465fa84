#pragma once

// A folder whose writes can be made to fail for want of space, the way a full disk fails them.
// Two ways, chosen by the test: a small tmpfs mounted on the folder (needs root and mount
// rights), where filling it makes every further write fail with ENOSPC; or an ordinary folder
// and a file-size limit (RLIMIT_FSIZE, SIGXFSZ ignored) on this process, where every write past
// the limit fails with EFBIG. The second works anywhere.

#include <QString>
#include <QTemporaryDir>

#include <sys/resource.h>

namespace orvanta::testing {

class ScarceSpace
{
public:
    enum class Kind
    {
        SmallTmpfs,
        FileSizeLimit,
    };

    explicit ScarceSpace(Kind kind);
    ~ScarceSpace();
    ScarceSpace(const ScarceSpace&) = delete;
    ScarceSpace& operator=(const ScarceSpace&) = delete;

    // False when this kind cannot be had here (a tmpfs without root); why() says why.
    bool available() const { return ready; }
    QString why() const { return reason; }

    QString folder() const { return directory.path(); }
    QString filePath(const QString& name) const { return directory.filePath(name); }

    // While a Full object lives, new writes in the folder fail.
    class Full
    {
    public:
        explicit Full(ScarceSpace& space);
        ~Full();
        Full(const Full&) = delete;
        Full& operator=(const Full&) = delete;

    private:
        ScarceSpace& space;
        rlimit savedLimit{};
    };

    // What the system says when a write fails for want of space of this kind.
    QString failureText() const;

private:
    Kind kind;
    QTemporaryDir directory;
    bool mounted = false;
    bool ready = false;
    QString reason;
};

} // namespace orvanta::testing
