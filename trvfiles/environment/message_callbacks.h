#pragma once

/// @file
/// What takes the sections and entries of a message file while it is read.

#include <cstdint>

namespace trv {

struct message_store;

/// Takes a section header: the section's index in the store, or -1 to give the file up.
///
/// @param name  what stands between the brackets, blanks included; it stands until the call ends
using section_callback = int (*)(message_store* store, const char* name);

/// Takes an entry: 0, or any other value to give the file up.
///
/// @param section      the index that the section callback gave for the last header
/// @param line         the text without its comment and trailing blanks, but with its leading ones;
///                     it stands until the call ends
/// @param file         the registration of the file's name in the store
/// @param line_number  of the entry in the file, from 1
using entry_callback = int (*)(message_store* store, int section, const char* line,
                               std::int32_t file, int line_number);

}  // namespace trv
