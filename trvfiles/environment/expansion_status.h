#pragma once

/// @file
/// The statuses of expansions and of searches for files.

namespace trv {

/// What an expansion or a search returns.
enum expansion_status : int {
    EXP_OK = 0,
    EXP_NOT_FOUND = -21,         ///< from a search: no such file
    EXP_SYNTAX_ERROR = -31,      ///< a bracketed name has no closing bracket
    EXP_BUFFER_TOO_SMALL = -32,  ///< the result does not fit the caller's buffer
    EXP_NAME_TOO_LONG = -42,     ///< the expansion has no end, or the search got too long a text
    EXP_UNDEFINED = -43,         ///< complete, but something referenced is undefined: a warning
    EXP_INVALID_ARGUMENT = -44,  ///< a text or a place for the result is missing
};

}  // namespace trv
