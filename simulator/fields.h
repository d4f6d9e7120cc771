#ifndef SIMULATOR_FIELDS_H
#define SIMULATOR_FIELDS_H

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

namespace simulator {

using Json = nlohmann::ordered_json;

/// Reads the fields of one JSON object. Every reader throws an Error that names the place when the
/// value has another type, and when the field is missing and there is no fallback.
class Fields {
public:
    /// `object` must outlive this. `where` is its place in the file, empty for the whole file.
    Fields(const Json& object, std::string where);

    bool has(const char* key) { return find(key) != nullptr; }

    /// The unchecked value; null when the field is missing.
    const Json* find(const char* key);

    std::string text(const char* key);
    std::string text(const char* key, const char* fallback);

    /// A text for one column of a table: not empty and without white space.
    std::string word(const char* key);
    std::string word(const char* key, const char* fallback);

    unsigned number(const char* key);

    /// A whole number from `least` to `most`.
    unsigned number(const char* key, unsigned fallback, unsigned least = 0,
                    unsigned most = 1'000'000'000);

    /// A missing flag is false.
    bool flag(const char* key);

    /// The fields of an object in this one, none when it is missing.
    std::optional<Fields> object(const char* key);

    /// The values of an object whose fields are all whole numbers; a missing object counts as
    /// empty.
    std::map<std::string, unsigned> counts(const char* key);

    /// Calls `read` with the fields of each object of an array; a missing array counts as empty.
    template <class Read>
    auto each(const char* key, Read read)
    {
        std::vector<decltype(read(std::declval<Fields>()))> values;
        const Json& elements = array(key);
        for (std::size_t i = 0; i < elements.size(); ++i)
            values.push_back(read(Fields(elements[i], place(key) + "[" + std::to_string(i) + "]")));
        return values;
    }

    /// Throws when the object has a field that was not read: a misspelt field must not count as a
    /// missing one.
    void finish() const;

    /// Throws an Error about one field.
    [[noreturn]] void refuse(const std::string& key, const std::string& message) const;

private:
    const Json& require(const char* key);
    const Json& array(const char* key);
    std::string place(const std::string& key) const;
    std::string textOf(const char* key, const Json& value) const;
    std::string wordOf(const char* key, std::string value) const;

    const Json& m_object;
    std::string m_where;
    std::vector<std::string_view> m_known;
};

} // namespace simulator

#endif
