#pragma once

/// @file
/// What differs between two assemblies, as text.

#include <cli/difference_walk.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>

#include <QStringList>

#include <ostream>
#include <string>

namespace trv::cli {

/// What differs, in words, without the path: a few texts for one difference.
QStringList textsOf(const Difference& difference);

/// The path of the component; "dimension" for the dimension.
std::string placeOf(const Difference& difference);

/// Prints a line for each difference that a DifferenceWalk finds. The line begins with the path of
/// the component. A difference in vec3, which the comparison of records ignores, is printed as a
/// note.
///
/// @return whether there is a difference, notes not counted: `first != second`
bool printDifferences(const CTrvAssemblyData& first, const CTrvAssemblyData& second,
                      std::ostream& out);

}  // namespace trv::cli
