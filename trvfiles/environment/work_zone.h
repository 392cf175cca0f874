#pragma once

/// @file
/// The work zone's temporary directory.
///
/// A work zone is the directory that the variable TRVZONE names. Its file workzone.num holds a
/// number, and the temporary directory is the directory of that number in $TRVTMP. A new zone draws
/// the next number from the installation's file $TRVCONF/workzone.num, or, where TRVCONF is not
/// defined, $TRVHOME/client/trvconf/workzone.num. That file is never created here, and it is not
/// locked: two processes that start new zones at the same moment may draw the same number.
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
