#include "volume_manager.h"

#include <algorithm>

#include "tables.h"

namespace simulator {

namespace {

/// Whether the volume manager finds the node. A stale one is found only by the name in `stale`.
bool isShown(const Node& node)
{
    return !node.stale || !node.stale->name.empty();
}

const std::string& shownName(const Node& node)
{
    return node.stale ? node.stale->name : node.name;
}

const std::vector<Path>& shownPaths(const Node& node)
{
    return node.stale ? node.stale->paths : node.paths;
}

bool holds(const Node& node, const std::string& disk)
{
    return std::any_of(node.paths.begin(), node.paths.end(),
                       [&](const Path& path) { return path.name == disk; });
}

bool holdsAny(const Node& node, const std::vector<std::string>& disks)
{
    return std::any_of(disks.begin(), disks.end(),
                       [&](const std::string& disk) { return holds(node, disk); });
}

/// A node that must be removed before rescans count can be removed by its real name too.
bool canRemove(const Node& node, const std::string& name)
{
    return (isShown(node) && shownName(node) == name) ||
           (node.stale && node.stale->removal && node.name == name);
}

void forget(Node& node)
{
    Stale forgotten;
    if (node.stale)
        forgotten.rescans = node.stale->rescans;
    node.stale = forgotten;
}

void discover(Node& node)
{
    if (node.stale && !node.stale->removal && --node.stale->rescans == 0)
        node.stale.reset();
}

Answer notFound(const std::string& what)
{
    return {1, {}, "ERROR " + what + " is not under the control of KoDMP"};
}

} // namespace

Answer nodeOfDisk(const State& state, const std::string& disk)
{
    const Row header{"NAME", "STATE", "GROUP", "PATHS"};
    for (const Array& array : state.arrays) {
        for (const Node& node : array.nodes) {
            if (isShown(node) && holds(node, disk)) {
                const std::string count = std::to_string(node.paths.size());
                return {0, tableLines(header, {{shownName(node), node.state, array.name, count}}),
                        ""};
            }
        }
    }
    if (state.emptyTableForUnknownDisk)
        return {0, tableLines(header, {}), ""};
    return notFound("disk \"" + disk + "\"");
}

Answer pathsOfNode(const State& state, const std::string& name)
{
    for (const Array& array : state.arrays) {
        for (const Node& node : array.nodes) {
            if (!isShown(node) || shownName(node) != name || shownPaths(node).empty())
                continue;
            std::vector<Row> rows;
            for (const Path& path : shownPaths(node))
                rows.push_back({path.name, path.state, path.type, path.controller});
            return {0, tableLines({"NAME", "STATE", "TYPE", "CTLR"}, rows), ""};
        }
    }
    return notFound("node \"" + name + "\"");
}

Answer removeNode(State& state, const std::string& name)
{
    for (Array& array : state.arrays) {
        for (Node& node : array.nodes) {
            if (canRemove(node, name)) {
                forget(node);
                return {};
            }
        }
    }
    return notFound("node \"" + name + "\"");
}

Answer rescan(State& state, const std::optional<std::vector<std::string>>& disks)
{
    for (Array& array : state.arrays) {
        for (Node& node : array.nodes) {
            if (!disks || holdsAny(node, *disks))
                discover(node);
        }
    }
    return {};
}

} // namespace simulator
