#ifndef TESTS_COMMAND_ACTIVE_POOL_ANSWERS_H
#define TESTS_COMMAND_ACTIVE_POOL_ANSWERS_H

#include <chrono>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "active/lookup_pool.h"

inline command::LookupResult named(const std::string& name)
{
    command::LookupResult result;
    result.name = name;
    return result;
}

inline command::LookupPool::Source source(std::vector<std::string> paths)
{
    return [paths = std::move(paths), position = std::size_t{0}]() mutable {
        return position < paths.size() ? std::optional(paths[position++]) : std::nullopt;
    };
}

/// A source of one path that fails when it is called again. Counts the calls.
inline command::LookupPool::Source sourceThatFails(int& calls)
{
    return [&calls]() -> std::optional<std::string> {
        if (++calls == 2)
            throw std::runtime_error("cannot read");
        return "a";
    };
}

/// The answers up to the end.
inline std::vector<std::string> answers(command::LookupPool& pool)
{
    std::vector<std::string> all;
    command::LookupResult result;
    while (pool.next(result, std::chrono::seconds(10)) == command::LookupPool::Next::result)
        all.push_back(result.name);
    return all;
}

#endif
