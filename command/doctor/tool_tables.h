#ifndef DOCTOR_TOOL_TABLES_H
#define DOCTOR_TOOL_TABLES_H

#include <string>
#include <vector>

namespace command {

/// What a lookup of the library takes from the answer of the volume manager's tool.
///
///     answer = header rule row*                  the header holds NAME, the rule anything
///     row    = [name [state [type column*]]]     sdc     ENABLED(A)    PRIMARY      c2
struct TableReading {
    const char* fault = nullptr; // why the answer is no such table; null when it is
    std::string name;            // of a node or a path; empty when none is found
    bool isEnabled = false;      // of a path; the library may choose another one for want of any
};

/// Reads what getdmpnode answers.
TableReading readNode(const std::vector<std::string>& lines);

/// Reads what getsubpaths answers.
TableReading readPath(const std::vector<std::string>& lines);

} // namespace command

#endif
