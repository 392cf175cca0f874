#pragma once

/// @file
/// The kind of a project file, found by its content.

#include <QString>

#include <cstdio>

namespace trv::cli {

enum class FileKind { unknown, assembly, axis, machineContext };

/// Finds the kind of a file, also of a broken one: an XML file is an assembly; a file whose second
/// line holds four numbers, or whose first line is the flag 0 or 1, is an axis file; any other one
/// that has a section of a machine context is a machine context.
///
/// @param file  open for reading, at its beginning; left anywhere
FileKind kindOf(std::FILE* file);

/// Why the kind of a file is unknown, human-readable: it is empty, or something else.
///
/// @param file  open for reading; left anywhere
QString whyUnknown(std::FILE* file);

}  // namespace trv::cli
