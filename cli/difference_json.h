#pragma once

/// @file
/// What differs between two assemblies, as JSON.

#include <cli/text_output.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>

#include <QString>

#include <ostream>

namespace trv::cli {

/// An assembly, and the name of its file as it was given.
struct NamedAssembly {
    QString name;
    const CTrvAssemblyData& data;
};

/// Prints the differences that a DifferenceWalk finds; docs/command.md lists the keys. They are
/// printed while they are found, so they need no memory.
///
/// @return whether there is a difference, notes not counted: `first.data != second.data`
bool printDifferencesAsJson(const NamedAssembly& first, const NamedAssembly& second,
                            std::ostream& out);

/// Adds the member "differences" of printDifferencesAsJson() to the current object.
void addDifferences(const CTrvAssemblyData& first, const CTrvAssemblyData& second,
                    JsonWriter& writer);

}  // namespace trv::cli
