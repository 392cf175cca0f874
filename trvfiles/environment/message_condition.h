#pragma once

/// @file
/// The condition of an "/if" line.
///
/// Threads: one at a time, with the whole runtime.

#include <string_view>

namespace trv {

/// `undefined`: a comparison with a variable that is not defined. `invalid`: a comparison with an
/// operator other than "==" and "!=". Neither condition is true.
enum class condition_result { yes, no, undefined, invalid };

/// Evaluates "NAME", "NAME == text" or "NAME != text", with or without brackets around it.
///
/// A name alone asks whether the variable is defined. A comparison is exact. It takes the value as
/// it is written, with its references, but without trailing blanks.
///
/// @param text  the rest of the line after "/if"
condition_result evaluate_condition(std::string_view text);

}  // namespace trv
