#pragma once

/// @file
/// Switches that get their earlier value back on every way out, also if a handler throws.
///
/// Threads: one at a time, with the whole runtime.

#include <trvfiles/environment/message_store.h>
#include <trvfiles/support/diagnostics.h>

namespace trv {

/// Marks a piece of code as running.
class running_guard {
public:
    explicit running_guard(bool& running) : running_(running) { running_ = true; }
    ~running_guard() { running_ = false; }
    running_guard(const running_guard&) = delete;
    running_guard& operator=(const running_guard&) = delete;

private:
    bool& running_;
};

/// Switches the echo of the default handlers off.
class echo_guard {
public:
    echo_guard() : earlier_(set_echo_output(0)) {}
    ~echo_guard() { set_echo_output(earlier_); }
    echo_guard(const echo_guard&) = delete;
    echo_guard& operator=(const echo_guard&) = delete;

private:
    int earlier_;
};

/// Sets whether texts that are made meanwhile, in any store, are persistent.
class record_guard {
public:
    explicit record_guard(bool record) : earlier_(set_record_flag(record)) {}
    ~record_guard() { set_record_flag(earlier_); }
    record_guard(const record_guard&) = delete;
    record_guard& operator=(const record_guard&) = delete;

private:
    bool earlier_;
};

}  // namespace trv
