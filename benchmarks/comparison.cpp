#include "benchmarks/comparison.h"

#include <cstdlib>
#include <iostream>
#include <utility>

namespace {

constexpr double turnSeconds = 0.002;
constexpr std::size_t fewestRounds = 5;
constexpr std::size_t mostRounds = 301;

double budgetSeconds()
{
    const char* seconds = std::getenv("BENCHMARK_SECONDS");
    return seconds == nullptr ? 1 : std::strtod(seconds, nullptr);
}

/// A side, how many operations fill its turn, and what its turns took.
struct Contestant {
    explicit Contestant(const Side& side) : measure(side.measure), result{side.name} {}

    /// Warms the side up, too.
    void findTimes()
    {
        while (measure(times) < turnSeconds / 2)
            times *= 2;
    }

    void takeTurn()
    {
        result.nanoseconds.push_back(measure(times) * 1e9 / static_cast<double>(times));
    }

    const Measure& measure;
    std::size_t times = 1;
    Result result;
};

/// Every other round goes backwards: no side always follows the same one.
void runRound(std::vector<Contestant>& contestants, bool forwards)
{
    const std::size_t count = contestants.size();
    for (std::size_t turn = 0; turn < count; ++turn)
        contestants[forwards ? turn : count - 1 - turn].takeTurn();
}

std::string joined(const std::vector<std::string>& texts)
{
    std::string all;
    for (const std::string& text : texts)
        all += (all.empty() ? "" : ", ") + text;
    return all;
}

std::string textOf(const std::vector<double>& numbers)
{
    std::vector<std::string> texts;
    texts.reserve(numbers.size());
    for (const double number : numbers)
        texts.push_back(std::to_string(number));
    return '[' + joined(texts) + ']';
}

} // namespace

void print(const std::string& name, const std::vector<Result>& results)
{
    std::vector<std::string> sides;
    std::vector<std::string> left;
    for (const Result& one : results) {
        const std::string member = '"' + one.name + "\": ";
        sides.push_back(member + textOf(one.nanoseconds));
        if (one.left)
            left.push_back(member + std::to_string(*one.left));
    }
    std::cout << "{\"name\": \"" << name << "\", \"sides\": {" << joined(sides) << "}, \"left\": {"
              << joined(left) << "}}" << std::endl;
}

void compare(const std::string& name, const std::vector<Side>& sides)
{
    std::vector<Contestant> contestants(sides.begin(), sides.end());
    for (Contestant& one : contestants)
        one.findTimes();
    const double end = secondsOf(CLOCK_MONOTONIC) + budgetSeconds();
    for (std::size_t round = 0; round < mostRounds; ++round) {
        if (round >= fewestRounds && secondsOf(CLOCK_MONOTONIC) > end)
            break;
        runRound(contestants, round % 2 == 0);
    }
    std::vector<Result> results;
    results.reserve(contestants.size());
    for (Contestant& one : contestants)
        results.push_back(std::move(one.result));
    print(name, results);
}
