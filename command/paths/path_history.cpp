#include "paths/path_history.h"

#include <cmath>

namespace command {

namespace {

using Change = PathChange::Kind;

const DiskFacts noFacts;

/// What is compared from reading to reading, group, state and use:  "1 active used"
std::string summary(const DiskPath& path)
{
    const char* used = !path.isUsed ? "" : *path.isUsed ? " used" : " unused";
    return (path.group.empty() ? "" : path.group + ' ') + pathStateName(path.state) + used;
}

DiskPaths withoutPaths(const DiskPaths& disk)
{
    return {disk.driver, disk.name, nullptr, {}, {}};
}

DiskPath withoutDevice(DiskPath path)
{
    path.device = nullptr;
    return path;
}

/// By how much a counter has grown in a second; 0 when it was reset.
std::int64_t perSecond(std::uint64_t before, std::uint64_t after, double seconds)
{
    return after < before ? 0 : std::llround(static_cast<double>(after - before) / seconds);
}

} // namespace

PathHistory::Rows PathHistory::take(const std::vector<DiskPaths>& disks, const Moment& now)
{
    ++m_reading;
    m_facts.clear();
    Rows rows;
    for (const DiskPaths& disk : disks) {
        m_facts.push_back(factsOf(disk));
        for (const DiskPath& path : disk.paths)
            takePath(pathAnswer(disk, m_facts.back(), path), now, rows);
    }
    takeGone(now, rows);
    m_last = now.clock;
    return rows;
}

void PathHistory::takePath(PathAnswer answer, const Moment& now, Rows& rows)
{
    const Key key(answer.disk.name, answer.path.name);
    const auto [place, isNew] =
        m_known.try_emplace(key, Known{withoutPaths(answer.disk), withoutDevice(answer.path)});
    Known& known = place->second;
    if (!isNew)
        answer.rates = rates(known, answer, now);
    if (m_reading > 1 && (isNew || known.reading + 1 != m_reading))
        known.change = PathChange{Change::added, now.time, ""};
    else
        compare(known, answer.path, now);
    known.path = withoutDevice(answer.path);
    known.io = answer.io;
    known.reading = m_reading;
    answer.change = known.change ? &*known.change : nullptr;
    rows.all.push_back(answer);
    if (known.change && known.change->time == now.time)
        rows.changed.push_back(answer);
}

void PathHistory::compare(Known& known, const DiskPath& path, const Moment& now) const
{
    const std::string was = summary(known.path);
    if (was != summary(path))
        known.change = PathChange{Change::changed, now.time, was};
}

/// Adds rows for paths that are gone, in an unknown state, so that the user sees the loss.
void PathHistory::takeGone(const Moment& now, Rows& rows)
{
    for (auto& [key, known] : m_known) {
        if (known.reading == m_reading)
            continue;
        const bool hasJustGone = known.reading + 1 == m_reading;
        if (hasJustGone) {
            known.change = PathChange{Change::removed, now.time, summary(known.path)};
            known.path.state = PathState::unknown;
            known.path.isUsed = false;
            known.io.reset();
        }
        const PathAnswer answer{known.disk, noFacts, known.path, {}, {}, &*known.change};
        rows.all.push_back(answer);
        if (hasJustGone)
            rows.changed.push_back(answer);
    }
}

std::optional<IoRates> PathHistory::rates(const Known& known, const PathAnswer& answer,
                                          const Moment& now) const
{
    const double seconds = std::chrono::duration<double>(now.clock - m_last).count();
    if (!known.io || !answer.io || seconds <= 0)
        return std::nullopt;
    const IoCounters& before = *known.io;
    const IoCounters& after = *answer.io;
    return IoRates{perSecond(before.reads, after.reads, seconds),
                   perSecond(before.readBytes, after.readBytes, seconds),
                   perSecond(before.writes, after.writes, seconds),
                   perSecond(before.writtenBytes, after.writtenBytes, seconds)};
}

} // namespace command
