#pragma once

/// @file
/// What is measured: a piece of work of the library, and peers that do the same work.
///
/// Each source of this folder offers a group of comparisons; main.cpp runs them. All works of one
/// comparison run in one process, in turns, and what counts is the median of their runs.

#include <benchmark/benchmark.h>

#include <functional>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace trv::bench {

/// A piece of work, called over and over.
struct Work {
    template <class Run, class = std::enable_if_t<std::is_invocable_v<Run&>>>
    Work(Run timed) : run(std::move(timed)) {}
    Work(std::function<void()> untimed, std::function<void()> timed)
        : prepare(std::move(untimed)), run(std::move(timed)) {}

    /// Where each run needs something that the one before has used up. Not timed.
    std::function<void()> prepare;
    std::function<void()> run;
};

/// Of a ratio that is measured to be compared with others.
inline constexpr double noBound = std::numeric_limits<double>::infinity();

struct Peer {
    std::string name;
    Work work;
    /// The largest ratio of our time to this peer's that will do.
    double bound;
};

struct Comparison {
    std::string name;
    Work ours;
    std::vector<Peer> peers;
    /// What a work's figure is where it is no time: called once a run instead of being timed.
    std::function<double(const Work&)> figure = nullptr;
};

using Comparisons = std::vector<Comparison>;

// One function a source.
Comparisons assemblyComparisons();
Comparisons axisComparisons();
Comparisons contextComparisons();
Comparisons storeComparisons();
Comparisons storeGrowthComparisons();
Comparisons expansionComparisons();
Comparisons supportComparisons();

/// A failure of a work ends the program: a figure for it would mean nothing.
void require(bool done, const char* what);

}  // namespace trv::bench
