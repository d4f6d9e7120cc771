#include "output/json_output.h"

#include <cmath>
#include <utility>

#include <nlohmann/json.hpp>

namespace command {

namespace {

using Json = nlohmann::ordered_json;

/// Rounded to milliseconds: the times of processes are no more exact than that.
Json secondsJson(Seconds seconds)
{
    return std::round(seconds.count() * 1000) / 1000;
}

Json stepJson(const Step& step)
{
    if (step.command.empty())
        return {{"wait", secondsJson(step.duration)}};
    return {{"command", step.command},
            {"seconds", secondsJson(step.duration)},
            {"result", step.result ? Json(*step.result) : Json()}};
}

struct ToJson {
    Json operator()(const Document& document) const { return std::visit(*this, document.value()); }
    Json operator()(const Field& field) const { return std::visit(*this, field); }

    Json operator()(const Document::List& list) const
    {
        Json json = Json::array();
        for (const Document& element : list)
            json.push_back((*this)(element));
        return json;
    }

    Json operator()(const Document::Record& record) const
    {
        Json json = Json::object();
        for (const auto& [key, value] : record)
            json[key] = (*this)(value);
        return json;
    }

    Json operator()(std::monostate /*none*/) const { return nullptr; }
    Json operator()(bool value) const { return value; }
    Json operator()(std::int64_t value) const { return value; }
    Json operator()(Seconds value) const { return secondsJson(value); }
    Json operator()(const std::string& value) const { return value; }
    Json operator()(const CommandLine& value) const { return value.text; }
    Json operator()(const Mark& mark) const { return mark.text; }
    Json operator()(const Texts& texts) const { return texts; }

    Json operator()(const Steps& steps) const
    {
        Json json = Json::array();
        for (const Step& step : steps)
            json.push_back(stepJson(step));
        return json;
    }
};

} // namespace

std::string jsonText(const Document& document)
{
    return ToJson()(document).dump(2, ' ', true, Json::error_handler_t::replace) + '\n';
}

JsonOutput::JsonOutput(OutputStream& output, const char* array,
                       const std::vector<Heading>& headings)
    : m_output(output), m_array(array)
{
    for (const Heading& heading : headings)
        m_keys.push_back(heading.key());
}

void JsonOutput::write(const Row& row)
{
    Document::Record record;
    for (std::size_t column = 0; column < m_keys.size(); ++column)
        record.emplace_back(m_keys[column], row[column]);
    write(record);
}

void JsonOutput::finish()
{
    m_output.write(jsonText(Document::Record{{"schema", 1}, {m_array, std::move(m_records)}}));
}

} // namespace command
