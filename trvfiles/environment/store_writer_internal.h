#pragma once

/// @file
/// What store_writer.cpp gives to the library's own sources: saving a store under a lock that the
/// caller holds already.
///
/// Threads: one at a time, with the whole runtime.

#include <trvfiles/environment/file_replacement.h>
#include <trvfiles/environment/message_store.h>

#include <string>
#include <string_view>

namespace trv {

/// store_parameters() for a caller that has read or checked something under the lock.
///
/// @param held  a replacement of this target. If it is not open, the function reports this through
///              the fatal channel and returns -1.
int store_parameters(message_store* store, const char* file_name, file_replacement& held);

/// The text that store_parameters() writes, with LF as line end. The records keep their files and
/// lines.
///
/// @param file_name  selects the versions, as for store_parameters(); an empty one selects none but
///                   those that are set by program
std::string parameters_text(const message_store& store, std::string_view file_name);

/// Reports through the fatal channel that the temporary file of a save cannot be opened.
void report_not_opened(const std::string& temporary_path);

}  // namespace trv
