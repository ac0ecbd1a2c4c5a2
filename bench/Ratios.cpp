#include "bench/Ratios.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <iterator>
#include <map>
#include <vector>

namespace
{

class Collector final : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run> &runs) override
    {
        benchmark::ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs) {
            if (run.run_type == Run::RT_Iteration) {
                times[run.run_name.function_name].push_back(run.GetAdjustedCPUTime());
            }
        }
    }

    std::map<std::string, std::vector<double>> times;
};

} // namespace

int runAndCompare(int argc, char **argv, std::span<const Ratio> ratios)
{
    static char repetitions[] = "--benchmark_repetitions=9";
    static char interleaved[] = "--benchmark_enable_random_interleaving=true";
    std::vector<char *> arguments{argv[0], repetitions, interleaved};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) {
        return 1;
    }
    Collector collector;
    benchmark::RunSpecifiedBenchmarks(&collector);

    std::printf("\n%-28s %-28s %8s %8s %8s %8s\n", "", "compared with", "median", "least", "most", "limit");
    bool isGoodEnough = true;
    for (const Ratio &ratio : ratios) {
        const std::vector<double> &ours = collector.times[ratio.ours];
        const std::vector<double> &other = collector.times[ratio.other];
        if (ours.empty() || ours.size() != other.size()) {
            continue; // Filtered out on the command line.
        }
        std::vector<double> values;
        std::transform(ours.begin(), ours.end(), other.begin(), std::back_inserter(values), std::divides<>());
        std::sort(values.begin(), values.end());
        const double median = values[values.size() / 2];
        std::printf("%-28s %-28s %8.2f %8.2f %8.2f", ratio.ours.c_str(), ratio.other.c_str(), median, values.front(),
                    values.back());
        if (ratio.maxMedian) {
            const bool isAbove = median > *ratio.maxMedian;
            std::printf(" %8.2f%s", *ratio.maxMedian, isAbove ? "  too slow" : "");
            isGoodEnough = isGoodEnough && !isAbove;
        }
        std::printf("\n");
    }
    return isGoodEnough ? 0 : 1;
}
