#pragma once

/// @file
/// The definitions of an entry: the one that counts, and those that it replaced.
///
/// Threads: one at a time, with the whole runtime.

#include <trvfiles/environment/message_store.h>
#include <trvfiles/export.h>

namespace trv {

/// One definition of an entry.
struct definition {
    /// "NAME = value" as it was given: a "+" means the value of the definition before.
    const char* text;
    /// The name of the file as it was registered; nullptr if the definition was set by program.
    const char* file;
    /// The line in the file, modulo 65536; 0 if the definition was set by program.
    int line;
};

/// Walks the definitions of the first entry of a name that is not deleted, from the newest one,
/// which counts, to the oldest. For a variable the store is environment_store() and the section
/// "var", for a path list "path".
///
/// @param store     not loaded here: get_variable() does that
/// @param section   the index of a section
/// @param name      null acts as empty
/// @param exact     whether case counts. Only ASCII letters have case.
/// @param callback  takes a definition, whose texts are valid until it returns. A result other than
///                  0 ends the walk. It may add to the store.
/// @param context   passed to the callback
/// @return the result of the callback that ended the walk; 0 at the end. -1 for a bad section,
///         without a store or a callback, and if there is no entry of the name
/// @throws std::bad_alloc
TRV_EXPORT int for_each_definition(const message_store* store, int section, const char* name,
                                   bool exact,
                                   int (*callback)(const definition& definition, void* context),
                                   void* context);

}  // namespace trv
