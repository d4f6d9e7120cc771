#include "commands.h"

#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

#include "active.h"
#include "bare_output.h"
#include "block_devices.h"
#include "complaint.h"
#include "device_row.h"
#include "doctor/doctor.h"
#include "drivers.h"
#include "dry_run.h"
#include "explanation.h"
#include "explanation_output.h"
#include "json_output.h"
#include "raw_output.h"
#include "table_output.h"
#include "tool_name.h"
#include "trace.h"
#include "usage_error.h"
#include "wanted_paths.h"

using namespace command;

namespace {

const char* jsonArray(const Options& options)
{
    switch (options.subcommand) {
    case Subcommand::explain:
        return "explanations";
    case Subcommand::append:
        return "partitions";
    case Subcommand::strip:
        return "disks";
    case Subcommand::prefixes:
        return "prefixes";
    case Subcommand::active:
        return options.dryRun ? "commands" : "paths";
    default:
        return "devices";
    }
}

std::unique_ptr<RowWriter> makeWriter(const Options& options, OutputStream& output)
{
    switch (options.form) {
    case Form::json:
        return std::make_unique<JsonOutput>(output, jsonArray(options), options.columns);
    case Form::raw:
        return std::make_unique<RawOutput>(output, options.columns, options.withHeadings);
    case Form::bare:
        return std::make_unique<BareOutput>(output, options.columns.front());
    case Form::text:
        return std::make_unique<ExplanationOutput>(output);
    default:
        return std::make_unique<TableOutput>(output, options.columns, options.withHeadings);
    }
}

/// Counts answers for the exit status.
class Tally {
public:
    void count(bool isClaimed) { ++(isClaimed ? m_claimed : m_unclaimed); }
    void countWarning() { ++m_warnings; }

    int exitStatus() const
    {
        if (m_warnings > 0)
            return 1;
        if (m_unclaimed == 0)
            return 0;
        return m_claimed == 0 ? 32 : 64;
    }

private:
    std::size_t m_claimed = 0;
    std::size_t m_unclaimed = 0;
    std::size_t m_warnings = 0;
};

/// One run of the command.
class Run {
public:
    Run(const Options& options, OutputStream& output)
        : m_options(options), m_output(output), m_log(openTraceLog(options.trace)),
          m_modules(makeModules(m_log)), m_writer(makeWriter(options, output))
    {
        m_manager.registerTraceLog(m_log);
    }

    int run()
    {
        switch (m_options.subcommand) {
        case Subcommand::list:
            list();
            break;
        case Subcommand::append:
            write(partitionRow(m_manager, m_options.paths.front(), m_options.partnum));
            break;
        case Subcommand::prefixes:
            prefixes();
            break;
        case Subcommand::active:
            active();
            break;
        default:
            answerPaths();
        }
        m_writer->finish();
        m_output.flush();
        return m_tally.exitStatus();
    }

private:
    void write(const Row& row)
    {
        m_tally.count(!row["owner"].is_null());
        m_writer->write(row);
    }

    void list()
    {
        constexpr char sysfsBlock[] = "/sys/class/block";
        std::error_code error;
        const std::filesystem::directory_iterator readable(sysfsBlock, error);
        if (error)
            throw std::system_error(error, std::string("cannot read ") + sysfsBlock);
        for (const std::string& path : blockDevices(sysfsBlock, "/dev"))
            write(deviceRow(m_manager, path));
    }

    void active()
    {
        rejectMisreadNames();
        if (m_options.dryRun)
            showCommands();
        else
            lookUpActivePaths(m_options, {[this](const Row& row) { writeActive(row); },
                                          [this] {
                                              m_writer->flush();
                                              m_output.flush();
                                          }});
    }

    /// Those among the arguments. Standard input is not read ahead: its names get warnings.
    void rejectMisreadNames() const
    {
        CDmpClaimManager manager; // without the user's trace log
        for (const std::string& path : m_options.paths) {
            CDmpDeviceClaimBase* owner = nullptr;
            manager.getClaimModule(owner, path);
            const char* reason = asksTools(owner) ? whyNotAsked(path) : nullptr;
            if (reason != nullptr)
                throw UsageError("'" + path + "' cannot be looked up: " + reason, "active");
        }
    }

    void writeActive(const Row& row)
    {
        write(row);
        if (row["warning"].is_null())
            return;
        complain(row["name"].get<std::string>() + ": " + row["warning"].get<std::string>());
        m_tally.countWarning();
    }

    void showCommands()
    {
        PathSource paths = wantedPaths(m_options, [this] { m_output.flush(); });
        while (const std::optional<std::string> path = paths.next()) {
            for (const Row& row : dryRun(m_manager, *path, m_options.refresh))
                write(row);
        }
    }

    void answerPaths()
    {
        PathSource paths = wantedPaths(m_options, [this] { m_output.flush(); });
        const bool explains = m_options.subcommand == Subcommand::explain;
        while (const std::optional<std::string> path = paths.next())
            write(explains ? explanation(m_manager, m_modules, *path)
                           : deviceRow(m_manager, *path));
    }

    void prefixes()
    {
        for (const std::string& prefix : m_manager.getDeviceClaimStrings())
            write(prefixRow(m_modules, prefix));
    }

    const Options& m_options;
    OutputStream& m_output;
    koze_pdk_4_4::CZeTraceLogHandle m_log;
    CDmpClaimManager m_manager;
    std::vector<std::unique_ptr<CDmpDeviceClaimBase>> m_modules;
    std::unique_ptr<RowWriter> m_writer;
    Tally m_tally;
};

} // namespace

namespace command {

int runCommand(const Options& options, OutputStream& output)
{
    if (options.subcommand == Subcommand::doctor)
        return runDoctor(options, output);
    return Run(options, output).run();
}

} // namespace command
