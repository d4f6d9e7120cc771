#include "state.h"

#include <filesystem>
#include <set>

#include <fcntl.h>

#include "error.h"
#include "json_file.h"

namespace simulator {

namespace {

Path readPath(Fields fields)
{
    Path path{fields.word("name"), fields.word("state"), fields.word("type"),
              fields.word("controller", "c0")};
    fields.finish();
    return path;
}

std::optional<Stale> readStale(std::optional<Fields> fields)
{
    if (!fields)
        return std::nullopt;
    Stale stale;
    stale.rescans = fields->number("rescans", 1, 1);
    stale.removal = fields->flag("removal");
    if (fields->has("name"))
        stale.name = fields->word("name");
    stale.paths = fields->each("paths", readPath);
    if (!stale.paths.empty() && stale.name.empty())
        fields->refuse("paths", "needs a name that they are shown under");
    fields->finish();
    return stale;
}

Node readNode(Fields fields)
{
    Node node{fields.word("name"), fields.word("state", "ENABLED"), fields.each("paths", readPath),
              readStale(fields.object("stale"))};
    fields.finish();
    return node;
}

Array readArray(Fields fields)
{
    Array array{fields.word("name"), fields.each("nodes", readNode)};
    fields.finish();
    return array;
}

/// Throws when a name occurs twice: nodes and disks are found by their names.
void requireUniqueNames(const std::vector<Array>& arrays)
{
    std::set<std::string> nodes;
    std::set<std::string> disks;
    for (const Array& array : arrays) {
        for (const Node& node : array.nodes) {
            if (!nodes.insert(node.name).second)
                throw Error("there are two nodes " + node.name);
            for (const Path& path : node.paths) {
                if (!disks.insert(path.name).second)
                    throw Error("there are two paths " + path.name);
            }
        }
    }
}

/// Whether replaying needs this field of a recording.
bool isRecorded(const std::string& field)
{
    return field == "commands" || field == "command" || field == "status" || field == "output";
}

/// "replay" is a list of records, or the name of a file that has the list in its field "commands".
std::optional<std::vector<Record>> readReplay(Fields& fields, const std::string& folder)
{
    const Json* value = fields.find("replay");
    if (value == nullptr)
        return std::nullopt;
    if (!value->is_string())
        return fields.each("replay", readRecord);
    const auto name = value->get<std::string>();
    if (name.find('/') != std::string::npos)
        fields.refuse("replay", "is not the name of a file in the same folder");
    const std::string path = (std::filesystem::path(folder) / name).string();
    const Json file = readJsonFile(path, O_NOFOLLOW, isRecorded);
    Fields recorded(file, path);
    if (!recorded.has("commands"))
        recorded.refuse("commands", "is missing");
    return recorded.each("commands", readRecord);
}

void setOrErase(Json& object, const char* key, const Json& value)
{
    if (value.empty())
        object.erase(key);
    else
        object[key] = value;
}

Json pathsJson(const std::vector<Path>& paths)
{
    Json list = Json::array();
    for (const Path& path : paths) {
        list.push_back({{"name", path.name},
                        {"state", path.state},
                        {"type", path.type},
                        {"controller", path.controller}});
    }
    return list;
}

Json staleJson(const std::optional<Stale>& stale)
{
    Json object = Json::object();
    if (!stale)
        return object;
    if (stale->removal)
        object["removal"] = true;
    object["rescans"] = stale->rescans;
    if (!stale->name.empty())
        object["name"] = stale->name;
    setOrErase(object, "paths", pathsJson(stale->paths));
    return object;
}

} // namespace

State readState(const Json& document, const std::string& folder)
{
    Fields fields(document, "");
    fields.text("about", "");
    State state;
    state.arrays = fields.each("arrays", readArray);
    state.emptyTableForUnknownDisk = fields.flag("empty_table_for_unknown_disk");
    state.faults = fields.each("faults", readFault);
    state.replay = readReplay(fields, folder);
    state.calls = fields.counts("calls");
    state.replayed = fields.counts("replayed");
    fields.finish();
    requireUniqueNames(state.arrays);
    return state;
}

void writeState(const State& state, Json& document)
{
    for (std::size_t i = 0; i < state.arrays.size(); ++i) {
        const std::vector<Node>& nodes = state.arrays[i].nodes;
        for (std::size_t j = 0; j < nodes.size(); ++j)
            setOrErase(document["arrays"][i]["nodes"][j], "stale", staleJson(nodes[j].stale));
    }
    setOrErase(document, "calls", state.calls);
    setOrErase(document, "replayed", state.replayed);
}

} // namespace simulator
