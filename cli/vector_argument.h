#pragma once

/// @file
/// Three numbers in one argument, such as "10,0,-2.5".
///
/// Threads: any.

#include <QString>

namespace trv::cli {

/// @param numbers  takes three finite numbers; on a failure some of them
/// @return whether the text is three finite numbers with commas between them
bool readVector(const QString& text, double* numbers);

}  // namespace trv::cli
