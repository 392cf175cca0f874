#pragma once

/// @file
/// Expansion into buffers of the caller's: NUL-terminated ones, and fields of fixed length that are
/// padded with blanks.
///
/// Each error is reported through the error channel. A source may be the result of an earlier
/// lookup: it is copied before anything is looked up.
///
/// Threads: any, as far as the lookups allow (see variables.h).

#include <trvfiles/environment/expansion_status.h>
#include <trvfiles/export.h>

#include <cstdint>

namespace trv {

/// expand_path() into a NUL-terminated buffer.
///
/// @param source       null is EXP_INVALID_ARGUMENT
/// @param destination  written only if there is no error; may overlap the source. Null is
///                     EXP_INVALID_ARGUMENT.
/// @param size         of the destination; the result needs its length and one byte. Nothing fits
///                     a size of 0 or below.
/// @return as expand_path(), or EXP_BUFFER_TOO_SMALL
TRV_EXPORT int _Expand(const char* source, char* destination, std::int32_t size);

/// _Expand() of a text in place.
TRV_EXPORT int _ExpandInPlace(char* text, std::int32_t size);

/// expand_variables() of a text in place, so that its separators stay. Otherwise as
/// _ExpandInPlace(), but the size of the buffer is never watched (TRV_EXPAND_MIN_BUFFER_SIZE).
TRV_EXPORT int _ExpandText(char* text, std::int32_t size);

/// expand_path() of a field of fixed length into another, which is filled up with blanks and not
/// terminated.
///
/// @param source              its text ends before its trailing blanks and before a zero byte
/// @param destination         written only if there is no error; may overlap the source
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
