#pragma once

/// @file
/// Numbers in assembly files.
///
/// Threads: any.

#include <string>

namespace trv {

/// Appends a number as QString::setNum(value, 'g', 17) writes it: every double reads back as
/// itself.
void appendNumber(std::string& text, double value);

}  // namespace trv
