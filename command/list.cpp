#include "list.h"

#include <algorithm>
#include <system_error>

#include "cli/answer_writer.h"
#include "cli/column_list.h"
#include "cli/complaint.h"
#include "cli/usage_error.h"
#include "cli/wanted_paths.h"
#include "library.h"
#include "names/device_answer.h"
#include "text/word_list.h"
#include "whole_output.h"

namespace command {

namespace {

using Words = std::vector<std::string>;

constexpr char usualColumns[] = "NAME,KNAME,KIND,SIZE,OWNER,AGREES,DISK,PARTNUM,MEMBEROF";
constexpr char nobody[] = "none";
constexpr char footer[] =
    R"(OWNER, CLAIM, PARTITION, DISK and PARTNUM are told from the name alone, the
other columns by the kernel. AGREES is 'no' where the two differ; for a path of
a multipath map they do, since the map owns it. 'dmpclaim explain' tells more.
Loop, RAM and zram devices that are not in use are left out, and the paths of
NVMe multipathing, which have no node.

Ends with 0 when the list could be made, also without a row; when PATHs are
given that are no block devices, with 64 for some and 32 for all.)";

bool holds(const Words& words, const std::string& word)
{
    return std::find(words.begin(), words.end(), word) != words.end();
}

/// The words of an option's list, each of which is one of `known`; none when it is not given.
Words wordsOf(const Options& options, const char* option, const Words& known)
{
    const std::optional<std::string> list = options.value(option);
    Words words = list ? splitAtCommas(*list) : Words();
    for (const std::string& word : words) {
        if (!holds(known, word))
            throw UsageError(std::string(option) + " knows no '" + word + "'; there are " +
                             joined(known));
    }
    return words;
}

Words ownerNames()
{
    Words names;
    for (const Driver& driver : drivers())
        names.emplace_back(driver.name);
    names.emplace_back(nobody);
    return names;
}

/// Which devices the user wants to see.
class Filter {
public:
    explicit Filter(const Options& options)
        : m_owners(wordsOf(options, "--owner", ownerNames())),
          m_kinds(wordsOf(options, "--kind", kindNames())), m_withUnused(options.isGiven("--all"))
    {}

    bool wantsUse(const BlockDevice& device) const
    {
        return m_withUnused || (device.isInUse() && device.kind() != DeviceKind::nvmePath);
    }

    bool wantsKind(const BlockDevice& device) const
    {
        return m_kinds.empty() || holds(m_kinds, kindName(device.kind()));
    }

    bool wantsOwner(const DeviceAnswer& answer) const
    {
        return m_owners.empty() ||
               holds(m_owners, answer.owner == nullptr ? nobody : answer.owner->name);
    }

private:
    Words m_owners;
    Words m_kinds;
    bool m_withUnused;
};

class List {
public:
    List(const Options& options, OutputStream& output, const Machine& machine)
        : m_options(options), m_machine(machine), m_filter(options), m_library(options.trace),
          m_writer(options, output, "devices", deviceColumns())
    {}

    int writeAll()
    {
        for (const BlockDevice& device : m_machine.inventory().devices()) {
            if (m_filter.wantsUse(device))
                write(device, "");
        }
        m_writer.finish();
        return 0;
    }

    int writeGiven()
    {
        Tally tally;
        PathSource paths = wantedPaths(m_options, [&] { m_writer.flush(); });
        while (const std::optional<std::string> path = paths.next()) {
            const BlockDevice* device = m_machine.find(*path);
            tally.count(device != nullptr);
            if (device == nullptr)
                complain("'" + *path + "' is no block device of this machine");
            else
                write(*device, *path);
        }
        m_writer.finish();
        return tally.exitStatus();
    }

private:
    /// `given` is the PATH that led to the device; empty when all devices are listed.
    void write(const BlockDevice& device, const std::string& given)
    {
        if (!m_filter.wantsKind(device))
            return;
        DeviceAnswer answer =
            deviceAnswer(m_library.manager, device.path(), DeviceLookup(m_machine, device));
        answer.given = given;
        if (m_filter.wantsOwner(answer))
            m_writer.write(answer);
    }

    const Options& m_options;
    const Machine& m_machine;
    const Filter m_filter;
    Library m_library;
    AnswerWriter<DeviceAnswer> m_writer;
};

Headings headings(const Options& /*options*/)
{
    return headingsFor(deviceColumns(), usualColumns);
}

int run(const Options& options, OutputStream& output)
{
    return listDevices(options, output, Machine());
}

} // namespace

int listDevices(const Options& options, OutputStream& output, const Machine& machine)
{
    if (const std::error_code error = machine.inventory().error())
        throw std::system_error(error, "cannot read " + machine.roots().blockFolder());
    const WholeOutput whole(options, output);
    List list(options, output, machine);
    return options.paths.empty() ? list.writeAll() : list.writeGiven();
}

Subcommand listSubcommand()
{
    return {"list",
            "Show this machine's block devices",
            footer,
            Arguments::optionalPaths,
            {{"--all", nullptr, "Leave no device out"},
             {"--owner", " LIST", "Show only devices of these owners: " + joined(ownerNames())},
             {"--kind", " LIST", "Show only devices of these kinds: " + joined(kindNames())}},
            Form::table,
            headings,
            run,
            {{"list --kind multipath,crypt", "the maps of multipath disks, and encrypted disks"},
             {"list /dev/disk/by-id/wwn-0x5000c500a1b2c3d4", "the device behind a link"}}};
}

} // namespace command
