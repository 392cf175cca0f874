#pragma once

/// @file
/// What differs between two assemblies.

#include <trvfiles/assembly/CTrvAssemblyData.h>

#include <ostream>

namespace trv::cli {

/// Prints a line for each difference that makes the two records unequal. The line begins with the
/// path of the component: the names from the root down, each with its place among its siblings. A
/// difference in vec3, which the comparison of records ignores, is printed as a note.
///
/// @return whether there is a difference, notes not counted: `first != second`
bool printDifferences(const CTrvAssemblyData& first, const CTrvAssemblyData& second,
                      std::ostream& out);

}  // namespace trv::cli
