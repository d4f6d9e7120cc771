#ifndef TESTS_COMMAND_ANSWER_JSON_H
#define TESTS_COMMAND_ANSWER_JSON_H

#include <nlohmann/json.hpp>

#include "output/columns.h"
#include "output/json_output.h"

/// A document as the command prints it, parsed.
inline nlohmann::ordered_json parsed(const command::Document& document)
{
    return nlohmann::ordered_json::parse(command::jsonLine(document));
}

/// All columns of an answer.
template <class Answer>
nlohmann::ordered_json answerJson(const Answer& answer, const command::Columns<Answer>& columns)
{
    command::Document::Record record;
    for (const command::Column<Answer>& column : columns)
        record.emplace_back(column.heading.key(), column.value(answer));
    return parsed(record);
}

#endif
