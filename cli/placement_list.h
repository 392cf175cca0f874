#pragma once

/// @file
/// The flattened list of an assembly: each placed geometry file with the path of its component.

#include <cli/text_output.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>

#include <QString>

#include <ostream>

namespace trv::cli {

/// A line for each placed file.
void printPlacements(const CTrvAssemblyData& assembly, std::ostream& out);

/// The line with the names of the columns.
void printCsvHeader(std::ostream& out);

/// A line for each placed file.
///
/// @param name   the assembly file
/// @param isRaw  whether texts that a spreadsheet would take for formulas are left as they are
void printPlacementsAsCsv(const QString& name, const CTrvAssemblyData& assembly, bool isRaw,
                          std::ostream& out);

/// The members of a JSON object; docs/command.md lists the keys.
void writePlacements(const QString& name, const CTrvAssemblyData& assembly, JsonWriter& json);

}  // namespace trv::cli
