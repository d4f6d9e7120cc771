#ifndef SIMULATOR_REPLAY_H
#define SIMULATOR_REPLAY_H

#include <map>
#include <string>
#include <vector>

#include "command.h"
#include "fields.h"

namespace simulator {

/// A recorded answer of a real tool.
struct Record {
    Command command;
    int result;
    std::vector<std::string> output;
};

/// How often each recorded command has been replayed.
using Replayed = std::map<std::string, unsigned>;

/// Reads one element of "commands": {"command": LINE, "status": NUMBER, "output": [LINE...]}. The
/// command line is split at runs of spaces. Other fields are ignored. Throws an Error.
Record readRecord(Fields fields);

/// Answers with the record of exactly this command. Several records of one command are used in
/// turn, the last one again and again. A command without a record, or whose ending cannot be
/// repeated, is answered with status 70 and a message.
Answer replay(const std::vector<Record>& records, Replayed& replayed, const Command& command);

} // namespace simulator

#endif
