#include "append_file.h"

#include <cerrno>
#include <climits>
#include <ctime>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include "hoststate.h"

using koze_pdk_4_4::Descriptor;
using koze_pdk_4_4::moveAboveStdio;

namespace {

enum Refusal { linkOfAnother = 1, fifoOfAnother, fileOfAnother, severalNames, fifoWithoutReader };

class RefusalCategory : public std::error_category {
public:
    const char* name() const noexcept override { return "refusal"; }

    std::string message(int refusal) const override
    {
        switch (refusal) {
        case linkOfAnother:
            return "symbolic link of another account in a folder that others may write";
        case fifoOfAnother:
            return "FIFO of another account in a folder that others may write";
        case fileOfAnother:
            return "file of another account in a folder that others may write";
        case severalNames:
            return "file with several names in a folder that others may write";
        default:
            return "FIFO that nobody reads";
        }
    }

    std::error_condition default_error_condition(int refusal) const noexcept override
    {
        return refusal == fifoWithoutReader ? std::errc::no_such_device_or_address
                                            : std::errc::permission_denied;
    }
};

[[noreturn]] void refuse(Refusal refusal)
{
    static const RefusalCategory category;
    throw std::system_error(refusal, category);
}

[[noreturn]] void fail(int error)
{
    throw std::system_error(error, std::generic_category());
}

Descriptor opened(Descriptor file)
{
    if (!file.isOpen())
        fail(errno);
    return file;
}

struct stat statusOf(const Descriptor& file)
{
    struct stat status {};
    if (fstat(file.number(), &status) != 0)
        fail(errno);
    return status;
}

/// The owner of "/"; 0, which is root, when it cannot be told.
uid_t rootsOwner()
{
    struct stat root {};
    stat("/", &root);
    return root.st_uid;
}

/// Trusts root, the caller, and the owner of "/": in a user namespace root may have no number, and
/// its files belong to the overflow account.
bool isTrusted(uid_t account)
{
    return account == 0 || account == geteuid() || account == rootsOwner();
}

using Time = std::pair<std::time_t, long>; // seconds and nanoseconds

Time timeOf(const timespec& time)
{
    return {time.tv_sec, time.tv_nsec};
}

/// The time of a clock that is never ahead of the times of files.
Time coarseNow()
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME_COARSE, &now);
    return timeOf(now);
}

/// Clears O_NONBLOCK: a line waits for room in a full pipe.
void makeBlocking(const Descriptor& file)
{
    const int flags = fcntl(file.number(), F_GETFL);
    if (flags < 0 || fcntl(file.number(), F_SETFL, flags & ~O_NONBLOCK) != 0)
        fail(errno);
}

/// Walks along a path, name by name, as the kernel does, and checks each link and the file.
class PathWalk {
public:
    explicit PathWalk(std::string path) : m_rest(std::move(path)), m_folder(start()) {}

    Descriptor openFile()
    {
        for (;;) {
            const std::string name = takeName();
            const Descriptor entry = openHere(name, O_PATH | O_NOFOLLOW);
            if (isWrittenLink(entry))
                follow(entry);
            else if (m_rest.empty())
                return openLast(name, entry);
            else
                m_folder = opened(openHere(name, O_PATH | O_DIRECTORY | noFollow()));
        }
    }

private:
    Descriptor start() const
    {
        const char* folder = m_rest.front() == '/' ? "/" : ".";
        return opened(Descriptor(open(folder, O_PATH | O_DIRECTORY | O_CLOEXEC)));
    }

    /// Cuts the first name off the rest of the path; "." when only slashes are left.
    std::string takeName()
    {
        m_rest.erase(0, m_rest.find_first_not_of('/'));
        const std::string name = m_rest.substr(0, m_rest.find('/'));
        m_rest.erase(0, name.size());
        return name.empty() ? "." : name;
    }

    Descriptor openHere(const std::string& name, int flags) const
    {
        constexpr mode_t mode = 0640;
        return Descriptor(openat(m_folder.number(), name.c_str(), flags | O_CLOEXEC, mode));
    }

    /// Whether the folder is one of procfs. Only the kernel can follow links there: the text of
    /// /proc/self/fd/1 may be "pipe:[4711]".
    bool isProc() const
    {
        struct statfs system {};
        return fstatfs(m_folder.number(), &system) == 0 && system.f_type == PROC_SUPER_MAGIC;
    }

    int noFollow() const { return isProc() ? 0 : O_NOFOLLOW; }

    bool isWrittenLink(const Descriptor& entry) const
    {
        return entry.isOpen() && S_ISLNK(statusOf(entry).st_mode) && !isProc();
    }

    void follow(const Descriptor& link)
    {
        refuseForeign(statusOf(link));
        constexpr int most = 40; // as many as the kernel follows
        char target[PATH_MAX];
        const ssize_t size = readlinkat(link.number(), "", target, sizeof target);
        if (size < 0 || ++m_links > most)
            fail(size < 0 ? errno : ELOOP);
        m_rest.insert(0, target, static_cast<std::size_t>(size));
        if (m_rest.front() == '/')
            m_folder = start();
    }

    Descriptor openLast(const std::string& name, const Descriptor& entry) const
    {
        if (entry.isOpen())
            refuseForeign(statusOf(entry)); // else the kernel may say EACCES only
        const bool isFifo = entry.isOpen() && S_ISFIFO(statusOf(entry).st_mode);
        Descriptor file =
            openHere(name, O_WRONLY | O_APPEND | O_CREAT | O_NOCTTY | O_NONBLOCK | noFollow());
        if (isFifo && !file.isOpen() && errno == ENXIO)
            refuse(fifoWithoutReader);
        file = opened(std::move(file));
        refuseForeign(statusOf(file));
        makeBlocking(file);
        return file;
    }

    /// Refuses an entry that another account may have put into the folder.
    void refuseForeign(const struct stat& entry) const
    {
        const struct stat folder = statusOf(m_folder);
        const bool othersWrite =
            !isTrusted(folder.st_uid) || (folder.st_mode & (S_IWGRP | S_IWOTH)) != 0;
        if (!othersWrite)
            return;
        if (!isTrusted(entry.st_uid))
            refuse(S_ISLNK(entry.st_mode)    ? linkOfAnother
                   : S_ISFIFO(entry.st_mode) ? fifoOfAnother
                                             : fileOfAnother);
        if (!S_ISDIR(entry.st_mode) && (entry.st_nlink > 1 || wasLinkedMeanwhile(entry)))
            refuse(severalNames);
    }

    /// Whether link(2) or unlink(2) changed the entry since the walk began: these set ctime, but
    /// not mtime. Else another account could remove its hard link between the open and fstat.
    bool wasLinkedMeanwhile(const struct stat& entry) const
    {
        const Time changed = timeOf(entry.st_ctim);
        return changed >= m_begin && changed != timeOf(entry.st_mtim);
    }

    const Time m_begin = coarseNow();
    std::string m_rest;
    Descriptor m_folder;
    int m_links = 0;
};

} // namespace

Descriptor openForAppending(const std::string& path)
{
    const HostState kept;
    try {
        if (path.empty())
            fail(ENOENT);
        return moveAboveStdio(PathWalk(path).openFile());
    } catch (const std::system_error& error) {
        throw std::system_error(error.code(), path);
    }
}
