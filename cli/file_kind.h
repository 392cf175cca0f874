#pragma once

/// @file
/// Which kind of project file a file is, by what is in it.

#include <QString>

#include <cstdio>

namespace trv::cli {

enum class FileKind { unknown, assembly, axis, machineContext };

/// Tells the kind of a file that need not be sound: an XML file counts as an assembly; a file whose
/// second line holds four numbers, or whose first line is the flag 0 or 1, as an axis file; any
/// other one in which a section of a machine context begins, as that.
///
/// @param file  open for reading, at its beginning; left anywhere
FileKind kindOf(std::FILE* file);

/// Why a file is of no kind, for a person: it is empty, or something else.
///
/// @param file  open for reading; left anywhere
QString whyUnknown(std::FILE* file);

}  // namespace trv::cli
