#include "json_templates.h"

template class nlohmann::basic_json<>;
template class nlohmann::detail::lexer<nlohmann::json, JsonCharacters>;
template class nlohmann::detail::parser<nlohmann::json, JsonCharacters>;
template class nlohmann::detail::serializer<nlohmann::json>;
