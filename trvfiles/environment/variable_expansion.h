#pragma once

/// @file
/// Expansion of references in texts: "$NAME" by the value of a variable, "?NAME" by that of a path
/// variable.
///
/// A name is the longest run of letters, digits and "_" (ASCII), or everything between "{" and the
/// next "}", or between "(" and the next ")". "$$" is one "$", "??" is one "?". A value with a "$"
/// or "?" is expanded itself. An undefined reference is replaced by null_value() of its name.
///
/// Limits, each of which ends the expansion with EXP_NAME_TOO_LONG:
/// - a reference inside its own value;
/// - a result of more than 16 MiB;
/// - more than 1 000 000 replaced references;
/// - values that are open at the same time, one inside the other, of more than 16 MiB together.
///
/// Every replaced reference sends a line to the trace channel. A trace handler that a hook sets
/// during a lookup receives the line of that lookup, and verbose mode that a hook switches on
/// prints it. The functions here report no errors. Those for buffers of the caller's, in
/// expansion_buffers.h, report each error through the error channel.
///
/// A source may be the result of an earlier lookup: it is copied before anything is looked up.
///
/// Threads: any, as far as the lookups allow (see variables.h). expand_and_search() is for one
/// thread at a time.

#include <trvfiles/environment/expansion_buffers.h>  // IWYU pragma: export
#include <trvfiles/environment/expansion_search.h>   // IWYU pragma: export
#include <trvfiles/environment/expansion_status.h>   // IWYU pragma: export
#include <trvfiles/environment/string_format.h>      // IWYU pragma: export
#include <trvfiles/export.h>

#include <string>
#include <vector>

namespace trv {

/// Whether a status means that there is no result. EXP_UNDEFINED has one.
TRV_EXPORT bool is_expand_error(int code);

/// Expands a text.
///
/// @param source  null is EXP_INVALID_ARGUMENT. A list of texts is joined with ";" first. A text
///                ends at its first zero byte.
/// @param output  takes the result and is empty after an error. The source may be in it. Null is
///                EXP_INVALID_ARGUMENT.
/// @return EXP_OK, EXP_UNDEFINED, EXP_SYNTAX_ERROR, EXP_NAME_TOO_LONG or EXP_INVALID_ARGUMENT
TRV_EXPORT int expand_variables(const char* source, std::string* output);
TRV_EXPORT int expand_variables(const std::string& source, std::string* output);
TRV_EXPORT int expand_variables(const std::vector<std::string>& sources, std::string* output);

/// expand_variables(), then normalize_separators() of the result.
TRV_EXPORT int expand_path(const char* source, std::string* output);
TRV_EXPORT int expand_path(const std::string& source, std::string* output);
TRV_EXPORT int expand_path(const std::vector<std::string>& sources, std::string* output);

/// Turns each run of "/" and "\" into one "\", together with every "." between two of them. All
/// else stays: "a/../b" gives "a\..\b", "./a" gives ".\a".
TRV_EXPORT std::string normalize_separators(const std::string& path);

}  // namespace trv
