#include "switch_user.h"

#include <cerrno>

#include <linux/capability.h>
#include <linux/keyctl.h>
#include <linux/sched.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

using koze_pdk_4_4::runner::Identity;

/// From here on no process of the account can trace this one or read its copy of the host's
/// memory. The kernel does the same when a user changes, but a host may run as the account in part
/// already.
bool closeMemory()
{
    return syscall(SYS_prctl, PR_SET_DUMPABLE, 0, 0, 0, 0) == 0;
}

/// An account with a real-time class could keep a processor from everybody else.
bool leaveRealTime()
{
    const long policy = syscall(SYS_sched_getscheduler, 0);
    if (policy != SCHED_FIFO && policy != SCHED_RR)
        return policy >= 0;
    const sched_param none{};
    return syscall(SYS_sched_setscheduler, 0, SCHED_OTHER | SCHED_RESET_ON_FORK, &none) == 0;
}

/// Whether errno says that there is no keyctl: the kernel has no keys, or a filter denies the call,
/// which the program inherits.
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
    // A filter may deny joining only. Then the program could use the host's keyring.
    return syscall(SYS_keyctl, KEYCTL_GET_KEYRING_ID, KEY_SPEC_SESSION_KEYRING, 0) < 0 &&
           isDenied();
}

bool become(const Identity& identity)
{
    return syscall(SYS_setgroups, identity.groups.size(), identity.groups.data()) == 0 &&
           syscall(SYS_setresgid, identity.group, identity.group, identity.group) == 0 &&
           syscall(SYS_setresuid, identity.user, identity.user, identity.user) == 0;
}

/// Without these sets, ambient capabilities go too. The effective and permitted ones of an account
/// with number 0 stay: its program gets them anyway, and needs them for its directory.
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

namespace koze_pdk_4_4::runner {

const char* switchUser(const Identity& identity)
{
    if (!closeMemory())
        return "cannot close its memory to others";
    if (!leaveRealTime())
        return "cannot leave the host's real-time class";
    if (!leaveSessionKeyring())
        return "cannot leave the host's session keyring";
    if (!become(identity))
        return "cannot become its user";
    if (!dropCapabilities(identity))
        return "cannot drop the host's capabilities";
    return nullptr;
}

} // namespace koze_pdk_4_4::runner
