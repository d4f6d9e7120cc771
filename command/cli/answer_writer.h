#ifndef CLI_ANSWER_WRITER_H
#define CLI_ANSWER_WRITER_H

#include <memory>

#include "cli/options.h"
#include "cli/tally.h"
#include "output/make_row_writer.h"

namespace command {

/// Writes answers as rows, in the form and with the columns that the user chose.
template <class Answer>
class AnswerRows {
public:
    /// `array` names the answers in JSON; `all` are the columns to choose from.
    AnswerRows(const Options& options, OutputStream& output, const char* array,
               const Columns<Answer>& all)
        : m_output(output), m_columns(columnsUnder(options.columns, all)),
          m_writer(
              makeRowWriter(options.form, output, array, options.columns, options.withHeadings))
    {}

    void write(const Answer& answer)
    {
        Row row;
        row.reserve(m_columns.size());
        for (const Column<Answer>& column : m_columns)
            row.push_back(column.value(answer));
        m_writer->write(row);
    }

    /// Hands on what has been written so far, as far as the form allows.
    void flush()
    {
        m_writer->flush();
        m_output.flush();
    }

    /// Writes what is held back.
    void finish()
    {
        m_writer->finish();
        m_output.flush();
    }

    /// Writes what is held back when an interrupt left rows out: a JSON document says so. Gives up
    /// when the output takes no more.
    void endEarly()
    {
        m_writer->flush();
        m_output.end();
    }

private:
    OutputStream& m_output;
    Columns<Answer> m_columns;
    std::unique_ptr<RowWriter> m_writer;
};

/// The same for answers about paths that a driver may own, which it counts.
template <class Answer>
class AnswerWriter {
public:
    AnswerWriter(const Options& options, OutputStream& output, const char* array,
                 const Columns<Answer>& all)
        : m_rows(options, output, array, all)
    {}

    void write(const Answer& answer)
    {
        m_tally.count(answer.owner != nullptr);
        m_rows.write(answer);
    }

    void flush() { m_rows.flush(); }
    void endEarly() { m_rows.endEarly(); }

    /// Writes what is held back. Returns the exit status.
    int finish()
    {
        m_rows.finish();
        return m_tally.exitStatus();
    }

private:
    AnswerRows<Answer> m_rows;
    Tally m_tally;
};

} // namespace command

#endif
