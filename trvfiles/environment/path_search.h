#pragma once

/// @file
/// Finding files along lists of directories. A search reference is a "?" with the name of a path
/// variable, followed by a separator and the name of the file. "?CFG\environ.cfg" is searched in
/// the directories that the path variable CFG lists, separated by ";" or ",".
///
/// Statuses are those of expansion_status.h, and -41 if memory for splitting a list runs out. A
/// search fails with EXP_UNDEFINED if its expansion meets an undefined name. Only
/// config_directory() and first_existing_directory() continue with the null value of that name.
/// Each search sends its steps to the trace channel.
///
/// Threads: one at a time, with the whole runtime.

#include <trvfiles/export.h>

#include <cstdint>

namespace trv {

/// Resolves a name in place: by a search if it has a search reference, otherwise by expansion.
///
/// The last component with a "?" ends the list of directories. The name follows it.
///
/// @param text  NUL-terminated; takes the file found, of at most `size` - 1 characters. After a
///              search without success it holds the first name tried, cut to that length.
/// @return EXP_OK if the file exists;
///         EXP_NOT_FOUND if no such file exists;
///         EXP_BUFFER_TOO_SMALL if the name, the list (8192 characters) or the file found does not
///         fit, and for a size below 1;
///         EXP_NAME_TOO_LONG for a text of 510 characters or more;
///         EXP_INVALID_ARGUMENT for a "?" without a name after it, and for a null text;
///         any other status of the expansion except EXP_OK, after which nothing is searched
TRV_EXPORT int resolve_path(char* text, std::int32_t size);

/// resolve_path() from one blank-padded field of fixed length into another. The text may have 511
/// characters; the result, of at most `result_length`, stays padded with blanks.
///
/// @param code  takes the status; null takes nothing
TRV_EXPORT void resolve_path_fixed(const char* text, std::int32_t length, char* result,
                                   std::int32_t result_length, std::int32_t* code);

/// Whether the path that a field names exists, after expansion. The field itself does not change.
///
/// @param text  blank-padded; 512 characters or more are EXP_BUFFER_TOO_SMALL
/// @param code  takes EXP_OK, EXP_NOT_FOUND or what the expansion gave; null takes nothing
TRV_EXPORT void expand_existing(const char* text, std::int32_t length, std::int32_t* code);

/// The search itself: tries the name in each directory of the list, in order.
///
/// @param list  blank-padded, of up to 512 characters before expansion (else EXP_NAME_TOO_LONG)
///              and 8192 after it; elements are trimmed, and empty ones skipped
/// @param name  blank-padded; takes the file found, which has to be shorter than the field (else
///              EXP_BUFFER_TOO_SMALL and blanks), or for EXP_NOT_FOUND the first name tried, cut
///              to the field
/// @param code  takes EXP_OK, one of the above or what the expansion of the name or the list gave;
///              null takes nothing
TRV_EXPORT void search_list(const char* list, char* name, std::int32_t* code,
                            std::int32_t list_length, std::int32_t name_width);

/// Resolves the file `name` in `directory` and loads it into the message catalogue.
///
/// @return 0; -1 if the two have more than 510 characters together, or if the file is not found or
///         does not load
TRV_EXPORT int load_found_messages(const char* name, const char* directory);

/// first_existing_directory() of "?CFG".
TRV_EXPORT const char* config_directory();

/// The first element of a list, after expansion, that exists and is not the current directory
/// (".", ".\" or "./"). Elements are taken unchanged, with their blanks. A reference to an
/// undefined name reads as its null_value().
///
/// @param list  of up to 1535 characters, before and after expansion
/// @return the element, valid until the next call of this function or of config_directory();
///         nullptr if no element qualifies or the list does not expand
TRV_EXPORT const char* first_existing_directory(const char* list);

}  // namespace trv
