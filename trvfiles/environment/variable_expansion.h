#pragma once

/// @file
/// Expansion of references in texts: "$NAME" by the value of a variable, "?NAME" by that of a path
/// variable.
///
/// A name is the longest run of letters, digits and "_" (ASCII), or everything between "{" and the
/// next "}", or between "(" and the next ")". "$$" stands for one "$", "??" for one "?". A value
/// that holds a "$" or "?" is expanded itself. An undefined reference is replaced by null_value()
/// of its name.
///
/// Nothing is expanded without end: a reference inside its own value, a result of more than 16 MiB
/// and more than 1 000 000 replaced references end with EXP_NAME_TOO_LONG. So do values that are
/// open at the same time, one inside the other, and hold more than 16 MiB together.
///
/// Every replaced reference sends a line to the trace channel. A trace handler that a hook sets
/// during a lookup gets the line of that lookup, and verbose mode that it switches on prints it.
/// The functions with an underscore serve callers with buffers of their own and report each error
/// through the error channel; the others report nothing.
///
/// A source may be the result of an earlier lookup: it is copied before anything is looked up.
///
/// Threads: any, as far as the lookups allow (see variables.h); expand_and_search() shares a buffer
/// and is for one thread at a time.

#include <trvfiles/environment/string_format.h>
#include <trvfiles/export.h>

#include <cstdint>
#include <string>
#include <vector>

namespace trv {

enum expansion_status : int {
    EXP_OK = 0,
    EXP_NOT_FOUND = -21,         ///< from the search: no such file
    EXP_SYNTAX_ERROR = -31,      ///< a bracketed name has no closing bracket
    EXP_BUFFER_TOO_SMALL = -32,  ///< the result does not fit the caller's buffer
    EXP_NAME_TOO_LONG = -42,     ///< the expansion has no end, or the search got too long a text
    EXP_UNDEFINED = -43,         ///< complete, but something referenced is undefined: a warning
    EXP_INVALID_ARGUMENT = -44,  ///< a text or a place for the result is missing
};

/// Whether a status means that there is no result. EXP_UNDEFINED has one.
TRV_EXPORT bool is_expand_error(int code);

/// Expands a text.
///
/// @param source  null is EXP_INVALID_ARGUMENT. A list of texts is joined with ";" first. A text
///                ends at its first zero byte.
/// @param output  takes the result and is empty after an error; may be where the source lies. Null
///                is EXP_INVALID_ARGUMENT.
/// @return EXP_OK, EXP_UNDEFINED, EXP_SYNTAX_ERROR, EXP_NAME_TOO_LONG or EXP_INVALID_ARGUMENT
TRV_EXPORT int expand_variables(const char* source, std::string* output);
TRV_EXPORT int expand_variables(const std::string& source, std::string* output);
TRV_EXPORT int expand_variables(const std::vector<std::string>& sources, std::string* output);

/// expand_variables(), then normalize_separators() of the result.
TRV_EXPORT int expand_path(const char* source, std::string* output);
TRV_EXPORT int expand_path(const std::string& source, std::string* output);
TRV_EXPORT int expand_path(const std::vector<std::string>& sources, std::string* output);

/// Finds the file that a text names, as resolve_path() does, through a buffer of up to 1 MiB.
///
/// @param output  takes what resolve_path() left: the file found, or for EXP_NOT_FOUND the first
///                name that was tried. It is empty where the text does not even expand.
/// @return the error of expand_path(), else the status of resolve_path()
TRV_EXPORT int expand_and_search(const char* source, std::string* output);
TRV_EXPORT int expand_and_search(const std::string& source, std::string* output);
TRV_EXPORT int expand_and_search(const std::vector<std::string>& sources, std::string* output);

/// expand_and_search() of the directory, "/" and the file name. A null one is
/// EXP_INVALID_ARGUMENT.
TRV_EXPORT int expand_and_search(const char* directory, const char* file_name, std::string* output);

/// Turns each run of "/" and "\" into one "\", together with every "." that stands between two of
/// them. Everything else stays: "a/../b" gives "a\..\b", "./a" gives ".\a".
TRV_EXPORT std::string normalize_separators(const std::string& path);

/// expand_path() into a NUL-terminated buffer.
///
/// @param source       null is EXP_INVALID_ARGUMENT
/// @param destination  written without an error only; may overlap the source. Null is
///                     EXP_INVALID_ARGUMENT.
/// @param size         of the destination; the result needs its length and one byte. Nothing fits
///                     a size of 0 or below.
/// @return as expand_path(), or EXP_BUFFER_TOO_SMALL
TRV_EXPORT int _Expand(const char* source, char* destination, std::int32_t size);

/// _Expand() of a text where it stands.
TRV_EXPORT int _ExpandInPlace(char* text, std::int32_t size);

/// expand_variables() of a text where it stands, so that its separators stay; otherwise as
/// _ExpandInPlace(), but never watched (see expansion_watch.h).
TRV_EXPORT int _ExpandText(char* text, std::int32_t size);

/// expand_path() of a field of fixed length into another, which is filled up with blanks and not
/// terminated.
///
/// @param source              its text ends before its trailing blanks and before a zero byte
/// @param destination         written without an error only; may overlap the source
/// @param destination_length  the result needs its length: an empty one fits a field of length 0,
///                            of which nothing is written. Nothing fits a length below 0.
/// @param code                takes the status, that of _Expand(); null takes nothing
TRV_EXPORT void _ExpandFixed(const char* source, std::int32_t source_length, char* destination,
                             std::int32_t destination_length, std::int32_t* code);
TRV_EXPORT void _ExpandFixed(char* field, std::int32_t length, std::int32_t* code);

/// _ExpandFixed() over expand_variables(), so that separators stay; never watched.
TRV_EXPORT void _ExpandTextFixed(const char* source, std::int32_t source_length, char* destination,
                                 std::int32_t destination_length, std::int32_t* code);
TRV_EXPORT void _ExpandTextFixed(char* field, std::int32_t length, std::int32_t* code);

}  // namespace trv
