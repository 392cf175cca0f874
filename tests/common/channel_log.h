#pragma once

#include <trvfiles/support/diagnostics.h>

#include <string>
#include <vector>

namespace trv::testing {

/// Replaces the default handlers of the three channels. Each handler records the message and
/// returns.
class ChannelLog {
public:
    ChannelLog() {
        errors().clear();
        fatals().clear();
        traces().clear();
        error_ = set_error_handler([](const char* message) { errors().push_back(message); });
        fatal_ = set_fatal_handler([](const char* message) { fatals().push_back(message); });
        trace_ = set_trace_handler([](const char* message) { traces().push_back(message); });
    }
    ~ChannelLog() {
        set_error_handler(error_);
        set_fatal_handler(fatal_);
        set_trace_handler(trace_);
    }
    ChannelLog(const ChannelLog&) = delete;
    ChannelLog& operator=(const ChannelLog&) = delete;

    static std::vector<std::string>& errors() { return list<0>(); }
    static std::vector<std::string>& fatals() { return list<1>(); }
    static std::vector<std::string>& traces() { return list<2>(); }

private:
    template <int Channel>
    static std::vector<std::string>& list() {
        static std::vector<std::string> messages;
        return messages;
    }

    message_handler error_;
    message_handler fatal_;
    message_handler trace_;
};

}  // namespace trv::testing
