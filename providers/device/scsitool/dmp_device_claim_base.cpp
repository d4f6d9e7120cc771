#include "dmp_device_claim_base.h"

CDmpDeviceClaimBase::~CDmpDeviceClaimBase() = default;

std::string CDmpDeviceClaimBase::getActivePath(std::string device, bool /*wait*/)
{
    return device;
}

bool CDmpDeviceClaimBase::isRawDevice(std::string device)
{
    return device.find("/dev/") != std::string::npos;
}

std::string CDmpDeviceClaimBase::removeDevPrefix(std::string device)
{
    if (device.compare(0, 5, "/dev/") == 0)
        device.erase(0, 5);
    return device;
}
