#pragma once

#include <algorithm>
#include <ctime>
#include <limits>

namespace trv::testing {

/// The processor time of a call, at least one tick of the clock.
template <class Call>
double processorTime(Call call) {
    const std::clock_t start = std::clock();
    call();
    return static_cast<double>(std::max<std::clock_t>(std::clock() - start, 1));
}

/// How many times as long a large input takes as a small one. Each counts with the shortest of
/// five runs, in turns, so that other programs on the machine disturb little.
///
/// @param time  called with a size, returns the time of what is measured
template <class Time>
double growth(int small, int large, Time time) {
    double shortest = std::numeric_limits<double>::max();
    double longest = shortest;
    for (int run = 0; run < 5; ++run) {
        shortest = std::min(shortest, time(small));
        longest = std::min(longest, time(large));
    }
    return longest / shortest;
}

}  // namespace trv::testing
