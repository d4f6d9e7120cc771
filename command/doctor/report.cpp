#include "doctor/report.h"

#include <ctime>
#include <string>
#include <utility>

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
                            {"node", disk.node.empty() ? Field() : Field(disk.node)},
                            {"paths", Document::list(disk.paths, pathDocument)}};
}

Document commandDocument(const AskedCommand& command)
{
    return Document::Record{{"command", command.command},
                            {"status", command.status},
                            {"output", Document::list(command.output)}};
}

/// The rest of a document that is cut short after a name.
std::string endAfterNames(JsonText document)
{
    document.clear();
    document.endList();
    document.addMember("interrupted", Field(true));
    for (const char* key : {"maps", "disks", "commands", "findings", "trace"})
        document.addMember(key, Document(Document::List()));
    document.endRecord();
    document.endLine();
    return document.text();
}

} // namespace

ReportWriter::ReportWriter(OutputStream& output, const std::vector<Module>& modules)
    : m_output(output)
{
    m_json.beginRecord();
    m_json.addMember("schema", Field(std::int64_t{1}));
    m_json.addMember("recorded", Field(now()));
    m_json.addMember("versions", versions());
    m_json.addMember("modules", Document::list(modules, moduleDocument));
    m_json.key("names");
    m_json.beginList();
}

void ReportWriter::addName(const Explanation& name)
{
    m_json.add(explanationRecord(name));
    if (!std::exchange(m_hasNames, true))
        m_output.write({}, endAfterNames(m_json));
    handOver();
}

void ReportWriter::finish(const Report& report, const std::vector<Finding>& findings)
{
    m_output.write({}, {});
    m_json.endList();
    m_json.addMember("interrupted", Field(report.end != StopReason::none));
    addList("maps", report.maps, mapDocument);
    addList("disks", report.disks, diskDocument);
    addList("commands", report.commands, commandDocument);
    addList("findings", findings, findingDocument);
    addList("trace", report.trace, [](const Document& line) { return line; });
    m_json.endRecord();
    m_json.endLine();
    handOver();
}

/// Each element goes out before the next one is made.
template <class Values, class DocumentOf>
void ReportWriter::addList(const char* key, const Values& values, DocumentOf documentOf)
{
    m_json.key(key);
    m_json.beginList();
    for (const auto& value : values) {
        m_json.add(documentOf(value));
        handOver();
    }
    m_json.endList();
}

void ReportWriter::handOver()
{
    m_output.write(m_json.text());
    m_json.clear();
}

} // namespace command
