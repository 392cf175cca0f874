#pragma once

/// @file
/// Determines the kind of a project file from its content.

#include <cstddef>
#include <string_view>

namespace trv::cli {

enum class FileKind { unknown, assembly, axis, machineContext };

/// How many bytes at most decide about the kind of a file: geometry files are long.
inline constexpr std::size_t examinedLength = std::size_t{1} << 20;

/// Whether a file with this beginning is an assembly, as far as kindOf() can tell.
bool looksLikeXml(std::string_view beginning);

/// The kind of a file, which may be faulty. An XML file is an assembly. A file whose second line
/// holds four numbers, or whose first line is the flag 0 or 1, is an axis file. Any other file with
/// a section of a machine context is a machine context.
///
/// @param beginning  the first `examinedLength` bytes of the file, or all if there are fewer; of an
///                   XML file at least 512
FileKind kindOf(std::string_view beginning);

}  // namespace trv::cli
