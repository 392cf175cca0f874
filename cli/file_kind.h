#pragma once

/// @file
/// Determines the kind of a project file from its content.

#include <cstdio>

namespace trv::cli {

enum class FileKind { unknown, assembly, axis, machineContext };

/// The kind of a file, which may be faulty. An XML file is an assembly. A file whose second line
/// holds four numbers, or whose first line is the flag 0 or 1, is an axis file. Any other file with
/// a section of a machine context is a machine context.
///
/// @param file  open for reading, at its beginning; its position is undefined afterwards
FileKind kindOf(std::FILE* file);

/// @param file  open for reading; its position is undefined afterwards
bool isEmpty(std::FILE* file);

}  // namespace trv::cli
