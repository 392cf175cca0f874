#pragma once

/// @file
/// Message files and environ.cfg files: sections of entries, one a line, with comments and
/// conditional blocks.
///
/// A file that breaks the rules is reported through the fatal channel, which by default ends the
/// process. The results below apply if the host's handler returns.
///
/// Threads: one at a time, with the whole runtime.

#include <trvfiles/environment/message_store.h>
#include <trvfiles/export.h>

#include <cstdint>

class VCL8BLineSource;

namespace trv {

/// Receives a section header.
///
/// @param name  the text between the brackets, with its blanks; valid until the call ends
/// @return the section's index in the store; -1 to abort the parse
using section_callback = int (*)(message_store* store, const char* name);

/// Receives an entry.
///
/// @param section      the index that the section callback gave for the last header
/// @param line         the text with its leading blanks, but without its comment and its trailing
///                     blanks; valid until the call ends
/// @param file         the registration of the file's name in the store
/// @param line_number  of the entry in the file, from 1
/// @return 0; any other value aborts the parse
using entry_callback = int (*)(message_store* store, int section, const char* line,
                               std::int32_t file, int line_number);

/// Reads lines of at most 1023 characters to the end of the source and passes headers and entries
/// to the callbacks. Entries above the first header are ignored. The callbacks may throw.
///
/// @param source     owned by the caller
/// @param file_name  the name under which the entries are registered and errors reported
/// @return 0 if the end was reached, and also if the parse was aborted before, which has then been
///         reported; -1 without a store or a callback, or if the name cannot be registered. With -1
///         no line has been read.
TRV_EXPORT int load_messages(message_store* store, VCL8BLineSource& source, const char* file_name,
                             section_callback section, entry_callback entry);

/// The callbacks with a pointer of the host's, which they get with each call.
using context_section_callback = int (*)(message_store* store, const char* name, void* context);
using context_entry_callback = int (*)(message_store* store, int section, const char* line,
                                       std::int32_t file, int line_number, void* context);

/// load_messages() for callbacks with a context.
///
/// @param context  passed to both callbacks; may be nullptr
TRV_EXPORT int load_messages(message_store* store, VCL8BLineSource& source, const char* file_name,
                             context_section_callback section, context_entry_callback entry,
                             void* context);

/// Loads a file.
///
/// Without a store a new one is made: each header adds a section, each entry the next message of
/// its section. Into a store the file is merged: a header finds the section of its name or adds
/// it, an entry replaces that of the same name or is added, as set_parameter() does.
///
/// @param store  nullptr for a new store
/// @param path   taken unchanged: no reference in it is expanded. null acts as empty. It may be a
///               text of the store.
/// @return the store. If the file is missing, an existing store is returned unchanged, and nullptr
///         instead of a new one. nullptr if the file exists and cannot be opened or read to its
///         end, if its parse was aborted, or if storage ran out. An existing store is not destroyed
///         then, and keeps what it has taken so far. The caller destroys a new store.
TRV_EXPORT message_store* load_message_file(message_store* store, const char* path);

}  // namespace trv
