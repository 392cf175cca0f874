#pragma once

/// @file
/// How much memory a piece of work takes at its most.

#include <bench/comparison.h>

namespace trv::bench {

/// Runs the work once in a child process.
///
/// @return by how many bytes the process grew at its largest, over what it had at the start
double peakMemory(const Work& work);

}  // namespace trv::bench
