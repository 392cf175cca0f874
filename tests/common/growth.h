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

/// The ratio of the times for a large and a small input. Each time is the minimum of five runs. The
/// runs of both alternate, so other programs on the machine have little effect.
///
/// @param time  called with a size; returns the measured time
template <class Time>
double growth(int small, int large, Time time) {
    double smallTime = std::numeric_limits<double>::max();
    double largeTime = smallTime;
    for (int run = 0; run < 5; ++run) {
        smallTime = std::min(smallTime, time(small));
        largeTime = std::min(largeTime, time(large));
    }
    return largeTime / smallTime;
}

}  // namespace trv::testing
