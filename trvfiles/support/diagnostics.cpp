#include <trvfiles/support/diagnostics.h>
#include <trvfiles/support/platform.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <utility>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

void print_error(const char* message);
[[noreturn]] void print_fatal(const char* message);
void print_trace(const char* message);

// Initialised without code at run time: static objects of a host may report before main().
channel_handler error_handler = {nullptr, nullptr, print_error};
channel_handler fatal_handler = {nullptr, nullptr, print_fatal};
channel_handler trace_handler = {nullptr, nullptr, print_trace};
bool errors_are_quiet = false;
bool output_is_echoed = false;

bool goes_to_output() {
    return output_is_echoed || is_verbose() != 0;
}

// The message is an argument and not the format, so a "%" in it is printed unchanged. A failed
// write is ignored: there is nowhere to report it.
void print_line(std::FILE* stream, const char* message) {
    static_cast<void>(std::fprintf(stream, "%s\n", message));
}

void print_error(const char* message) {
    if (goes_to_output()) {
        print_line(stdout, message);
    } else if (!errors_are_quiet) {
        print_line(stderr, message);
    }
}

// exit() and not abort(): the standard streams are flushed, and exit handlers run.
[[noreturn]] void print_fatal(const char* message) {
    print_line(goes_to_output() ? stdout : stderr, message);
    std::exit(-1);
}

void print_trace(const char* message) {
    if (goes_to_output()) print_line(stdout, message);
}

bool is_of_host(const channel_handler& handler, message_handler standard) {
    return handler.with_context != nullptr || handler.plain != standard;
}

// Takes the handler by value: a handler may replace itself while it runs.
void call(channel_handler handler, const char* message) {
    if (handler.with_context != nullptr) {
        handler.with_context(message, handler.context);
    } else {
        handler.plain(message);
    }
}

// The message may be a looked-up text, which the lookups of a host's handler overwrite. So such a
// handler gets a copy, if there is memory for one. The default handlers look nothing up.
void send(const channel_handler& handler, message_handler standard, const char* message) {
    if (message == nullptr) message = "";
    std::string copy;
    if (is_of_host(handler, standard)) {
        try {
            copy = message;
            message = copy.c_str();
        } catch (const std::bad_alloc&) {
            // A report that memory is exhausted must not need memory.
        }
    }
    call(handler, message);
}

channel_handler exchange_handler(channel_handler& slot, channel_handler handler,
                                 message_handler standard) {
    if (handler.with_context != nullptr) {
        handler.plain = nullptr;
    } else if (handler.plain == nullptr) {
        handler.plain = standard;
    }
    return std::exchange(slot, handler);
}

}  // namespace

void report_error(const char* message) {
    send(error_handler, print_error, message);
}

void report_fatal(const char* message) {
    send(fatal_handler, print_fatal, message);
}

void report_trace(const char* message) {
    send(trace_handler, print_trace, message);
}

bool trace_is_seen() {
    return is_of_host(trace_handler, print_trace) || goes_to_output();
}

message_handler set_error_handler(message_handler handler) {
    return exchange_handler(error_handler, {nullptr, nullptr, handler}, print_error).plain;
}

channel_handler set_error_channel(const channel_handler& handler) {
    return exchange_handler(error_handler, handler, print_error);
}

message_handler set_fatal_handler(message_handler handler) {
    return exchange_handler(fatal_handler, {nullptr, nullptr, handler}, print_fatal).plain;
}

channel_handler set_fatal_channel(const channel_handler& handler) {
    return exchange_handler(fatal_handler, handler, print_fatal);
}

message_handler set_trace_handler(message_handler handler) {
    return exchange_handler(trace_handler, {nullptr, nullptr, handler}, print_trace).plain;
}

channel_handler set_trace_channel(const channel_handler& handler) {
    return exchange_handler(trace_handler, handler, print_trace);
}

int set_quiet_errors(int flag) {
    return std::exchange(errors_are_quiet, flag != 0) ? 1 : 0;
}

int quiet_errors() {
    return errors_are_quiet ? 1 : 0;
}

int set_echo_output(int flag) {
    return std::exchange(output_is_echoed, flag != 0) ? 1 : 0;
}

int echo_output() {
    return output_is_echoed ? 1 : 0;
}

int is_verbose() {
    const char* value = platform::get_environment("TRV_TRVFILES_VERBOSE");
    return value != nullptr && std::strcmp(value, "off") != 0 ? 1 : 0;
}

}  // namespace trv
