#include "row_writer.h"

namespace command {

std::string cellText(const Row& field)
{
    if (field.is_null())
        return "-";
    if (field.is_boolean())
        return field.get<bool>() ? "yes" : "no";
    if (field.is_number())
        return std::to_string(field.get<unsigned int>());
    return field.get<std::string>();
}

} // namespace command
