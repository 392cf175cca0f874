#pragma once

/// @file
/// The peak memory of a workload.

#include <bench/comparison.h>

namespace trv::bench {

/// Runs the workload once in a child process.
///
/// @return the difference of the peak and the initial size of the process, in bytes
double peakMemory(const Workload& work);

}  // namespace trv::bench
