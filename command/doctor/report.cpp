#include "doctor/report.h"

#include <ctime>
#include <string>

#include "doctor/finding_output.h"
#include "doctor/versions.h"

namespace command {

namespace {

/// Local time with its zone:  2026-11-21T16:05:07+0100
std::string now()
{
    const std::time_t time = std::time(nullptr);
    std::tm local{};
    localtime_r(&time, &local);
    char text[64];
    return {text, std::strftime(text, sizeof text, "%FT%T%z", &local)};
}

Document moduleDocument(const Module& module)
{
    return Document::Record{{"module", module.driver->name},
                            {"prefixes", Document::list(module.claims->getDeviceClaimStrings())}};
}

Document mapDocument(const std::pair<std::string, std::string>& map)
{
    return Document::Record{{"name", map.first}, {"uuid", map.second}};
}

Document pathDocument(const ExaminedPath& path)
{
    return Document::Record{
        {"name", path.name}, {"state", pathStateName(path.state)}, {"used", path.isUsed}};
}

Document diskDocument(const MultipathDisk& disk)
{
    return Document::Record{{"device", disk.device},
                            {"driver", disk.driver},
                            {"paths", Document::list(disk.paths, pathDocument)}};
}

Document commandDocument(const AskedCommand& command)
{
    return Document::Record{{"command", command.command},
                            {"status", command.status},
                            {"output", Document::list(command.output)}};
}

} // namespace

Document reportDocument(const Report& report, const std::vector<Module>& modules,
                        const std::vector<Finding>& findings)
{
    return Document::Record{{"schema", 1},
                            {"recorded", now()},
                            {"interrupted", report.end != StopReason::none},
                            {"versions", versions()},
                            {"modules", Document::list(modules, moduleDocument)},
                            {"names", Document::list(report.names, explanationRecord)},
                            {"maps", Document::list(report.maps, mapDocument)},
                            {"disks", Document::list(report.disks, diskDocument)},
                            {"commands", Document::list(report.commands, commandDocument)},
                            {"findings", Document::list(findings, findingDocument)},
                            {"trace", report.trace}};
}

} // namespace command
