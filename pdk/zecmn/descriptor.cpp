#include "descriptor.h"

#include <cerrno>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

namespace koze_pdk_4_4::runner {

namespace {

[[noreturn]] void fail(const char* what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

void writeAll(int descriptor, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t written = write(descriptor, text.data(), text.size());
        if (written < 0 && errno != EINTR)
            fail("cannot store its input");
        if (written > 0)
            text.remove_prefix(static_cast<std::size_t>(written));
    }
}

/// A write beyond RLIMIT_FSIZE would kill the host with SIGXFSZ.
void checkFileSizeLimit(std::size_t size)
{
    rlimit limit{RLIM_INFINITY, RLIM_INFINITY};
    getrlimit(RLIMIT_FSIZE, &limit);
    if (size > limit.rlim_cur) {
        errno = EFBIG;
        fail("cannot store its input");
    }
}

/// Opens a memfd that is sealed against execution, because some machines refuse others. Kernels
/// before 6.3 do not know the seal.
int openMemory()
{
    constexpr unsigned int noExecSeal = 0x8; // MFD_NOEXEC_SEAL of newer headers
    const int sealed = memfd_create("input", MFD_CLOEXEC | noExecSeal);
    return sealed < 0 && errno == EINVAL ? memfd_create("input", MFD_CLOEXEC) : sealed;
}

} // namespace

Pipe openPipe()
{
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        fail("cannot open a pipe");
    Descriptor readEnd(ends[0]);
    Descriptor writeEnd(ends[1]);
    return {moveAboveStdio(std::move(readEnd)), moveAboveStdio(std::move(writeEnd))};
}

Descriptor openInput(const std::string& text)
{
    checkFileSizeLimit(text.size());
    Descriptor input(text.empty() ? open("/dev/null", O_RDONLY | O_CLOEXEC) : openMemory());
    if (!input.isOpen())
        fail("cannot open its input");
    writeAll(input.number(), text);
    if (!text.empty() && lseek(input.number(), 0, SEEK_SET) != 0)
        fail("cannot rewind its input");
    return moveAboveStdio(std::move(input));
}

} // namespace koze_pdk_4_4::runner
