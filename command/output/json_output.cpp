#include "output/json_output.h"

#include <utility>

namespace command {

namespace {

/// The rest of a document whose array is open.
std::string endOf(JsonText document, bool isInterrupted)
{
    document.endList();
    if (isInterrupted)
        document.addMember("interrupted", Field(true));
    document.endRecord();
    document.endLine();
    return document.text();
}

} // namespace

JsonOutput::JsonOutput(OutputStream& output, const char* array,
                       const std::vector<Heading>& headings, JsonText::Layout layout)
    : m_output(output), m_text(layout), m_isDocument(layout == JsonText::Layout::indented)
{
    for (const Heading& heading : headings)
        m_keys.push_back(heading.key());
    if (!m_isDocument)
        return;
    m_text.beginRecord();
    m_text.addMember("schema", Field(std::int64_t{1}));
    m_text.key(array);
    m_text.beginList();
    m_output.write({}, endOf(m_text, true));
}

void JsonOutput::write(const Row& row)
{
    m_text.beginRecord();
    for (std::size_t column = 0; column < m_keys.size(); ++column)
        m_text.addMember(m_keys[column], row[column]);
    m_text.endRecord();
    writeElement();
}

void JsonOutput::write(const Document::Record& record)
{
    m_text.add(record);
    writeElement();
}

void JsonOutput::finish()
{
    if (m_isDocument)
        m_output.write(endOf(std::move(m_text), false), {});
}

/// The first element is written with the beginning of the document. From then on, an interrupted
/// document ends by closing the array.
void JsonOutput::writeElement()
{
    if (!m_isDocument)
        m_text.endLine();
    if (m_isDocument && !std::exchange(m_hasRows, true)) {
        JsonText rest = m_text;
        rest.clear();
        m_output.write(m_text.text(), endOf(rest, true));
    } else {
        m_output.write(m_text.text());
    }
    m_text.clear();
}

} // namespace command
