#pragma once

/// @file
/// The value of a text with all its references replaced by the values of the texts they name.
///
/// Threads: one at a time, with the store.

#include <cstddef>
#include <cstdint>
#include <string>

namespace trv {

struct message_store;

/// The limits of one resolution.
inline constexpr std::size_t max_resolved_length = std::size_t{1} << 20;
inline constexpr int max_resolved_references = 10000;

/// Resolves the value of a text from left to right, including inserted values:
/// - "++" becomes "+";
/// - a defined reference becomes the value of its text;
/// - the "+" of an undefined reference becomes "$(TRVNULL)".
///
/// A reference is defined if a text begins at its offset and was stored before the text with the
/// "+". So every chain ends. If a limit would be exceeded, the rest stays as it is.
///
/// Each replacement is reported to the observer, which may look up and add to the store.
///
/// @param text  the offset of a text in the store
std::string resolve_references(const message_store& store, std::int32_t text);

}  // namespace trv
