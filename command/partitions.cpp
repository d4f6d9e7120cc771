#include "partitions.h"

#include <utility>

#include "cli/answer_writer.h"
#include "cli/column_list.h"
#include "cli/complaint.h"
#include "cli/wanted_paths.h"
#include "library.h"
#include "names/device_answer.h"
#include "whole_output.h"

namespace command {

namespace {

constexpr char existing[] = "--existing";
constexpr char appendFooter[] =
    R"(The answer follows the naming rule of the disk's driver. When it does not exist,
or the library reads it as something else, a warning goes to standard error.
With --existing it is the node that the kernel has; status 64: there is none.

Answers are printed bare, a line each: an empty line when there is none. On a
terminal, unprintable bytes become \xNN. With -o they come as a table.)";
constexpr char stripFooter[] =
    R"(The answer is what the name tells, whole disks included. When it does not exist,
or does not lead back, a warning goes to standard error. With --existing it is
the disk and number that the kernel has; status 64: there is no such device.

Answers are printed bare, a line each: an empty line when there is none. On a
terminal, unprintable bytes become \xNN. With -o they come as a table.)";

/// Complains of what the kernel does not have, and remembers it for the exit status.
class Missing {
public:
    void add(const std::string& text)
    {
        complain(text);
        m_any = true;
    }

    int exitStatus() const { return m_any ? 64 : 0; }

private:
    bool m_any = false;
};

std::string quoted(const std::string& path)
{
    return "'" + path + "'";
}

/// "partition 1 of '/dev/sda'"
std::string partitionText(unsigned int number, const std::string& disk)
{
    return "partition " + std::to_string(number) + " of " + quoted(disk);
}

bool hasNode(const Machine& machine, const std::string& path)
{
    return machine.nodeAt(path).kind() == FileKind::blockDevice;
}

/// The partition that the kernel has; null when there is none.
const BlockDevice* partitionOf(const Machine& machine, const std::string& disk, unsigned int number)
{
    const BlockDevice* device = machine.find(disk);
    if (device == nullptr)
        return nullptr;
    for (const BlockDevice* partition : machine.inventory().partitionsOf(*device)) {
        if (partition->partnum() == number)
            return partition;
    }
    return nullptr;
}

/// Warns of a partition's name that does not exist.
void warnOfMissing(const PartitionAnswer& answer, const Machine& machine)
{
    if (hasNode(machine, *answer.name))
        return;
    std::string text = quoted(*answer.name) + " does not exist on this machine";
    if (const BlockDevice* real = partitionOf(machine, answer.disk, answer.partnum))
        text += "; " + partitionText(answer.partnum, answer.disk) + " is " + quoted(real->path()) +
                ", which --existing prints";
    complain(text);
}

/// Warns of a partition's name that the library reads as something else. A name that it reads as a
/// partition of another disk has a number.
void warnOfReading(const PartitionAnswer& answer, CDmpClaimManager& manager)
{
    const DeviceAnswer read = deviceAnswer(manager, *answer.name);
    if (read.isPartition && read.disk == answer.disk)
        return;
    const std::string what =
        read.isPartition ? partitionText(read.partnum.value(), *read.disk) : "a whole disk";
    complain("the library reads " + quoted(*answer.name) + " as " + what + ", not as " +
             partitionText(answer.partnum, answer.disk));
}

/// Replaces the partition that the naming rule tells by the kernel's.
void useExisting(PartitionAnswer& answer, const Machine& machine, Missing& missing)
{
    const std::optional<std::string> byRule = std::exchange(answer.name, std::nullopt);
    const BlockDevice* partition = partitionOf(machine, answer.disk, answer.partnum);
    if (partition == nullptr)
        missing.add("the kernel has no " + partitionText(answer.partnum, answer.disk));
    else if (!hasNode(machine, partition->path()))
        missing.add(partitionText(answer.partnum, answer.disk) + " has no node at " +
                    quoted(partition->path()));
    else
        answer.name = partition->path();
    if (answer.name && byRule && answer.name != byRule)
        complain("the naming rule would say " + quoted(*byRule) + " for " + quoted(*answer.name));
}

/// Warns when the disk that the name tells does not exist, or calls its partition by another name.
void warnOfDisk(const DeviceAnswer& answer, CDmpClaimManager& manager, const Machine& machine)
{
    if (!hasNode(machine, *answer.disk))
        complain(quoted(*answer.disk) + " does not exist on this machine");
    if (!answer.partnum)
        return;
    const std::string back = manager.appendPartitionSuffix(*answer.disk, *answer.partnum);
    if (back != answer.name)
        complain(partitionText(*answer.partnum, *answer.disk) + " would be " + quoted(back) +
                 ", not " + quoted(answer.name));
}

/// Replaces disk and number that the name tells by the kernel's.
void useExisting(DeviceAnswer& answer, const Machine& machine, Missing& missing)
{
    const std::optional<std::string> byName = std::exchange(answer.disk, std::nullopt);
    answer.partnum.reset();
    const BlockDevice* device = machine.find(answer.name);
    answer.isPartition = device != nullptr && device->partnum().has_value();
    if (device == nullptr) {
        missing.add(quoted(answer.name) + " is no block device of this machine");
        return;
    }
    const BlockDevice* parent = machine.inventory().parentOf(*device);
    answer.partnum = device->partnum();
    answer.disk = parent == nullptr ? device->path() : parent->path();
    if (byName && answer.disk != byName)
        complain("by its name " + quoted(answer.name) + " would be on " + quoted(*byName));
}

/// Writes what `answerTo` says of each path. Returns the exit status.
template <class Answer, class AnswerTo>
int answerEach(const Options& options, OutputStream& output, const char* array,
               const Columns<Answer>& columns, AnswerTo answerTo)
{
    const WholeOutput whole(options, output);
    Library library(options.trace);
    AnswerWriter<Answer> writer(options, output, array, columns);
    Missing missing;
    PathSource paths = wantedPaths(options, [&] { output.flush(); });
    while (const std::optional<std::string> path = paths.next())
        writer.write(answerTo(library.manager, *path, missing));
    const int status = writer.finish();
    return options.isGiven(existing) ? missing.exitStatus() : status;
}

Headings appendHeadings(const Options& /*options*/)
{
    return headingsFor(partitionColumns(), "NAME");
}

Headings stripHeadings(const Options& /*options*/)
{
    const std::vector<Heading> names = headingsOf(nameColumns());
    return {headingsOf(deviceColumns()), chosenColumns("DISK", {}, names), names};
}

int runAppend(const Options& options, OutputStream& output)
{
    return appendNumber(options, output, Machine());
}

int runStrip(const Options& options, OutputStream& output)
{
    return stripNumbers(options, output, Machine());
}

} // namespace

int appendNumber(const Options& options, OutputStream& output, const Machine& machine)
{
    CDmpClaimManager untraced; // the trace holds what the user asked for, and no checks
    const auto answerTo = [&](CDmpClaimManager& manager, const std::string& disk,
                              Missing& missing) {
        PartitionAnswer answer = partitionAnswer(manager, disk, options.partnum);
        if (options.isGiven(existing)) {
            useExisting(answer, machine, missing);
        } else if (answer.name) {
            warnOfMissing(answer, machine);
            warnOfReading(answer, untraced);
        }
        return answer;
    };
    return answerEach(options, output, "partitions", partitionColumns(), answerTo);
}

int stripNumbers(const Options& options, OutputStream& output, const Machine& machine)
{
    CDmpClaimManager untraced; // the trace holds what the user asked for, and no checks
    const auto answerTo = [&](CDmpClaimManager& manager, const std::string& path,
                              Missing& missing) {
        DeviceAnswer answer = deviceAnswer(manager, path, DeviceLookup(machine));
        if (options.isGiven(existing))
            useExisting(answer, machine, missing);
        else if (answer.disk)
            warnOfDisk(answer, untraced, machine);
        return answer;
    };
    return answerEach(options, output, "disks", deviceColumns(), answerTo);
}

Subcommand appendSubcommand()
{
    return {"append",
            "Print the path of a partition of a disk",
            appendFooter,
            Arguments::diskAndNumber,
            {{existing, nullptr, "Print the node that the kernel has for the partition"}},
            Form::bare,
            appendHeadings,
            runAppend,
            {{"append /dev/mapper/mpathb 2", "the name of partition 2"},
             {"append --existing /dev/mapper/mpathb 2", "the node that is partition 2 here"}}};
}

Subcommand stripSubcommand()
{
    return {"strip",
            "Print the paths of the disks that hold partitions",
            stripFooter,
            Arguments::paths,
            {{existing, nullptr, "Print the disk that the kernel has for the partition"}},
            Form::bare,
            stripHeadings,
            runStrip,
            {{"strip /dev/mapper/mpathbp2", "the disk that the name tells"},
             {"strip --existing -o +PARTNUM /dev/mapper/mpathb-part2",
              "the disk and number of a node"}}};
}

} // namespace command
