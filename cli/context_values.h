#pragma once

/// @file
/// Which values a machine context file gives back as they were.
///
/// Threads: any.

#include <QString>

namespace trv::cli {

/// Why a text does not come back from a file as it is, a clause for a person; empty where it does.
QString whyTextChanges(const QString& text);

/// Reads numbers that make up a whole text, with white space between and around them.
///
/// @param numbers  takes `count` numbers; on a failure some of them
bool readNumbers(const QString& text, double* numbers, int count);

/// Whether the text of a proximity reads back as the number, up to the rounding of single precision
/// and six decimals.
bool comesBack(double value);

}  // namespace trv::cli
