#pragma once

#include <trvfiles/environment/runtime_observer.h>

#include <functional>
#include <string>
#include <vector>

namespace trv::testing {

/// Observes the runtime while it lives, and keeps each event as a text.
class RecordingObserver final : public runtime_observer {
public:
    RecordingObserver() : earlier_(set_runtime_observer(this)) {}
    ~RecordingObserver() { set_runtime_observer(earlier_); }
    RecordingObserver(const RecordingObserver&) = delete;
    RecordingObserver& operator=(const RecordingObserver&) = delete;

    void looked_up(const lookup_event& event) override {
        during();
        const std::string value = event.value == nullptr ? "undefined" : "[" + *event.value + "]";
        events.push_back(event.marker + event.name + " " + value + " [" + event.origin + "]");
    }

    void reference_replaced(const reference_event& event) override {
        during();
        const std::string referred =
            event.referred == nullptr ? "undefined" : textOf(*event.referred);
        events.push_back(textOf(event.referring) + " -> " + referred + ": [" +
                         event.value.resolved() + "][" + event.value.rest() + "]");
    }

    void search_began(const search_event& event) override {
        during();
        events.push_back("search [" + event.name + "] in [" + std::string(event.directories) + "]");
    }

    void candidate_tried(const candidate_event& event) override {
        during();
        events.push_back("tried [" + event.path + "] " + (event.is_found ? "found" : "missing"));
    }

    void fault_found(const fault_event& event) override {
        during();
        events.push_back(std::string(event.is_fatal() ? "fatal" : "warning") + " [" +
                         std::string(event.file) + "] " + std::to_string(event.line) + " [" +
                         std::string(event.text) + "]");
    }

    /// Runs at the beginning of each event, before its texts are read.
    std::function<void()> during = [] {};
    std::vector<std::string> events;

private:
    static std::string textOf(const stored_text& text) {
        return std::to_string(text.offset) + " [" + text.text + "] [" + text.origin + "]";
    }

    runtime_observer* earlier_;
};

}  // namespace trv::testing
