#pragma once

/// @file
/// The watch for callers whose buffers are smaller than an installation wants them to be. It logs
/// them and can stop the process at a call that is searched for.
///
/// Environment variables:
/// - TRV_EXPAND_MIN_BUFFER_SIZE: the minimum in characters, read at every call. Absent or 0
///   switches the watch off; a negative one traps at every buffer below its absolute value.
/// - TRV_EXPAND_WATCH: pieces of source texts, separated by " ", "|" or ";", at which a positive
///   minimum traps. Read once.
/// - TRV_EXPAND_LOGFILE_NAME: the log file; without it travik_expand_log.txt in the directory TEMP.
///   Read once. A log that cannot be opened is not written.
///
/// Threads: any. The lists and names are built exactly once. A lock makes each line of the log
/// whole, with the time at which it is written. No lock is held while a handler runs or at the
/// trap.

#include <trvfiles/environment/string_format.h>

#include <cstdint>

namespace trv {

/// Logs a buffer below the minimum, then raises a breakpoint trap if the variables ask for one.
///
/// @param source  the text about to be expanded; null is logged as "<nullptr>" and matches no piece
/// @param size    of the caller's buffer; one of format C needs one byte more than the minimum
void watch_buffer_size(const char* source, std::int32_t size, string_format format);

}  // namespace trv
