#pragma once

/// @file
/// The parts of a stored text: the name and the value of an entry, and the references by which a
/// text includes the value of the one that it replaced.
///
/// Threads: any.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace trv {

/// Whether a text is an entry, "NAME = value".
bool is_entry(std::string_view text);

/// The name of an entry, without the blanks around it. REQUIRES: is_entry().
std::string_view entry_name(std::string_view text);

/// Whether an entry has this name. If case is ignored, that means ASCII letters only. The result is
/// that of a comparison with entry_name(), but takes no walk to the end of the text. REQUIRES:
/// is_entry().
bool is_named(const char* entry, std::string_view name);
bool is_named_ignoring_case(const char* entry, std::string_view name);

/// The value of an entry without its leading blanks. For any other text, the text without its
/// leading blanks.
std::string_view entry_value(std::string_view text);

/// The length of "+(XXXXXXXX)".
inline constexpr std::size_t reference_length = 11;

/// Reads a reference at the very beginning of a text.
///
/// @param offset  set if there is one. An offset above INT32_MAX, which no store has, reads as -1.
/// @return whether the text begins with "+(", eight hexadecimal digits of either case and ")"
bool read_reference(std::string_view text, std::int32_t& offset);

/// An offset as the eight hexadecimal digits of a reference.
std::string offset_text(std::int32_t offset);

/// The text with each single "+" of its value turned into a reference. A "++" stays. A text that is
/// not an entry is all value here.
std::string with_references(std::string_view text, std::int32_t offset);

/// The inverse of with_references(): after each single "+" of the value, everything up to and with
/// the next ")" is removed. If no ")" follows, the rest of the text stays.
std::string without_references(std::string_view text);

}  // namespace trv
