#pragma once

/// @file
/// Loading message files from the directories of a list, and walking the variables that the
/// configuration defines.
///
/// Lists hold directories separated by ";" or ",". Of two files that define an entry the one loaded
/// later wins; lists are loaded from their last element to the first, so that the first element has
/// the final word.
///
/// A file that cannot be opened or parsed is reported through the fatal channel, which by default
/// ends the process. If a handler returns, the other files are loaded. A store that was there
/// before keeps what the file gave before the fault. A file that would have made a new store gives
/// nothing.
///
/// Texts that are handed over may be results of earlier lookups: they are copied before anything is
/// looked up.
///
/// Threads: one at a time, with the whole runtime.

#include <trvfiles/environment/message_file.h>
#include <trvfiles/environment/message_store.h>
#include <trvfiles/export.h>

namespace trv {

/// Merges the file of that name from every directory of the list, from the last to the first.
///
/// References in both arguments are expanded. Blanks around an element and one separator at its end
/// do not count, elements that are empty then are passed over, missing files too. Paths are at most
/// 511 characters long; a longer one counts as missing.
///
/// @param store           none (null) for a new one, which the first file without a fault makes:
///                        nothing is kept of a file with a fault before it
/// @param directory_list  null acts as empty
/// @param file_name       null acts as empty; an empty name loads nothing
/// @return the store, or a new one, which is the caller's to destroy; none only when storage ran
///         out. An expansion error, which has been reported, loads nothing.
TRV_EXPORT message_store* overload_files(message_store* store, const char* directory_list,
                                         const char* file_name);

/// Merges the file of that name from every configuration directory, for callers with stores of
/// their own.
///
/// @param store           none (null) is refused
/// @param file_name       expanded, at most 511 characters then
/// @param directory_list  likewise; null stands for "?CFG"
/// @return 0, also for an empty or null file name; -1 without a store or when an expansion failed
TRV_EXPORT int load_config_list(message_store* store, const char* file_name,
                                const char* directory_list);

/// Merges the file of that name from every directory of the list into the application store.
///
/// @param file_name       expanded, at most 511 characters then
/// @param directory_list  likewise; null acts as empty
/// @return 0, also for an empty or null file name; -1 when an expansion failed or storage ran out
TRV_EXPORT int load_application_files(const char* file_name, const char* directory_list);

/// Merges one file into the message catalogue.
///
/// @param path  taken as it stands, no reference in it is expanded
/// @return 0, also when a catalogue is there and the file is missing; -1 when it is the first and
///         missing, or when it cannot be loaded
TRV_EXPORT int load_catalogue_file(const char* path);

/// Walks the entries of section `var` of the environment in their order, loading it if needed.
///
/// @param callback  takes name and value, without blanks around them and with the references of the
///                  value as they are written; the texts stand until it returns. A result other
///                  than 0 ends the walk. It may change the store.
/// @param context   handed on
/// @return the result of the callback that ended the walk; 0 at the end, and also at a removed
///         entry or a text without "=", which end it too; -1 without a section `var` or a callback
TRV_EXPORT int for_each_variable(int (*callback)(const char* name, const char* value,
                                                 void* context),
                                 void* context);

}  // namespace trv
