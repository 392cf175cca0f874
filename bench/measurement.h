#pragma once

/// @file
/// The figures of a comparison.

#include <bench/comparison.h>

#include <vector>

namespace trv::bench {

/// One figure for each turn.
using Figures = std::vector<double>;

/// Measures the workloads of a comparison by turns: in each turn all of them, in the next one in
/// reverse order, so that a machine that gets slower or faster favours none of them.
///
/// @param minTurns  a comparison of short workloads takes more turns, for two seconds
/// @return those of the library, then those of each peer: seconds, bytes or the factor of a growth
std::vector<Figures> measured(const Comparison& comparison, int minTurns);

double median(Figures figures);

/// The median of the ratios of the figures of the same turn.
///
/// @param other  as many as `figures`
double medianRatio(const Figures& figures, const Figures& other);

}  // namespace trv::bench
