#pragma once

/// @file
/// The work zone's temporary directory.
///
/// A work zone is the directory that the variable TRVZONE names. Its file workzone.num holds a
/// number, and the temporary directory is the directory of that number in $TRVTMP. A new zone gets
/// the next number of the installation's file $TRVCONF/workzone.num, or, if TRVCONF is not defined,
/// $TRVHOME/client/trvconf/workzone.num. The library never creates that file.
///
/// Several processes may start zones at the same moment, also the same zone. The installation's
/// file is locked while a number is taken from it, so no number is given twice. A zone's file
/// appears with its whole number. If several processes create it, the first one does, and the
/// others take the number that they find. Their own numbers are not used again. A process waits at
/// most 10 seconds for a lock. After that the file counts as one that cannot be opened.
///
/// Threads: one at a time, with the whole runtime.

#include <trvfiles/export.h>

namespace trv {

/// The temporary directory, which is created if it is missing. It is the value of the variable
/// "TMP".
///
/// If the environment variable TRVTMPDIR is set and not empty, its value is returned unchanged, and
/// nothing is checked or created. Otherwise the path, separated by "\", is computed once in a
/// process.
///
/// An undefined TRVZONE, an undefined TRVHOME if the counter is looked for there, and a file that
/// cannot be read or written are reported through the fatal channel, which by default ends the
/// process. An undefined TRVTMP is not reported: the result is nullptr.
///
/// @return nullptr if the path cannot be computed, and for a call from within this one: a zone may
///         not depend on its own temporary directory. A directory that cannot be created is
///         reported, and returned nevertheless. The text is valid until TRVTMPDIR changes.
TRV_EXPORT const char* get_temporary_directory();

/// Sets the environment variable TRVTMPDIR to exactly this text. An empty or null directory removes
/// it.
TRV_EXPORT void set_temporary_directory(const char* directory);

/// A function of the host that may set TRVZONE just before it is looked up.
using zone_hook = void (*)();

/// The same with a pointer of the host's.
using context_zone_hook = void (*)(void* context);

/// Registers the function that is called before every lookup of TRVZONE, but not while it runs. It
/// replaces a function of either kind.
///
/// @param hook  nullptr removes the function
/// @return the function registered before; nullptr if there was none, or one with a context
TRV_EXPORT zone_hook set_zone_hook(zone_hook hook);

/// set_zone_hook() for a function with a context.
///
/// @param hook     nullptr removes the function
/// @param context  passed to the function; has to live until the function is replaced. May be
///                 nullptr
TRV_EXPORT void set_context_zone_hook(context_zone_hook hook, void* context);

}  // namespace trv
