#include <trvfiles/c/fatal_watch.h>
#include <trvfiles/c/text_arguments.h>

#include <cstddef>

namespace trv::c {
namespace {

FatalWatch* currentWatch = nullptr;
ChannelHandler handlers[3];

void pass(std::int32_t channel, const std::string& message) {
    // A copy: the handler may set another one.
    const ChannelHandler handler = handlers[static_cast<std::size_t>(channel)];
    if (handler.function != nullptr) handler.function(handler.context, channel, message.c_str());
}

void passError(const char* message) {
    pass(TRVFILES_CHANNEL_ERROR, utf8FromNarrow(message));
}

void passTrace(const char* message) {
    pass(TRVFILES_CHANNEL_TRACE, utf8FromNarrow(message));
}

std::string oneLine(std::string message) {
    while (!message.empty() && message.back() == '\n')
        message.pop_back();
    return message;
}

}  // namespace

FatalWatch::FatalWatch() : earlierHandler_(set_fatal_handler(take)), earlierWatch_(currentWatch) {
    currentWatch = this;
}

FatalWatch::~FatalWatch() {
    currentWatch = earlierWatch_;
    set_fatal_handler(earlierHandler_);
}

// Of several reports of a call the first one is the reason: the others mostly follow from it.
void FatalWatch::take(const char* message) {
    const bool isFirst = !currentWatch->hasReport_;
    currentWatch->hasReport_ = true;
    const std::string text = utf8FromNarrow(message);
    if (isFirst) currentWatch->message_ = oneLine(text);
    pass(TRVFILES_CHANNEL_FATAL, text);
}

void setChannelHandler(std::int32_t channel, ChannelHandler handler) {
    handlers[static_cast<std::size_t>(channel)] = handler;
    const bool isSet = handler.function != nullptr;
    if (channel == TRVFILES_CHANNEL_ERROR) set_error_handler(isSet ? passError : nullptr);
    if (channel == TRVFILES_CHANNEL_TRACE) set_trace_handler(isSet ? passTrace : nullptr);
}

}  // namespace trv::c
