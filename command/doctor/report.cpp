#include "doctor/report.h"

#include <ctime>
#include <string>

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

Document mapDocument(const KernelMap& map)
{
    return Document::Record{{"name", map.name}, {"uuid", map.uuid}};
}

Document commandDocument(const AskedCommand& command)
{
    return Document::Record{{"command", command.command},
                            {"status", command.status},
                            {"output", Document::list(command.output)}};
}

} // namespace

Document reportDocument(const Report& report)
{
    return Document::Record{{"schema", 1},
                            {"recorded", now()},
                            {"versions", versions()},
                            {"modules", Document::list(report.modules, moduleDocument)},
                            {"names", Document::list(report.names, explanationRecord)},
                            {"maps", Document::list(report.maps, mapDocument)},
                            {"commands", Document::list(report.commands, commandDocument)},
                            {"findings", report.findings},
                            {"trace", report.trace}};
}

} // namespace command
