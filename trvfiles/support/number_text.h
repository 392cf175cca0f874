#pragma once

/// @file
/// Numbers in files. They always use ".", whatever locale the host has set. The results are those
/// of `printf`, `strtod` and `sscanf` in the C locale.
///
/// Threads: any.

#include <string>
#include <string_view>

namespace trv {

/// Appends `value` as "%*.6f" prints it: six decimals, right-aligned in `width` columns or longer.
/// Every NaN is "nan"; infinities are "inf" and "-inf".
void append_fixed(std::string& text, double value, int width = 0);

/// Appends `value` as "%d" prints it.
void append_decimal(std::string& text, int value);

/// Reads a number as "%lf" does: skips white space and takes the longest valid prefix, hexadecimal
/// numbers, "inf" and "nan" included. A number beyond the range of `double` reads as infinity, one
/// too close to zero as zero.
///
/// @param text   begins after the number then; unchanged if there is none
/// @param value  written if there is a number
/// @return whether there is one
bool scan_number(std::string_view& text, double& value);

/// Reads an integer as "%d" does: skips white space, takes a sign and digits. A value beyond the
/// range of `int` reads as the nearest end of that range. Arguments and result as scan_number().
bool scan_decimal(std::string_view& text, int& value);

/// Skips what "%lf" skips: blanks, tabs, line ends, vertical tabs and form feeds.
void skip_white_space(std::string_view& text);

}  // namespace trv
