#pragma once

/// @file
/// Which values are the same after a machine context is written and read.
///
/// Threads: any.

#include <QString>

namespace trv::cli {

/// Why a file does not give a text back as it is, as a human-readable clause; empty if it does.
QString whyTextChanges(const QString& text);

/// Reads numbers that make up a whole text, with white space between and around them.
///
/// @param numbers  takes `count` numbers; on a failure some of them
bool readNumbers(const QString& text, double* numbers, int count);

/// Whether the text of a proximity reads back as the number, up to the rounding of single precision
/// and six decimals.
bool comesBack(double value);

}  // namespace trv::cli
