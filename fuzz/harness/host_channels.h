#pragma once

#include <trvfiles/support/diagnostics.h>

#include <cstddef>
#include <cstring>

namespace trv::fuzz {

/// The exception of the host's fatal handler.
struct FatalReport {};

/// A host's handlers for the three channels. No message ends the process: the fatal handler returns
/// or throws a FatalReport.
class HostChannels {
public:
    /// @param throws   what the fatal handler does
    /// @param listens  whether traces reach a handler
    explicit HostChannels(bool throws = false, bool listens = false) {
        set_error_handler(count<&HostChannels::errorCount>);
        set_fatal_handler(throws ? throwReport : count<&HostChannels::fatalCount>);
        set_trace_handler(listens ? count<&HostChannels::traceCount> : nullptr);
        errorCount = 0;
        fatalCount = 0;
        traceCount = 0;
    }
    ~HostChannels() {
        set_error_handler(nullptr);
        set_fatal_handler(nullptr);
        set_trace_handler(nullptr);
    }
    HostChannels(const HostChannels&) = delete;
    HostChannels& operator=(const HostChannels&) = delete;

    inline static int errorCount = 0;
    inline static int fatalCount = 0;
    inline static int traceCount = 0;
    inline static std::size_t messageBytes = 0;

private:
    template <int* Counter>
    static void count(const char* message) {
        // Reads every byte of the message, so that the sanitizers check them.
        messageBytes += std::strlen(message);
        ++*Counter;
    }
    static void throwReport(const char*) {
        ++fatalCount;
        throw FatalReport();
    }
};

}  // namespace trv::fuzz
