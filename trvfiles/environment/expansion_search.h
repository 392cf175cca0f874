#pragma once

/// @file
/// Expansion of a text to the path of an existing file.
///
/// Threads: one at a time: all searches share one buffer.

#include <trvfiles/environment/expansion_status.h>
#include <trvfiles/export.h>

#include <string>
#include <vector>

namespace trv {

/// Finds the file that a text names, as resolve_path() does, through a buffer of up to 1 MiB.
///
/// @param output  takes what resolve_path() left: the file found, or for EXP_NOT_FOUND the first
///                name that was tried. It is empty if the text does not even expand.
/// @return the error of expand_path(), else the status of resolve_path()
TRV_EXPORT int expand_and_search(const char* source, std::string* output);
TRV_EXPORT int expand_and_search(const std::string& source, std::string* output);
TRV_EXPORT int expand_and_search(const std::vector<std::string>& sources, std::string* output);

/// expand_and_search() of the directory, "/" and the file name. If one of them is null, the result
/// is EXP_INVALID_ARGUMENT.
TRV_EXPORT int expand_and_search(const char* directory, const char* file_name, std::string* output);

}  // namespace trv
