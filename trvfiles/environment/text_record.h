#pragma once

/// @file
/// Where a text of a store comes from.

#include <cstdint>

namespace trv {

/// The record of a text. It is directly before the text in the store.
struct text_record {
    /// The registered file name, or -1 for a text that was set by program.
    std::int32_t file;
    /// The text that this one replaced, or -1.
    std::int32_t previous;
    /// The line in the file, modulo 65536; 0 for a text that was set by program.
    std::uint16_t line;
    /// persistent_text and deleted_text, or'ed.
    std::uint8_t flags;
    /// 0.
    std::uint8_t reserved;
};

/// In the flags: added while the record flag was on. If such a text is set by program, it is saved
/// with every file.
inline constexpr std::uint8_t persistent_text = 1;
/// In the flags: removed. Lookups by name ignore the text.
inline constexpr std::uint8_t deleted_text = 2;

}  // namespace trv
