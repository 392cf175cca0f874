#pragma once

/// @file
/// The three channels through which every message of the runtime leaves: errors, fatal errors and
/// trace lines. Each is a handler that a host may replace.
///
/// The default handlers print the message as it is and a newline:
///
/// | Channel | neither echo nor verbose            | echo or verbose                   |
/// |---------|-------------------------------------|-----------------------------------|
/// | error   | standard error; dropped while quiet | standard output                   |
/// | fatal   | standard error, then exit(-1)       | standard output, then exit(-1)    |
/// | trace   | dropped                             | standard output                   |
///
/// A handler may return, throw or call back into the runtime. After a fatal handler that returns,
/// the operation ends with its own failure value.
///
/// Threads: one at a time. Set handlers and switches before other threads start.

#include <trvfiles/export.h>

namespace trv {

/// Receives one finished, NUL-terminated message, which is valid until the call ends, whatever the
/// handler looks up.
using message_handler = void (*)(const char* message);

/// Hands a message to the channel's handler. A null message acts as an empty one.
TRV_EXPORT void report_error(const char* message);
TRV_EXPORT void report_fatal(const char* message);
TRV_EXPORT void report_trace(const char* message);

/// Whether a trace message reaches anybody: the handler is a host's, or the default one would print
/// it. A caller asks before it builds a text that costs something.
TRV_EXPORT bool trace_is_seen();

/// Replaces a channel's handler for every later message. A null handler puts the default back.
///
/// @return the handler that was replaced
TRV_EXPORT message_handler set_error_handler(message_handler handler);
TRV_EXPORT message_handler set_fatal_handler(message_handler handler);
TRV_EXPORT message_handler set_trace_handler(message_handler handler);

/// Switches the default error output off. Any flag but 0 is on.
///
/// @return the previous value, 0 or 1
TRV_EXPORT int set_quiet_errors(int flag);
TRV_EXPORT int quiet_errors();

/// Sends every default output to standard output. Any flag but 0 is on.
///
/// @return the previous value, 0 or 1
TRV_EXPORT int set_echo_output(int flag);
TRV_EXPORT int echo_output();

/// 1 while the environment variable TRV_TRVFILES_VERBOSE is set to anything but exactly "off", else
/// 0. It is read anew at each call.
TRV_EXPORT int is_verbose();

}  // namespace trv
