#include <cstdio>

#include "providers/device/scsitool/dmp_claim_manager.h"

using namespace koze_pdk_4_4;

int main()
{
    CZeTraceLogHandle log = new CZeTraceLog;
    log->setSink(new CZeTraceStderrSink(2)); // Warnings and worse.

    CDmpClaimManager manager;
    manager.registerTraceLog(log);

    for (const char* path : {"/dev/sdc2", "/dev/mapper/mpathbp2", "/dev/vda"}) {
        CDmpDeviceClaimBase* owner = nullptr;
        if (manager.getClaimModule(owner, path) == CLAIM_NONE) {
            std::printf("%s: nobody claims it\n", path);
            continue;
        }
        unsigned int partnum = 0;
        const std::string disk = owner->removePartitionSuffix(path, partnum);
        std::printf("%s: on disk %s, active path %s\n", path, disk.c_str(),
                    owner->getActivePath(disk, true).c_str());
    }
}
