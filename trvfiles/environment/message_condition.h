#pragma once

/// @file
/// The condition of an "/if" line.
///
/// Threads: one at a time, with the whole runtime.

#include <string_view>

namespace trv {

/// `undefined` is a comparison with a variable that is not defined, `invalid` one with an operator
/// other than "==" and "!="; neither condition is true.
enum class condition_result { yes, no, undefined, invalid };

/// Evaluates "NAME", "NAME == text" or "NAME != text", with or without brackets around it.
///
/// A name alone asks whether the variable is defined. A comparison is exact, with the value as it
/// was written, references and all, but without trailing blanks.
///
/// @param text  what follows "/if"
condition_result evaluate_condition(std::string_view text);

}  // namespace trv
