#include "paths/paths.h"

#include <chrono>

#include <unistd.h>

#include "cli/answer_writer.h"
#include "cli/column_list.h"
#include "cli/complaint.h"
#include "cli/wanted_paths.h"
#include "interrupt/interrupt.h"
#include "interrupt/start_thread.h"
#include "paths/path_answer.h"
#include "paths/watch.h"
#include "providers/device/scsitool/dmp_nativepath_claim.h"

using koze_pdk_4_4::CZeTraceLogHandle;

namespace command {

namespace {

constexpr char usualColumns[] =
    "DEVICE,DRIVER,PATH,GROUP,STATE,USED,ADDRESS,SIZE,WWID,READS,WRITES";
constexpr char watchedColumns[] =
    "DEVICE,PATH,GROUP,STATE,USED,ADDRESS,RPS,WPS,RBPS,WBPS,CHANGE,TIME,WAS";
constexpr char footer[] =
    R"(A row for each path of each disk that the device-mapper's multipath, the
kernel's NVMe multipathing or, where it is installed, the KoVM volume manager
reaches through several paths. A PATH may be the disk, one of its partitions or
one of its paths; also a link, a kernel name such as dm-0, a number such as
254:0, or the name of a node of the volume manager.

USED says through which paths the next request goes. Only root may ask the
device-mapper for that, and which paths of a map have failed; for others these
states are 'unknown', but for paths that are offline. The kernel does not tell
which of several optimized NVMe paths it prefers: all of them are used.

With --watch, a terminal shows the paths again and again, what each does in a
second, and how and when it last changed; paths that are gone stay in view.
When the output is no terminal, each path that changes becomes a line of JSON.

Exit status:
   0  every disk has a used path, and none has lost one
  64  some have lost a path: it has failed or is offline
  32  some have no used path, or a PATH is no disk
   1  neither is so as far as is known, but not every state is

An interrupt (SIGINT, SIGTERM, SIGHUP, SIGQUIT) ends the volume manager's tool
that runs, and the command with status 130, 143, 129 or 131.)";

WantedDisks wantedDisks(const Options& options)
{
    WantedDisks wanted{{}, options.isGiven("--all")};
    if (options.paths.empty())
        return wanted;
    PathSource paths = wantedPaths(options, [] {});
    while (const std::optional<std::string> path = paths.next())
        wanted.given.push_back(*path);
    return wanted;
}

void complainOf(const DiskList& list)
{
    for (const std::string& note : list.notes)
        complain(note);
    if (list.disks.empty() && list.notes.empty())
        complain("no disk of this machine has several paths; to see all disks: dmpclaim paths -a");
}

void write(AnswerRows<PathAnswer>& rows, const DiskList& list)
{
    for (const DiskPaths& disk : list.disks) {
        const DiskFacts facts = factsOf(disk);
        for (const DiskPath& path : disk.paths)
            rows.write(pathAnswer(disk, facts, path));
    }
    rows.finish();
}

/// JSON has all columns, also in the lines that --watch writes.
Headings headings(const Options& options)
{
    const std::vector<Heading> all = headingsOf(pathColumns(true));
    if (!options.isGiven(watchOption))
        return {all, chosenColumns(usualColumns, {}, all), headingsOf(pathColumns(false))};
    const bool drawsTable = isatty(STDOUT_FILENO) == 1;
    return {all, drawsTable ? chosenColumns(watchedColumns, {}, all) : all, all};
}

VolumeManager volumeManager(const CZeTraceLogHandle& log, StopRequest& stop)
{
    CKoDMPSupport support;
    support.registerTraceLog(log);
    if (!support.isKoDMPInstalled())
        return {};
    return {[log, &stop](const std::string& path) { return askAboutDisk(path, log, stop, false); },
            [log, &stop](const std::string& node) { return askAboutNode(node, log, stop); }};
}

/// Reads the disks in a thread of its own: the main thread must start no tools, see Interrupt.
DiskList readInThread(const PathSources& sources, const WantedDisks& wanted)
{
    DiskList list;
    runInThread([&] { list = readDisks(sources, wanted); });
    return list;
}

/// Shows readings until a signal comes, or nobody reads any more. Returns the last one's status.
int watch(const Options& options, OutputStream& output, const PathSources& sources,
          const WantedDisks& wanted, std::chrono::milliseconds interval)
{
    WatchOutput shown(options, output);
    for (;;) {
        const DiskList list = readInThread(sources, wanted);
        shown.show(list, Moment());
        if (!output.wait(interval))
            return list.exitStatus();
    }
}

int run(const Options& options, OutputStream& output)
{
    const CZeTraceLogHandle log = openTraceLog(options.trace);
    const KernelRoots roots;
    const DeviceMapper mapper;
    StopRequest stop;
    return listPaths(options, output, {roots, std::ref(mapper), volumeManager(log, stop)}, stop);
}

} // namespace

int listPaths(const Options& options, OutputStream& output, const PathSources& sources,
              StopRequest& stop)
{
    const std::optional<std::chrono::milliseconds> interval = watchInterval(options);
    const WantedDisks wanted = wantedDisks(options);
    Interrupt interrupt(stop, [&output] { output.end(); });
    interrupt.skipPatience();
    try {
        if (interval)
            return watch(options, output, sources, wanted, *interval);
        // Before the reading: an interrupt closes a JSON document that has begun.
        AnswerRows<PathAnswer> rows(options, output, "paths", pathColumns(true));
        const DiskList list = readInThread(sources, wanted);
        complainOf(list);
        write(rows, list);
        return list.exitStatus();
    } catch (const Interrupted&) {
        interrupt.finish(); // The signal thread exits the process.
        return 0;
    }
}

Subcommand pathsSubcommand()
{
    return {"paths",
            "Show the paths of multipathed disks",
            footer,
            Arguments::optionalPaths,
            {{"-a,--all", nullptr, "Show disks of one path, too"},
             {"-w{2},--watch{2}", "[=SECONDS]",
              "Show the paths every 2 or SECONDS seconds, or on a "
              "pipe the changes; '-w 0.5' will do, too"}},
            Form::table,
            headings,
            run,
            {{"paths -o PATH,STATE,USED /dev/mapper/mpatha", "which paths of a map are used"},
             {"paths --watch", "a failover as it happens"}}};
}

} // namespace command
