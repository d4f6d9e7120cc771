#ifndef TESTS_SUPPORT_JSON_TEMPLATES_H
#define TESTS_SUPPORT_JSON_TEMPLATES_H

#include <string>

#include <nlohmann/json.hpp>

// Compiled once, in json_templates.cpp: tests that read JSON compile in three quarters of the time.

using JsonCharacters = nlohmann::detail::iterator_input_adapter<std::string::const_iterator>;

extern template class nlohmann::basic_json<nlohmann::ordered_map>;
extern template class nlohmann::detail::lexer<nlohmann::ordered_json, JsonCharacters>;
extern template class nlohmann::detail::parser<nlohmann::ordered_json, JsonCharacters>;
extern template class nlohmann::detail::serializer<nlohmann::ordered_json>;

#endif
