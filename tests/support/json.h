#ifndef TESTS_SUPPORT_JSON_H
#define TESTS_SUPPORT_JSON_H

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <ostream>
#include <string>
#include <type_traits>
#include <vector>

/// A JSON value. Members of an object keep their order, and objects with another order differ.
///
/// Only json.cpp includes nlohmann's header, whose templates take a test program seconds to
/// compile.
class Json {
public:
    Json() = default; // null
    Json(std::nullptr_t) {}
    Json(bool value) : m_kind(Kind::boolean), m_integer(value ? 1 : 0) {}
    Json(double value) : m_kind(Kind::real), m_real(value) {}
    Json(const char* text) : m_kind(Kind::text), m_text(text) {}
    Json(std::string text);
    Json(const std::vector<std::string>& texts);
    Json(std::vector<Json> elements);
    template <class Integer, class = std::enable_if_t<std::is_integral_v<Integer>>>
    Json(Integer value) : m_kind(Kind::integer), m_integer(static_cast<std::int64_t>(value))
    {}

    /// An object of pairs, {{"name", 1}, {"other", "text"}}, or an array of other values. Around a
    /// single Json, braces are an array to g++ and nothing to clang: use `array`.
    Json(std::initializer_list<Json> values);

    static Json array(std::vector<Json> elements = {}) { return elements; }
    static Json object();

    /// Throws an exception when the text is not JSON.
    static Json parse(const std::string& text);
    static bool accept(const std::string& text);

    /// The text of the value on one line, without spaces.
    std::string dump() const;

    bool isReal() const { return m_kind == Kind::real; }
    bool isText() const { return m_kind == Kind::text; }
    bool isArray() const { return m_kind == Kind::array; }

    /// Throws std::runtime_error when the value is no text.
    const std::string& text() const;

    /// Throws std::runtime_error when the value is no number.
    double number() const;

    /// A member or element; std::out_of_range is thrown when there is none. To a value that is not
    /// constant the member is added instead, and null becomes an object.
    const Json& operator[](const std::string& name) const;
    const Json& operator[](std::size_t position) const { return m_values.at(position); }
    Json& operator[](const std::string& name);
    Json& operator[](std::size_t position) { return m_values.at(position); }

    bool contains(const std::string& name) const;

    /// Adds to an array; null becomes one.
    void push_back(Json element);

    /// The elements of an array, or the values of an object, whose names are in `names`.
    std::size_t size() const { return m_values.size(); }
    bool empty() const { return m_values.empty(); }
    auto begin() const { return m_values.begin(); }
    auto end() const { return m_values.end(); }
    const std::vector<std::string>& names() const { return m_names; }

    friend bool operator==(const Json& left, const Json& right);
    friend bool operator!=(const Json& left, const Json& right) { return !(left == right); }
    friend std::ostream& operator<<(std::ostream& stream, const Json& value)
    {
        return stream << value.dump();
    }

private:
    enum class Kind { null, boolean, integer, real, text, array, object };

    bool isPair() const;
    void become(Kind kind);
    std::size_t positionOf(const std::string& name) const;

    Kind m_kind = Kind::null;
    std::int64_t m_integer = 0;
    double m_real = 0;
    std::string m_text;
    std::vector<std::string> m_names;
    std::vector<Json> m_values;
};

#endif
