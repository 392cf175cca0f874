#pragma once

/// @file
/// Loading message files from the directories of a list, and walking the variables that the
/// configuration defines.
///
/// Lists hold directories separated by ";" or ",". If two files define an entry, the one that is
/// loaded later wins. Lists are loaded from the last element to the first, so the first element has
/// the final word.
///
/// A file that cannot be opened or parsed is reported through the fatal channel, which by default
/// ends the process. If a handler returns, the other files are loaded. An existing store keeps what
/// the file gave before the fault. A file with a fault never makes a new store.
///
/// Arguments may be results of earlier lookups: they are copied before anything is looked up.
///
/// Threads: one at a time, with the whole runtime.

#include <trvfiles/environment/message_file.h>
#include <trvfiles/environment/message_store.h>
#include <trvfiles/export.h>

namespace trv {

/// Merges the file of that name from every directory of the list, from the last to the first.
///
/// References in both arguments are expanded. Blanks around an element and one separator at its end
/// do not count. Elements that are empty then, and missing files, are ignored. A path of more than
/// 511 characters counts as that of a missing file.
///
/// @param store           nullptr for a new one, which the first file without a fault makes:
///                        nothing is kept of a file with a fault before it
/// @param directory_list  null acts as empty
/// @param file_name       null acts as empty; an empty name loads nothing
/// @return the store, or a new one, which the caller destroys; nullptr only if storage ran out.
///         After an expansion error, which has been reported, nothing is loaded.
TRV_EXPORT message_store* overload_files(message_store* store, const char* directory_list,
                                         const char* file_name);

/// Merges the file of that name from every configuration directory, for callers with stores of
/// their own.
///
/// @param store           nullptr is refused
/// @param file_name       expanded, at most 511 characters then
/// @param directory_list  likewise; null means "?CFG"
/// @return 0, also for an empty or null file name; -1 without a store or if an expansion failed
TRV_EXPORT int load_config_list(message_store* store, const char* file_name,
                                const char* directory_list);

/// Merges the file of that name from every directory of the list into the application store.
///
/// @param file_name       expanded, at most 511 characters then
/// @param directory_list  likewise; null acts as empty
/// @return 0, also for an empty or null file name; -1 if an expansion failed or storage ran out
TRV_EXPORT int load_application_files(const char* file_name, const char* directory_list);

/// Merges one file into the message catalogue.
///
/// @param path  taken unchanged: no reference in it is expanded
/// @return 0, also if there is a catalogue and the file is missing; -1 if the first file is
///         missing, or if a file cannot be loaded
TRV_EXPORT int load_catalogue_file(const char* path);

/// Walks the entries of section `var` of the environment in their order, loading it if needed.
///
/// @param callback  takes name and value without the blanks around them, with the references of the
///                  value as they are written. Both are valid until it returns. A result other than
///                  0 ends the walk. It may change the store.
/// @param context   passed to the callback
/// @return the result of the callback that ended the walk; 0 at the end. A removed entry and a text
///         without "=" end the walk too, with 0. -1 without a section `var` or a callback.
TRV_EXPORT int for_each_variable(int (*callback)(const char* name, const char* value,
                                                 void* context),
                                 void* context);

}  // namespace trv
