#pragma once

/// @file
/// The three channels through which every message of the runtime leaves: errors, fatal errors and
/// trace lines. Each is a handler that a host may replace.
///
/// The default handlers print the message unchanged and a newline:
///
/// | Channel | neither echo nor verbose            | echo or verbose                   |
/// |---------|-------------------------------------|-----------------------------------|
/// | error   | standard error; dropped while quiet | standard output                   |
/// | fatal   | standard error, then exit(-1)       | standard output, then exit(-1)    |
/// | trace   | dropped                             | standard output                   |
///
/// A handler may return, throw or call back into the runtime. After a fatal handler that returns,
/// the operation returns its failure value.
///
/// Threads: one at a time. Set handlers and switches before other threads start.

#include <trvfiles/export.h>

namespace trv {

/// Receives one complete, NUL-terminated message. It is valid until the call ends, even if the
/// handler looks up variables.
using message_handler = void (*)(const char* message);

/// A handler with a pointer of the host's, which it gets with each message.
using context_message_handler = void (*)(const char* message, void* context);

/// The handler of a channel: one with a context, one without, or, if both are nullptr, the default
/// one. If both are set, the one with a context counts.
struct channel_handler {
    /// Gets `context` with each message.
    context_message_handler with_context = nullptr;
    /// Passed to `with_context`; has to live until the handler is replaced. May be nullptr.
    void* context = nullptr;
    /// Gets the message alone.
    message_handler plain = nullptr;
};

/// Passes a message to the channel's handler. A message that is nullptr acts as an empty one.
TRV_EXPORT void report_error(const char* message);
TRV_EXPORT void report_fatal(const char* message);
TRV_EXPORT void report_trace(const char* message);

/// Whether a trace message has an effect: the handler is a host's, or the default one would print
/// it. Callers ask this before they format a trace line.
TRV_EXPORT bool trace_is_seen();

/// Replaces a channel's handler for every later message, also one with a context. nullptr restores
/// the default.
///
/// @return the handler that was replaced, which may be the default one; nullptr for a handler with
///         a context, which only the functions below return
TRV_EXPORT message_handler set_error_handler(message_handler handler);
TRV_EXPORT message_handler set_fatal_handler(message_handler handler);
TRV_EXPORT message_handler set_trace_handler(message_handler handler);

/// Replaces a channel's handler, of either kind, as in `set_error_channel({handler, &host})`.
///
/// @return the handler that was replaced; given to the function again, it is put back
TRV_EXPORT channel_handler set_error_channel(const channel_handler& handler);
TRV_EXPORT channel_handler set_fatal_channel(const channel_handler& handler);
TRV_EXPORT channel_handler set_trace_channel(const channel_handler& handler);

/// Switches the default error output off (any flag but 0) or on (0).
///
/// @return the previous value, 0 or 1
TRV_EXPORT int set_quiet_errors(int flag);
TRV_EXPORT int quiet_errors();

/// Sends every default output to standard output (any flag but 0) or not (0).
///
/// @return the previous value, 0 or 1
TRV_EXPORT int set_echo_output(int flag);
TRV_EXPORT int echo_output();

/// 1 while the environment variable TRV_TRVFILES_VERBOSE is set to anything but exactly "off", else
/// 0. It is read at each call.
TRV_EXPORT int is_verbose();

}  // namespace trv
