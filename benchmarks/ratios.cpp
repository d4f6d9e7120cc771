// Main program of every benchmark. Absolute times mean nothing on a shared machine, so a benchmark
// comes as a pair, NAME/ours and NAME/reference. Both run many times in random alternation, and
// the ratio of their medians is reported.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace {

class RatioReporter : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context& /*context*/) override
    {
        std::printf("%-48s %12s %14s %8s\n", "median of the pair", "ours ns", "reference ns",
                    "ratio");
        return true;
    }

    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "median")
                report(run.run_name.function_name, run.GetAdjustedRealTime());
        }
    }

private:
    void report(const std::string& name, double nanoseconds)
    {
        const std::size_t slash = name.rfind('/');
        const std::string pair = name.substr(0, slash);
        m_medians[name] = nanoseconds;
        const auto ours = m_medians.find(pair + "/ours");
        const auto reference = m_medians.find(pair + "/reference");
        if (ours == m_medians.end() || reference == m_medians.end())
            return;
        std::printf("%-48s %12.1f %14.1f %8.2f\n", pair.c_str(), ours->second, reference->second,
                    ours->second / reference->second);
    }

    std::map<std::string, double> m_medians;
};

} // namespace

int main(int argc, char** argv)
{
    std::vector<char*> arguments(argv, argv + argc);
    std::string interleaving = "--benchmark_enable_random_interleaving=true";
    std::string repetitions = "--benchmark_repetitions=15";
    std::string minTime = "--benchmark_min_time=0.02";
    arguments.insert(arguments.begin() + 1,
                     {interleaving.data(), repetitions.data(), minTime.data()});
    auto count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 2;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
}
