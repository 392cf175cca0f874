#pragma once

/// @file
/// The peak memory of a workload.

#include <bench/comparison.h>

namespace trv::bench {

/// Prepares and runs the workload once in a child process. To prepare is to run the same code on
/// less data, so that its pages count as memory of the program.
///
/// @return the difference of the peak size of the process and its size after the preparation, in
///         bytes
double peakMemory(const Workload& work);

}  // namespace trv::bench
