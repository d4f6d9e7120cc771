#ifndef DOCTOR_REPORT_H
#define DOCTOR_REPORT_H

#include <chrono>
#include <string>
#include <utility>
#include <vector>

#include "doctor/finding.h"
#include "doctor/multipath_disk.h"
#include "interrupt/stop_request.h"
#include "multipath/disk_question.h"
#include "names/explanation.h"
#include "output/document.h"
#include "output/json_text.h"
#include "output/output_stream.h"

namespace command {

/// What doctor learned besides its findings. Maps, commands and trace are for the document that a
/// support engineer asks for; they are empty when none is made.
struct Report {
    std::vector<MultipathDisk> disks;
    StopReason end = StopReason::none;                     // why the examination ended early
    std::chrono::duration<double> duration{};              // of the examination
    std::vector<std::pair<std::string, std::string>> maps; // name and uuid
    std::vector<AskedCommand> commands;                    // the simulator replays them
    Document::List trace;
};

/// Writes what a support engineer asks for as a JSON document. Names go out as they come: a machine
/// may have 100,000. Throws what OutputStream throws. When the examination throws, the end of the
/// output makes the document whole, and says that it is cut short.
class ReportWriter {
public:
    /// `modules` are in the order in which they are asked.
    ReportWriter(OutputStream& output, const std::vector<Module>& modules);

    void addName(const Explanation& name);

    /// Called once, after the last name.
    void finish(const Report& report, const std::vector<Finding>& findings);

private:
    template <class Values, class DocumentOf>
    void addList(const char* key, const Values& values, DocumentOf documentOf);
    void handOver();

    OutputStream& m_output;
    JsonText m_json{JsonText::Layout::indented};
    bool m_hasNames = false;
};

} // namespace command

#endif
