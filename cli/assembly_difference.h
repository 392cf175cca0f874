#pragma once

/// @file
/// What differs between two assemblies.

#include <trvfiles/assembly/CTrvAssemblyData.h>

#include <ostream>

namespace trv::cli {

/// Prints a line for each difference that makes the two records unequal, with the path of the
/// component's names and its places among its siblings. What the records' comparison does not look
/// at, the third vector, is mentioned as a note.
///
/// @return whether there is a difference, notes not counted: `first != second`
bool printDifferences(const CTrvAssemblyData& first, const CTrvAssemblyData& second,
                      std::ostream& out);

}  // namespace trv::cli
