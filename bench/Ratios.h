#pragma once

#include <optional>
#include <span>
#include <string>

/// Two benchmarks of one run: how many times as long as the second one the first one takes.
struct Ratio {
    std::string ours;
    std::string other;
    std::optional<double> maxMedian = {}; ///< The largest that is good enough.
};

/// Runs all registered benchmarks several times in random order, and then prints each ratio: its median, and its
/// smallest and largest value over the repetitions, and the largest median that is good enough. The command line is
/// Google Benchmark's. The exit status: 1 when a median is above that.
int runAndCompare(int argc, char **argv, std::span<const Ratio> ratios);
