#pragma once

/// @file
/// Saving a store under a lock that the caller holds already.
///
/// Threads: one at a time, with the whole runtime.

#include <trvfiles/environment/file_replacement.h>
#include <trvfiles/environment/message_store.h>

namespace trv {

/// store_parameters() for a caller that has read or checked something since it holds the target.
///
/// @param held  a replacement of this very target. If it could not be opened, this is reported
/// here,
///              through the fatal channel, and the result is -1.
int store_parameters(message_store* store, const char* file_name, file_replacement& held);

}  // namespace trv
