#ifndef ROW_H
#define ROW_H

#include <nlohmann/json.hpp>

namespace command {

/// One answer: its fields under lower-case keys, null where the library gives none. The keys are
/// those of the subcommand's columns, see columns.h.
using Row = nlohmann::ordered_json;

} // namespace command

#endif
