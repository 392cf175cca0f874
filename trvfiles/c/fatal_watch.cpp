#include <trvfiles/c/fatal_watch.h>
#include <trvfiles/c/text_arguments.h>

#include <cstddef>

namespace trv::c {
namespace {

// By TRVFILES_CHANNEL_...
ChannelHandler handlers[3];

void call(std::int32_t channel, const std::string& message) {
    // A copy: the handler may set another one.
    const ChannelHandler handler = handlers[static_cast<std::size_t>(channel)];
    if (handler.function != nullptr) handler.function(handler.context, channel, message.c_str());
}

void callError(const char* message, void*) {
    call(TRVFILES_CHANNEL_ERROR, utf8FromNarrow(message));
}

void callTrace(const char* message, void*) {
    call(TRVFILES_CHANNEL_TRACE, utf8FromNarrow(message));
}

std::string oneLine(std::string message) {
    while (!message.empty() && message.back() == '\n')
        message.pop_back();
    return message;
}

}  // namespace

FatalWatch::FatalWatch() : earlier_(set_fatal_channel({pass, this})) {}

FatalWatch::~FatalWatch() {
    set_fatal_channel(earlier_);
}

void FatalWatch::pass(const char* message, void* watch) {
    static_cast<FatalWatch*>(watch)->take(message);
}

// Of several reports of a call the first one is the reason: the others mostly follow from it.
void FatalWatch::take(const char* message) {
    const bool isFirst = !hasReport_;
    hasReport_ = true;
    const std::string text = utf8FromNarrow(message);
    if (isFirst) message_ = oneLine(text);
    call(TRVFILES_CHANNEL_FATAL, text);
}

void setChannelHandler(std::int32_t channel, ChannelHandler handler) {
    handlers[static_cast<std::size_t>(channel)] = handler;
    const bool isSet = handler.function != nullptr;
    if (channel == TRVFILES_CHANNEL_ERROR) set_error_channel({isSet ? callError : nullptr});
    if (channel == TRVFILES_CHANNEL_TRACE) set_trace_channel({isSet ? callTrace : nullptr});
}

}  // namespace trv::c
