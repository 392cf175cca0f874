#pragma once

/// @file
/// How readers and writers fill a CFileFault. Nothing is done for nullptr, so that a reader calls
/// these functions without asking whether its caller wants to know.
///
/// Threads: any.

#include <trvfiles/support/CFileFault.h>

#include <string>
#include <string_view>

namespace trv {

/// Empties the structure, as each call does that begins to read or write a file.
void clear_fault(CFileFault* fault);

/// Stores the reason of a failure and its place. The notes stay.
///
/// @param reason   a constant text if possible: without a `fault` it then costs nothing
/// @param subject  what the cause is about
void set_fault(CFileFault* fault, CFileFault::Cause cause, std::string_view reason, int line = 0,
               int column = 0, std::string_view subject = {});

/// Stores a failure of the system and the system's words for it.
///
/// @param error  an `errno` value
void set_system_fault(CFileFault* fault, int error);

/// A text of a file as it is quoted: cut off after 40 bytes, between two characters, with "..."
/// after it then.
///
/// @param text  in UTF-8
std::string beginning_of(std::string_view text);

/// The same in quotes.
std::string quoted_beginning(std::string_view text);

/// The same of a text that should be a number. A decimal comma is named as the reason.
std::string quoted_number(std::string_view text);

}  // namespace trv
