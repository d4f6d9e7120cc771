#include "json_file.h"

#include <fcntl.h>

#include "error.h"
#include "regular_file.h"

namespace simulator {

namespace {

/// The depth is limited because values are copied, compared and written recursively.
constexpr int deepest = 100;

} // namespace

Json readJsonFile(const std::string& path, int flags, bool (*isWanted)(const std::string& field))
{
    const auto keeps = [&](int depth, Json::parse_event_t event, const Json& value) {
        if (depth >= deepest)
            throw Error(path + " is nested more than " + std::to_string(deepest) + " levels deep");
        return isWanted == nullptr || event != Json::parse_event_t::key ||
               isWanted(value.get_ref<const std::string&>());
    };
    try {
        return Json::parse(RegularFile(path, O_RDONLY | flags).read(), keeps);
    } catch (const Json::parse_error& error) {
        throw Error(path + " is no JSON: " + error.what());
    } catch (const Json::out_of_range& error) {
        throw Error(path + " has a number that is too large: " + error.what());
    }
}

} // namespace simulator
