#include "switch_user.h"

#include <cerrno>

#include <linux/capability.h>
#include <linux/keyctl.h>
#include <linux/sched.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace koze_pdk_4_4::runner {

namespace {

/// A program in a real-time class could keep all other programs off a processor.
bool leaveRealTime()
{
    const long policy = syscall(SYS_sched_getscheduler, 0);
    if (policy != SCHED_FIFO && policy != SCHED_RR)
        return policy >= 0;
    const sched_param none{};
    return syscall(SYS_sched_setscheduler, 0, SCHED_OTHER | SCHED_RESET_ON_FORK, &none) == 0;
}

/// Whether errno says that keyctl is not available: the kernel has no keys, or a seccomp filter,
/// which the program inherits, denies the call.
bool isDenied()
{
    return errno == ENOSYS || errno == EPERM;
}

bool leaveSessionKeyring()
{
    if (syscall(SYS_keyctl, KEYCTL_JOIN_SESSION_KEYRING, nullptr) >= 0)
        return true;
    if (!isDenied())
        return false;
    // A filter may deny only the joining. Then the program could still use the host's keyring.
    return syscall(SYS_keyctl, KEYCTL_GET_KEYRING_ID, KEY_SPEC_SESSION_KEYRING, 0) < 0 &&
           isDenied();
}

/// Until the saved user changes, the kernel lets no process of the account trace this one or read
/// its copy of the host's memory. The first change of user sets the dumpable flag to
/// fs.suid_dumpable, which may be 1; cleared after that, the flag stays cleared.
bool setUserAndGroups(const Identity& identity)
{
    constexpr auto keep = static_cast<uid_t>(-1);
    return syscall(SYS_setgroups, identity.groups.size(), identity.groups.data()) == 0 &&
           syscall(SYS_setresgid, identity.group, identity.group, identity.group) == 0 &&
           syscall(SYS_setresuid, identity.user, identity.user, keep) == 0 &&
           syscall(SYS_prctl, PR_SET_DUMPABLE, 0, 0, 0, 0) == 0 &&
           syscall(SYS_setresuid, keep, keep, identity.user) == 0;
}

/// Clears the inheritable set, and with it the kernel clears the ambient one. Of root, keeps the
/// effective and permitted sets: execve restores them anyway, and chdir may need them.
bool dropCapabilities(const Identity& identity)
{
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct sets[_LINUX_CAPABILITY_U32S_3];
    if (syscall(SYS_capget, &header, sets) != 0)
        return false;
    for (__user_cap_data_struct& set : sets) {
        set.inheritable = 0;
        if (identity.user != 0)
            set.effective = set.permitted = 0;
    }
    return syscall(SYS_capset, &header, sets) == 0;
}

} // namespace

const char* switchUser(const Identity& identity)
{
    if (!leaveRealTime())
        return "cannot leave the host's real-time class";
    if (!leaveSessionKeyring())
        return "cannot leave the host's session keyring";
    if (!setUserAndGroups(identity))
        return "cannot become its user";
    if (!dropCapabilities(identity))
        return "cannot drop the host's capabilities";
    return nullptr;
}

} // namespace koze_pdk_4_4::runner
