#ifndef ZECMN_SWITCH_USER_H
#define ZECMN_SWITCH_USER_H

#include "program.h"

namespace koze_pdk_4_4::runner {

/// Gives this process the rights of an account and takes the host's away: capabilities, session
/// keyring, real-time class. Returns what failed, with errno set, and null on success.
///
/// Called in a child before its program: makes plain system calls only, as all of ChildPlan does.
/// REQUIRES: the child has a copy of the host's memory, as ChildPlan::copiesMemory explains.
const char* switchUser(const Identity& identity);

} // namespace koze_pdk_4_4::runner

#endif
