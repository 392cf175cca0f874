#pragma once

/// @file
/// When two records of assemblies are identical.
///
/// Threads: any.

#include <trvfiles/assembly/CTrvAssemblyData.h>

namespace trv::cli {

/// Whether nothing distinguishes two vectors of three numbers: they are compared bit by bit, so -0
/// and 0 differ, and a NaN is identical to itself.
bool areIdentical(const double one[3], const double other[3]);

/// Whether nothing distinguishes two records: dimensions, texts, placements with `vec3`, and the
/// components in order. Numbers are compared bit by bit.
bool areIdentical(const CTrvAssemblyData& one, const CTrvAssemblyData& other);

}  // namespace trv::cli
