#ifndef TESTS_COMMAND_ANSWER_JSON_H
#define TESTS_COMMAND_ANSWER_JSON_H

#include "output/columns.h"
#include "output/json_output.h"
#include "tests/support/json.h"

/// A document as the command prints it, parsed.
Json parsed(const command::Document& document);

/// All columns of an answer.
template <class Answer>
Json answerJson(const Answer& answer, const command::Columns<Answer>& columns)
{
    command::Document::Record record;
    for (const command::Column<Answer>& column : columns)
        record.emplace_back(column.heading.key(), column.value(answer));
    return parsed(record);
}

#endif
