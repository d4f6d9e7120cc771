// The subcommands and the library never contradict one another, on any machine and for any path.
#include <set>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <rapidcheck/gtest.h>

#include "list.h"
#include "partitions.h"
#include "providers/device/scsitool/dmp_claim_manager.h"
#include "show.h"
#include "tests/command/made_up_command.h"

namespace {

using json = nlohmann::ordered_json;

/// A machine of a few disks and maps whose partitions have names of all the usual kinds.
class Contradictions : public MadeUpCommand {
protected:
    void makeMachine()
    {
        const int disks = *rc::gen::inRange(0, 4);
        for (int disk = 0; disk < disks; ++disk)
            addDisk(std::string("sd") + static_cast<char>('a' + disk));
        const int maps = *rc::gen::inRange(0, 4);
        for (int map = 0; map < maps; ++map)
            addMap(*rc::gen::element<std::string>("mpath", "mpath1", "vg-root", "p2p", "a b") +
                   static_cast<char>('a' + map));
    }

    /// The path of a device, of a partition that its name may have, or of nothing.
    std::string anyPath() const
    {
        const std::string end = *rc::gen::element<std::string>("", "", "1", "p1", "p9", "p10",
                                                               "-part1", "1p", "0", "4294967296");
        if (m_paths.empty())
            return "/dev/sda" + end;
        return *rc::gen::elementOf(m_paths) + end;
    }

    /// The only row that the subcommand prints.
    json row(const Subcommand& run, std::vector<std::string> arguments) const
    {
        const json rows = rowsOf(run, std::move(arguments));
        RC_ASSERT(rows.size() == 1U);
        return rows[0];
    }

    json rowsOf(const Subcommand& run, std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.begin() + 1, "-J");
        for (const json& member : json::parse(answer(run, arguments).output)) {
            if (member.is_array())
                return member;
        }
        return {};
    }

private:
    std::string nextNumber() { return "8:" + std::to_string(m_number++); }

    unsigned int anyPartnum() const { return *rc::gen::element<unsigned int>(1, 2, 9, 10, 128); }

    void addDisk(const std::string& disk)
    {
        m_made.addDisk(disk, nextNumber(), "2:0:0:" + std::to_string(m_number));
        m_paths.push_back("/dev/" + disk);
        if (*rc::gen::arbitrary<bool>()) {
            const std::string partition = disk + std::to_string(anyPartnum());
            m_made.addPartition(disk, partition, nextNumber());
            m_paths.push_back("/dev/" + partition);
        }
    }

    void addMap(const std::string& name)
    {
        const std::string kernelName = "dm-" + std::to_string(m_number);
        addNamed(kernelName, name, "mpath-" + name, {});
        if (*rc::gen::arbitrary<bool>()) {
            const std::string number = std::to_string(anyPartnum());
            const std::string between = *rc::gen::element<std::string>("", "p", "-part");
            addNamed("dm-" + std::to_string(m_number), name + between + number,
                     "part" + number + "-mpath-" + name, {kernelName});
        }
    }

    void addNamed(const std::string& kernelName, const std::string& mapName,
                  const std::string& uuid, const std::vector<std::string>& members)
    {
        m_made.addMap(kernelName, nextNumber(), mapName, uuid, members);
        m_paths.push_back("/dev/mapper/" + mapName);
    }

    int m_number = 0;
    std::vector<std::string> m_paths;
};

/// What rows of several subcommands say about a path by its name.
json byName(const json& row)
{
    json named;
    for (const char* column : {"name", "owner", "claim", "partition", "disk", "partnum"})
        named[column] = row.at(column);
    return named;
}

RC_GTEST_FIXTURE_PROP(Contradictions, ShowExplainStripAndTheLibraryAgreeOnAPath, ())
{
    makeMachine();
    const std::string path = anyPath();
    const json shown = row(command::showPaths, {"show", path});
    CDmpClaimManager library;
    CDmpDeviceClaimBase* owner = nullptr;
    unsigned int partnum = 0;
    RC_ASSERT(shown["claim"] == library.getClaimModule(owner, path));
    RC_ASSERT(shown["owner"].is_null() == (owner == nullptr));
    RC_ASSERT(shown["partition"] == library.isPartition(path));
    if (owner != nullptr)
        RC_ASSERT(shown["disk"] == library.removePartitionSuffix(path, partnum));
    RC_ASSERT(byName(row(command::explainPaths, {"explain", path})) == byName(shown));
    RC_ASSERT(byName(row(command::stripNumbers, {"strip", "-O", path})) == byName(shown));
}

RC_GTEST_FIXTURE_PROP(Contradictions, ListAndShowAgreeOnEveryDevice, ())
{
    makeMachine();
    for (const json& listed : rowsOf(command::listDevices, {"list", "-O"})) {
        const std::string path = listed["name"];
        RC_ASSERT(row(command::showPaths, {"show", "-O", path}) == listed);
        RC_ASSERT(row(command::listDevices, {"list", "-O", path}) == listed);
    }
}

RC_GTEST_FIXTURE_PROP(Contradictions, AppendAndTheLibraryNameAPartitionAlike, ())
{
    makeMachine();
    const std::string disk = anyPath();
    const auto partnum = *rc::gen::arbitrary<unsigned int>();
    const json appended =
        row(command::appendNumber, {"append", "-O", disk, std::to_string(partnum)});
    CDmpClaimManager library;
    CDmpDeviceClaimBase* owner = nullptr;
    if (library.getClaimModule(owner, disk) == CLAIM_NONE)
        RC_ASSERT(appended["name"].is_null());
    else
        RC_ASSERT(appended["name"] == library.appendPartitionSuffix(disk, partnum));
}

RC_GTEST_FIXTURE_PROP(Contradictions, AppendAndStripOfWhatExistsUndoEachOther, ())
{
    makeMachine();
    for (const json& listed : rowsOf(command::listDevices, {"list", "-O"})) {
        const std::string path = listed["name"];
        const json stripped = row(command::stripNumbers, {"strip", "--existing", "-O", path});
        if (stripped["partnum"].is_null()) {
            RC_ASSERT(stripped["disk"] == path);
            continue;
        }
        const std::string partnum = stripped["partnum"].dump();
        const json appended =
            row(command::appendNumber, {"append", "--existing", "-O", stripped["disk"], partnum});
        RC_ASSERT(appended["name"] == path);
    }
}

} // namespace
