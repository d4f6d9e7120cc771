// The memory that the command takes on a large machine.
#include <algorithm>

#include "tests/command/made_up_process.h"
#include "tests/support/disk_letters.h"
#include "tests/support/sanitized.h"

namespace {

constexpr int pathsOfMap = 8;

class Memory : public MadeUpProcess {
protected:
    void addMaps(int count)
    {
        for (int map = 0; map < count; ++map) {
            std::vector<std::string> paths;
            for (int path = map * pathsOfMap; path < (map + 1) * pathsOfMap; ++path)
                paths.push_back(addPath(path));
            m_made.addMap("dm-" + std::to_string(map), "254:" + std::to_string(map),
                          "mpath" + diskLetters(map), "mpath-3600" + std::to_string(map), paths);
        }
    }

    /// The peak, in KiB, while the command prints so many rows.
    long peakFor(const std::string& subcommand, std::ptrdiff_t rows) const
    {
        Setting setting;
        // Without these options the address sanitizer, if there is one, keeps freed memory.
        setting.environment = {
            "ASAN_OPTIONS=quarantine_size_mb=0:thread_local_quarantine_size_kb=0"};
        const Result result = Process(onMachine({subcommand, "-nr"}), setting).finish();
        EXPECT_EQ(std::count(result.output.begin(), result.output.end(), '\n'), rows);
        return result.peakKilobytes;
    }

private:
    std::string addPath(int number)
    {
        const std::string name = "sd" + diskLetters(number);
        m_made.addDisk(name, "8:" + std::to_string(number), "2:0:" + std::to_string(number) + ":0");
        return name;
    }
};

/// 64 MiB are two KiB for each of 32,768 disks.
TEST_F(Memory, OfAListGrowsByTwoKibibytesADiskAtMost)
{
    constexpr int maps = 64;
    constexpr int disks = maps * pathsOfMap;
    const long peak = std::max(peakFor("list", 0), peakFor("paths", 0));
    addMaps(maps);
    const long most = peak + (isSanitized ? 8 : 2) * disks;
    EXPECT_LT(peakFor("list", disks + maps), most);
    EXPECT_LT(peakFor("paths", disks), most);
}

} // namespace
