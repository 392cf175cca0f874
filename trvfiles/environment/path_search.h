#pragma once

/// @file
/// Finding files along lists of directories. A search reference is a "?" with the name of a path
/// variable, followed by a separator and the name of the file: "?CFG\environ.cfg" is searched for
/// in the directories that the path variable CFG lists, separated by ";" or ",".
///
/// Statuses are those of variable_expansion.h, and -41 where memory for splitting a list runs out.
/// A search whose expansion meets an undefined name fails: its EXP_UNDEFINED is returned. Only
/// config_directory() and first_existing_directory() go on with the null value of that name. Each
/// search sends its steps to the trace channel.
///
/// Threads: one at a time, with the whole runtime.

#include <trvfiles/export.h>

#include <cstdint>

namespace trv {

/// Resolves a name where it stands: by a search where it has a search reference, else by expansion.
///
/// The last component that holds a "?" ends the list of directories; the name is what follows it.
///
/// @param text  NUL-terminated; takes the file found, of at most `size` - 1 characters. After a
///              search without success it holds the first name tried, cut to that length.
/// @return EXP_OK, and the file exists;
///         EXP_NOT_FOUND where no such file exists;
///         EXP_BUFFER_TOO_SMALL where the name, the list (8192 characters) or the file found does
///         not fit, and for a size below 1;
///         EXP_NAME_TOO_LONG for a text of 510 characters or more;
///         EXP_INVALID_ARGUMENT for a "?" without a name behind it, and for a null text;
///         any other status but EXP_OK of the expansion, after which the text is not searched for
TRV_EXPORT int resolve_path(char* text, std::int32_t size);

/// resolve_path() from one blank-padded field of fixed length into another. The text may have 511
/// characters; the result, of at most `result_length`, stays padded with blanks.
///
/// @param code  takes the status; null takes nothing
TRV_EXPORT void resolve_path_fixed(const char* text, std::int32_t length, char* result,
                                   std::int32_t result_length, std::int32_t* code);

/// Whether what a field names exists after expansion, of which the field itself sees nothing.
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
/// @return 0, or -1 where the two are too long together (more than 510 characters), the file is
///         not found or it does not load
TRV_EXPORT int load_found_messages(const char* name, const char* directory);

/// first_existing_directory() of "?CFG".
TRV_EXPORT const char* config_directory();

/// The first element of a list, after expansion, that exists and is not the current directory
/// (".", ".\" or "./"). Elements are taken as they stand, blanks included. A reference to an
/// undefined name reads as its null_value().
///
/// @param list  of up to 1535 characters, before and after expansion
/// @return the element, good until the next call of this function or config_directory(); none
///         (null) where nothing qualifies or the list does not expand
TRV_EXPORT const char* first_existing_directory(const char* list);

}  // namespace trv
