#pragma once

/// @file
/// The parser of load_messages(): comments, conditional blocks, section headers and entries of one
/// message file.
///
/// Threads: one at a time, with the whole runtime.

#include <trvfiles/environment/message_file.h>

class VCL8BLineSource;

namespace trv {

/// The callbacks that take a file's headers and entries.
struct message_sink {
    context_section_callback section;
    context_entry_callback entry;
    /// Passed to both.
    void* context = nullptr;
};

/// `aborted`: a callback or a fault in the file has ended the parse early, which has been reported.
/// `not_registered`: as -1 of load_messages().
enum class parse_result { complete, aborted, not_registered };

/// load_messages() with a result that distinguishes an aborted parse from a complete one.
parse_result parse_messages(message_store* store, VCL8BLineSource& source, const char* file_name,
                            const message_sink& sink);

}  // namespace trv
