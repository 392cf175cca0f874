#pragma once

/// @file
/// Stores written back to message files.
///
/// The text goes to a temporary file beside the target, which takes the target's place only when it
/// is complete and on the disk. Whatever fails before, and if the process is killed at any moment,
/// the target holds the old file or the new one, whole. On Windows alone there is a moment between
/// them: if the last step fails there, the temporary file stays and holds the new text.
///
/// The records get their new lines, and the file where it changes, only after the target is in
/// place. Comments, blank lines and directives of a file that was loaded are not written.
///
/// Threads: one at a time, with the whole runtime.

#include <trvfiles/environment/message_store.h>
#include <trvfiles/export.h>

namespace trv {

/// Writes the entries that belong to one file: of each message the text that is set by program and
/// persistent, else the newest version that came from this file. Deleted texts and sections
/// without an entry are left out. What is written belongs to the file from then on.
///
/// @param file_name  the target, by which the versions are told too: "/" and "\" are alike, all
///                   else is compared byte for byte. The temporary file has ".messages.tmp" added.
/// @return 0; -1 when the temporary file cannot be opened, which is reported through the fatal
///         channel, when the target's name cannot be registered, which is reported through the
///         error channel, and without a store or a name; the negated system error number when
///         writing, closing or renaming fails
TRV_EXPORT int store_parameters(message_store* store, const char* file_name);

/// Writes every section and every message, deleted ones too. The texts keep the files they came
/// from.
///
/// @param file_name  the target; the temporary file is "messages.tmp" beside it
/// @return as store_parameters()
TRV_EXPORT int store_messages(message_store* store, const char* file_name);

}  // namespace trv
