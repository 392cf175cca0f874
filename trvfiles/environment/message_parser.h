#pragma once

/// @file
/// The parser behind load_messages(): comments, conditional blocks, section headers and entries of
/// one message file.
///
/// Threads: one at a time, with the whole runtime.

#include <trvfiles/environment/message_file.h>

class VCL8BLineSource;

namespace trv {

/// The callbacks that take a file's headers and entries.
struct message_sink {
    section_callback section;
    entry_callback entry;
};

/// `aborted` is a parse that a callback or the file itself has ended early; it has been reported.
enum class parse_result { complete, aborted, not_registered };

/// As load_messages(), telling an aborted parse from a complete one.
parse_result parse_messages(message_store* store, VCL8BLineSource& source, const char* file_name,
                            const message_sink& sink);

}  // namespace trv
