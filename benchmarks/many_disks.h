#ifndef BENCHMARKS_MANY_DISKS_H
#define BENCHMARKS_MANY_DISKS_H

#include <cstdlib>
#include <string>
#include <vector>

#include "benchmarks/comparison.h"
#include "tests/support/disk_letters.h"
#include "tests/support/made_up_machine.h"

/// A machine with so many disks, eight of which are the paths of a multipath map each.
class ManyDisks : public MadeUpMachine {
public:
    explicit ManyDisks(int disks)
    {
        constexpr int pathsOfMap = 8;
        std::vector<std::string> paths;
        for (int number = 0; number < disks; ++number) {
            paths.push_back("sd" + diskLetters(number));
            addDisk(paths.back(), "8:" + std::to_string(number),
                    "2:0:" + std::to_string(number) + ":0");
            set(paths.back(), "size", "2097152");
            if (paths.size() == pathsOfMap) {
                const std::string map = std::to_string(number / pathsOfMap);
                addMap("dm-" + map, "254:" + map, "mpath" + diskLetters(number), "mpath-3600" + map,
                       paths);
                paths.clear();
            }
        }
    }
};

/// Compares what an operation costs as disks grow tenfold.
template <class Operation>
void compareMachines(const std::string& name, Operation operation)
{
    setenv("TMPDIR", "/dev/shm", 0); // The trees are in memory, as sysfs is.
    const ManyDisks few(328);
    const ManyDisks more(3280);
    const ManyDisks many(32800);
    compare(name, {{"328", computing([&] { operation(few); })},
                   {"3280", computing([&] { operation(more); })},
                   {"32800", computing([&] { operation(many); })}});
}

#endif
