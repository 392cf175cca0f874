#pragma once

/// @file
/// Numbers in assembly files.
///
/// Threads: any.

#include <cstddef>

namespace trv {

/// No number is longer: a sign, 17 digits, a point and an exponent, as in -1.7976931348623157e+308.
inline constexpr std::size_t maxNumberLength = 24;

/// Writes a number as QString::setNum(value, 'g', 17) does: every double reads back as itself. The
/// text has no zero byte at its end.
///
/// @param to  has room for maxNumberLength characters
/// @return the end of the text
char* writeNumber(char* to, double value);

}  // namespace trv
