#ifndef DMP_BUILT_IN_MODULES_H
#define DMP_BUILT_IN_MODULES_H

#include "dmp_linux_device_mapper_claim.h"
#include "dmp_nativepath_claim.h"
#include "dmp_powerpath_claim.h"

template <class... Modules>
struct ModuleList {};

/// The modules that every manager starts with, in the order in which it asks them. The manager, the
/// command and the tests take them from here.
using BuiltInModules = ModuleList<CNativePathClaim, CDmpPowerPathClaim, CDmpDeviceMapperClaim>;

#endif
