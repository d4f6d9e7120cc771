// What the naming questions cost without a log: beside a plain implementation of the same contract,
// beside libfdisk's name of a partition, and as names grow.
#include <cstdlib>
#include <string>

#include <libfdisk/libfdisk.h>

#include "benchmarks/comparison.h"
#include "benchmarks/plain_names.h"
#include "providers/device/scsitool/dmp_claim_manager.h"
#include "providers/device/scsitool/dmp_linux_device_mapper_claim.h"
#include "providers/device/scsitool/dmp_nativepath_claim.h"
#include "providers/device/scsitool/dmp_powerpath_claim.h"

namespace {

void compareQuestions(const std::string& disk, const std::string& partition)
{
    CDmpClaimManager ours;
    plain::Manager plain;
    unsigned int number = 0;
    compare("claim " + disk, {{"ours", computing([&] { keep(ours.claim(disk)); })},
                              {"plain", computing([&] { keep(plain.claim(disk)); })}});
    compare("is " + partition + " a partition",
            {{"ours", computing([&] { keep(ours.isPartition(partition)); })},
             {"plain", computing([&] { keep(plain.isPartition(partition)); })}});
    compare("strip " + partition,
            {{"ours", computing([&] { keep(ours.removePartitionSuffix(partition, number)); })},
             {"plain", computing([&] { keep(plain.strip(partition, number)); })}});
    compare("append 2 to " + disk,
            {{"ours", computing([&] { keep(ours.appendPartitionSuffix(disk, 2)); })},
             {"plain", computing([&] { keep(plain.append(disk, 2)); })}});
}

/// libfdisk makes the name without asking who owns the disk, as the owner's module does; a host
/// that does not know the owner asks the manager.
void compareWithLibfdisk(CDmpDeviceClaimBase&& module, const std::string& disk)
{
    CDmpClaimManager manager;
    const auto libfdisk = [&] {
        char* name = fdisk_partname(disk.c_str(), 2);
        keep(name);
        std::free(name);
    };
    compare("name partition 2 of " + disk,
            {{"ours", computing([&] { keep(module.appendPartitionSuffix(disk, 2)); })},
             {"ours, with the search for the owner",
              computing([&] { keep(manager.appendPartitionSuffix(disk, 2)); })},
             {"libfdisk", computing(libfdisk)}});
}

/// One pass over the path: ten times the digits cost ten times the time at most.
void compareDigits()
{
    CDmpPowerPathClaim module;
    unsigned int number = 0;
    const auto strip = [&](std::size_t digits) {
        return computing([&, partition = "/dev/emcpowera" + std::string(digits, '7')] {
            keep(module.removePartitionSuffix(partition, number));
        });
    };
    compare("strip digits",
            {{"1000", strip(1000)}, {"10000", strip(10000)}, {"100000", strip(100000)}});
}

} // namespace

int main()
{
    compareQuestions("/dev/sdc", "/dev/sdc2");
    compareQuestions("/dev/emcpowerc", "/dev/emcpowerc2");
    compareQuestions("/dev/mapper/mpathb", "/dev/mapper/mpathbp2");
    compareWithLibfdisk(CNativePathClaim(), "/dev/sdc");
    compareWithLibfdisk(CDmpPowerPathClaim(), "/dev/emcpowerc");
    compareWithLibfdisk(CDmpDeviceMapperClaim(), "/dev/mapper/mpathb");
    compareDigits();
}
