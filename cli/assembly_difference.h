#pragma once

/// @file
/// What differs between two assemblies, as text.

#include <trvfiles/assembly/CTrvAssemblyData.h>

#include <ostream>

namespace trv::cli {

/// Prints a line for each difference that a DifferenceWalk finds. The line begins with the path of
/// the component. A difference in vec3, which the comparison of records ignores, is printed as a
/// note.
///
/// @return whether there is a difference, notes not counted: `first != second`
bool printDifferences(const CTrvAssemblyData& first, const CTrvAssemblyData& second,
                      std::ostream& out);

}  // namespace trv::cli
