#pragma once

/// @file
/// The channels of the runtime during calls of the C interface.
///
/// Threads: one at a time, with the whole runtime.

#include <trvfiles/c/trvfiles.h>
#include <trvfiles/support/diagnostics.h>

#include <cstdint>
#include <string>

namespace trv::c {

/// Takes the reports of the fatal channel while it lives, so that none ends the process, and passes
/// them to the handler of the C host too. A watch in a call of such a handler takes its own ones.
class FatalWatch {
public:
    FatalWatch();
    ~FatalWatch();
    FatalWatch(const FatalWatch&) = delete;
    FatalWatch& operator=(const FatalWatch&) = delete;

    bool hasReport() const { return hasReport_; }
    /// The first report, in UTF-8 without a newline at its end.
    const std::string& message() const { return message_; }

private:
    static void pass(const char* message, void* watch);
    void take(const char* message);

    channel_handler earlier_;
    bool hasReport_ = false;
    std::string message_;
};

/// A handler of a C host with its context.
struct ChannelHandler {
    trvfiles_message_handler function = nullptr;
    void* context = nullptr;
};

/// Sets the handler of a channel. REQUIRES: one of TRVFILES_CHANNEL_...
void setChannelHandler(std::int32_t channel, ChannelHandler handler);

}  // namespace trv::c
