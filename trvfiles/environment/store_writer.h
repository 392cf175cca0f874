#pragma once

/// @file
/// Stores written back to message files.
///
/// The text goes to a temporary file beside the target, which replaces the target in one step when
/// it is complete and on the disk. If anything fails, and if the process is killed at any moment,
/// the target is the old file or the new one, whole.
///
/// Several processes may save to the same file. The temporary file is locked from the beginning to
/// the end of a save, so they save one after the other: only a later save overwrites one that has
/// reported success. A save waits at most 10 seconds. After that the temporary file counts as one
/// that cannot be opened. Whatever has the name of the temporary file before, left by a killed
/// process or put there by somebody else, is removed and never followed or written to. Only a
/// directory is not removed.
///
/// A save changes the content of the target and nothing else: permission bits stay, owner, group,
/// access control list and extended attributes as far as the system allows it. A target that is a
/// symbolic link stays one: the file to which it leads is replaced, and the temporary file is
/// beside that file. Other hard links to the target keep the old text.
///
/// The records get their new lines and files only after the target is in place. Comments, blank
/// lines and directives of a file that was loaded are not written.
///
/// Threads: one at a time, with the whole runtime.

#include <trvfiles/environment/message_store.h>
#include <trvfiles/export.h>

namespace trv {

/// Writes the entries that belong to one file. Of each message this is the text that is set by
/// program and persistent, otherwise the newest version that came from this file. Deleted texts and
/// sections without an entry are not written. What is written belongs to the file from then on.
///
/// @param file_name  the target. It also selects the versions: "/" and "\" are alike, all else is
///                   compared byte for byte. The temporary file has ".messages.tmp" added.
/// @return 0;
///         -1 if the temporary file cannot be opened (reported through the fatal channel) or the
///         target's name cannot be registered (reported through the error channel), and without a
///         store or a name;
///         the negated system error number if writing, closing or renaming fails
TRV_EXPORT int store_parameters(message_store* store, const char* file_name);

/// Writes every section and every message, deleted ones too. The texts keep the files they came
/// from.
///
/// @param file_name  the target; the temporary file is "messages.tmp" beside it, which all targets
///                   of a directory share, and "messages.tmp.messages.tmp" for a target that is
///                   named "messages.tmp" itself
/// @return as store_parameters()
TRV_EXPORT int store_messages(message_store* store, const char* file_name);

}  // namespace trv
