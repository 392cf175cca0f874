#pragma once

/// @file
/// A comparison: a workload of the library, and peers that do the same work.
///
/// Each source of this directory defines a group of comparisons; measurement.cpp measures them and
/// main.cpp prints the result. The workloads of one comparison run by turns in one process. A ratio
/// is the median of the ratios of all turns, because both figures of one turn are measured within
/// a moment: what slows the machine down slows both.

#include <benchmark/benchmark.h>

#include <functional>
#include <memory>
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
    /// The same work on less data. If it is set, the figure of this workload is its growth: its
    /// time divided by that of the smaller one in the same turn.
    std::shared_ptr<const Workload> smaller;
};

struct Peer {
    std::string name;
    Workload work;
    /// The largest accepted ratio of the library's figure to that of this peer.
    double bound;
};

enum class Clock {
    /// The time of the processor in all threads of the process, system calls included. The time
    /// that other programs take does not count.
    processor,
    /// The time that passes, for workloads that wait for the disk.
    wall,
};

struct Comparison {
    std::string name;
    Workload ours;
    std::vector<Peer> peers;
    Clock clock = Clock::processor;
    /// The figure of a workload in bytes, if it is not a time. It is called once for each turn.
    std::function<double(const Workload&)> bytes = nullptr;
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
