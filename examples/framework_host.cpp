#include <cstdio>

#include "providers/device/scsitool/dmp_claim_manager.h"

using namespace koze_pdk_4_4;

int main()
{
    CZeTraceLogHandle log = new CZeTraceLog; // Where its lines go is the framework's business.

    CDmpClaimManager manager;
    manager.registerTraceLog(log);

    unsigned int partnum = 0;
    const std::string disk = manager.removePartitionSuffix("/dev/sdc2", partnum);
    std::printf("partition %u of %s\n", partnum, disk.c_str());
}
