#pragma once

/// @file
/// How a command writes an assembly file.

#include <cli/input_files.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/environment/file_replacement.h>

namespace trv::cli {

/// Writes an assembly file. The old file is whole until the new one takes its place. Before that,
/// the new file is read back: if it does not give an identical record, nothing is replaced.
///
/// @param held  what holdFile() has returned for the name
Problem saveAssembly(const QString& name, const CTrvAssemblyData& data, file_replacement* held);

/// Why saveAssembly() would not write a record, whatever the file. Nothing is written.
Problem whyNotSaved(const CTrvAssemblyData& data);

}  // namespace trv::cli
