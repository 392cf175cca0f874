#pragma once

/// @file
/// The work zone's temporary directory.
///
/// A work zone is the directory that the variable TRVZONE names. Its file workzone.num holds a
/// number, and the temporary directory is the directory of that number in $TRVTMP. A new zone gets
/// the next number of the installation's file $TRVCONF/workzone.num, or, if TRVCONF is not defined,
/// $TRVHOME/client/trvconf/workzone.num. That file is never created here.
///
/// Several processes may start zones at the same moment, the same zone included. The installation's
/// file is locked while a number is taken from it, so that no number is given twice. A zone's file
/// appears with its whole number; of several processes that create it one is the first, and the
/// others take the number that they find. Their own numbers are not used again. A process waits 10
/// seconds at most for a lock; then the file counts as one that cannot be opened.
///
/// Threads: one at a time, with the whole runtime.

#include <trvfiles/export.h>

namespace trv {

/// The temporary directory, which is made if it is missing: what the variable "TMP" yields.
///
/// If the environment variable TRVTMPDIR is set, and not empty, that is its value as it stands, and
/// nothing is looked at or made. Otherwise the path, separated by "\", is worked out once in a
/// process.
///
/// An undefined TRVZONE, an undefined TRVHOME if the counter is looked for there, and a file that
/// cannot be read or written are reported through the fatal channel, which by default ends the
/// process. An undefined TRVTMP reports nothing: the result is none.
///
/// @return none (null) where the path cannot be worked out, and for a call that comes from within
///         this one: a zone may not depend on its own temporary directory. A directory that cannot
///         be made is reported, and returned all the same. The text is good until TRVTMPDIR
///         changes.
TRV_EXPORT const char* get_temporary_directory();

/// Sets the environment variable TRVTMPDIR, as it stands; an empty or null directory removes it.
TRV_EXPORT void set_temporary_directory(const char* directory);

/// A function of the host that may set TRVZONE late.
using zone_hook = void (*)();

/// Registers the function that is called before every lookup of TRVZONE, but not while it runs.
///
/// @param hook  null for none
/// @return the function registered before, or null
TRV_EXPORT zone_hook set_zone_hook(zone_hook hook);

}  // namespace trv
