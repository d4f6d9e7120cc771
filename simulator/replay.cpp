#include "replay.h"

#include <algorithm>
#include <sstream>

#include "endings.h"

namespace simulator {

namespace {

constexpr int cannotReplay = 70;

/// Splits at runs of spaces only, as the command runner splits command lines.
Command splitCommand(const std::string& line)
{
    Command command;
    std::istringstream words(line);
    for (std::string word; std::getline(words, word, ' ');) {
        if (!word.empty())
            command.arguments.push_back(word);
    }
    if (command.arguments.empty())
        return command;
    command.program = command.arguments.front();
    command.program.erase(0, command.program.rfind('/') + 1);
    command.arguments.erase(command.arguments.begin());
    return command;
}

std::string commandLine(const Command& command)
{
    std::string line = command.program;
    for (const std::string& argument : command.arguments)
        line += " " + argument;
    return line;
}

} // namespace

Record readRecord(Fields fields)
{
    Record record{splitCommand(fields.text("command")), 0, {}};
    record.result = static_cast<int>(fields.number("status"));
    const Json* output = fields.find("output");
    if (output == nullptr || !output->is_array())
        fields.refuse("output", "is not an array of lines");
    for (const Json& line : *output) {
        if (!line.is_string())
            fields.refuse("output", "holds something else than lines");
        record.output.push_back(line);
    }
    return record;
}

Answer replay(const std::vector<Record>& records, Replayed& replayed, const Command& command)
{
    std::vector<const Record*> matching;
    for (const Record& record : records) {
        if (record.command == command)
            matching.push_back(&record);
    }
    const std::string line = commandLine(command);
    if (matching.empty())
        return {cannotReplay, {}, "unexpected command, not among the recorded: " + line};
    const Record& record = *matching[std::min<std::size_t>(replayed[line]++, matching.size() - 1)];
    if (!endingOf(record.result).ends())
        return {
            cannotReplay, {}, "status " + std::to_string(record.result) + " cannot be replayed"};
    return {record.result, record.output, ""};
}

} // namespace simulator
