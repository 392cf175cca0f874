#pragma once

/// @file
/// The texts of numbers in assembly files.
///
/// Threads: any.

#include <string_view>

namespace trv {

/// Reads a number as QString::toDouble() does, bit for bit.
///
/// @param text   UTF-8
/// @param value  takes the number. It is also written if the text is not a number: 0, or an
///               infinity for a number out of range.
/// @return whether the whole text is a number in the range of double
bool readNumber(std::string_view text, double& value);

}  // namespace trv
