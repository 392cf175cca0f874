#pragma once

/// @file
/// What the texts of a store are made of: the name and the value of an entry, and the references
/// by which a text takes in the one it replaced.
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

/// Whether an entry has this name; the letters alone fold where case is ignored. As comparing
/// entry_name() would tell, but without a walk to the end of the text. REQUIRES: is_entry().
bool is_named(const char* entry, std::string_view name);
bool is_named_ignoring_case(const char* entry, std::string_view name);

/// The value of an entry, without its leading blanks. Of a text that is no entry, all of it without
/// its leading blanks.
std::string_view entry_value(std::string_view text);

/// The length of "+(XXXXXXXX)".
inline constexpr std::size_t reference_length = 11;

/// Reads a reference at the very beginning of a text.
///
/// @param offset  written where there is one; an offset that no store can have reads as -1
/// @return whether the text begins with "+(", eight hexadecimal digits of either case and ")"
bool read_reference(std::string_view text, std::int32_t& offset);

/// An offset as the eight hexadecimal digits that stand in a reference.
std::string offset_text(std::int32_t offset);

/// The text with each single "+" of its value made a reference. A "++" stays. A text that is no
/// entry is all value here.
std::string with_references(std::string_view text, std::int32_t offset);

/// The way back: behind each single "+" of the value all is taken out up to and with the next ")".
/// Where no ")" follows, the text stays.
std::string without_references(std::string_view text);

}  // namespace trv
