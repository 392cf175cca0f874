#pragma once

/// @file
/// The parts of a plain document (see plain_scanner.h) that are judged as a whole.
///
/// Threads: any.

#include <string_view>

namespace trv {

/// Whether a declaration is one of a plain document: version 1.0 and then, if the encoding is
/// named, UTF-8 in any case.
///
/// @param text  the part between "<?xml" and "?>"
bool isPlainDeclaration(std::string_view text);

/// Resolves the references in the value of an attribute: the five predefined entities, and
/// references to the characters below U+FFFE that XML allows.
///
/// @param value  in memory that may be written; shorter afterwards
/// @return false, with the value in an undefined state, if there is any other reference
bool resolveReferences(std::string_view& value);

}  // namespace trv
