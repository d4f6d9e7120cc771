#include "json_output.h"

namespace command {

std::string jsonText(const Row& document)
{
    const auto replace = nlohmann::ordered_json::error_handler_t::replace;
    return document.dump(2, ' ', true, replace) + '\n';
}

JsonOutput::JsonOutput(OutputStream& output, const char* array, std::vector<Column> columns)
    : m_output(output), m_array(array), m_columns(std::move(columns)),
      m_document({{"schema", 1}, {array, Row::array()}})
{}

void JsonOutput::write(const Row& row)
{
    Row& written = m_document[m_array].emplace_back(m_columns.empty() ? row : Row::object());
    for (const Column& column : m_columns)
        written[column.key] = row.at(column.key);
}

void JsonOutput::finish()
{
    m_output.write(jsonText(m_document));
}

} // namespace command
