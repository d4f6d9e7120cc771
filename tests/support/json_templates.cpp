#include "json_templates.h"

template class nlohmann::basic_json<nlohmann::ordered_map>;
template class nlohmann::detail::lexer<nlohmann::ordered_json, JsonCharacters>;
template class nlohmann::detail::parser<nlohmann::ordered_json, JsonCharacters>;
template class nlohmann::detail::serializer<nlohmann::ordered_json>;
