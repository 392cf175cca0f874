#pragma once

/// @file
/// A comparison: a workload of the library, and peers that do the same work.
///
/// Each source of this directory defines a group of comparisons; main.cpp runs them. All workloads
/// of one comparison run by turns in one process. The result of each is the median of its runs.

#include <benchmark/benchmark.h>

#include <functional>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace trv::bench {

/// A piece of work that is repeated.
struct Workload {
    template <class Run, class = std::enable_if_t<std::is_invocable_v<Run&>>>
    Workload(Run timed) : run(std::move(timed)) {}
    Workload(std::function<void()> untimed, std::function<void()> timed)
        : prepare(std::move(untimed)), run(std::move(timed)) {}

    /// Creates what each run consumes, if there is anything. Not timed.
    std::function<void()> prepare;
    std::function<void()> run;
};

/// The bound of a ratio that is only printed.
inline constexpr double noBound = std::numeric_limits<double>::infinity();

struct Peer {
    std::string name;
    Workload work;
    /// The largest accepted ratio of the library's time to that of this peer.
    double bound;
};

struct Comparison {
    std::string name;
    Workload ours;
    std::vector<Peer> peers;
    /// The figure of a workload, if it is not a time. It is called once for each run, which is not
    /// timed.
    std::function<double(const Workload&)> figure = nullptr;
};

using Comparisons = std::vector<Comparison>;

// One function for each source.
Comparisons assemblyComparisons();
Comparisons axisComparisons();
Comparisons contextComparisons();
Comparisons storeComparisons();
Comparisons storeGrowthComparisons();
Comparisons expansionComparisons();
Comparisons supportComparisons();

/// Ends the program if a workload fails, because its figure would be meaningless.
void require(bool done, const char* what);

}  // namespace trv::bench
