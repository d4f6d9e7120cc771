#ifndef OUTPUT_DOCUMENT_H
#define OUTPUT_DOCUMENT_H

#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "output/field.h"

namespace command {

/// An answer that is more than a row: fields, lists, and records with named members in their order.
/// Written as JSON.
class Document {
public:
    using List = std::vector<Document>;
    using Record = std::vector<std::pair<std::string, Document>>;

    Document(Field field) : m_value(std::move(field)) {}
    Document(const char* text) : Document(Field(std::string(text))) {}
    Document(std::string text) : Document(Field(std::move(text))) {}
    Document(bool value) : Document(Field(value)) {}
    Document(std::int64_t number) : Document(Field(number)) {}
    Document(int number) : Document(std::int64_t{number}) {}
    Document(unsigned int number) : Document(std::int64_t{number}) {}
    Document(List list) : m_value(std::move(list)) {}
    Document(Record record) : m_value(std::move(record)) {}

    /// A list of `values`, each by way of `documentOf`.
    template <class Values, class DocumentOf>
    static Document list(const Values& values, DocumentOf documentOf)
    {
        List list;
        for (const auto& value : values)
            list.push_back(documentOf(value));
        return list;
    }

    /// A list of texts.
    template <class Texts>
    static Document list(const Texts& texts)
    {
        return List(texts.begin(), texts.end());
    }

    const std::variant<Field, List, Record>& value() const { return m_value; }

private:
    std::variant<Field, List, Record> m_value;
};

} // namespace command

#endif
