#include <trvfiles/environment/entry_text.h>
#include <trvfiles/environment/runtime_observer.h>
#include <trvfiles/support/diagnostics.h>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

constexpr std::size_t min_marked_list = 81;

std::string described(const stored_text& text) {
    return text.text + ' ' + text.origin;
}

// Programs read these lines from the output of a host, so they stay as they are byte for byte.
//
// Each function asks whether the trace is seen, because another observer may pass its events on
// here. The channel of the trace drops the lines that follow if a handler switches it off.
// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor): a virtual one would run during exit.
class channel_observer final : public runtime_observer {
public:
    void looked_up(const lookup_event& event) override {
        if (trace_is_seen()) report_trace(event_text(event).c_str());
    }

    void reference_replaced(const reference_event& event) override {
        if (!trace_is_seen()) return;
        if (event.referred != nullptr) {
            report_trace(("   - " + described(event.referring)).c_str());
            report_trace(
                ("   " + offset_text(event.referred->offset) + " -> " + described(*event.referred))
                    .c_str());
        } else {
            report_trace(("ref=[+" + event.value.rest() + "]\n").c_str());
        }
        report_trace((event.value.resolved() + event.value.rest()).c_str());
    }

    void search_began(const search_event& event) override {
        if (!trace_is_seen()) return;
        // A long list is marked as long, but printed completely.
        std::string line = "SEARCHING for '" + event.name + "' in '";
        line += event.directories;
        line += event.directories.size() < min_marked_list ? "'" : "...'";
        report_trace(line.c_str());
    }

    void candidate_tried(const candidate_event& event) override {
        if (trace_is_seen()) report_trace(event_text(event).c_str());
    }

    void fault_found(const fault_event& event) override {
        const auto report = event.is_fatal() ? report_fatal : report_error;
        report(event_text(event).c_str());
    }
};

// Neither needs a constructor at run time or a destructor: static objects of a host may expand
// texts before main() and during exit.
channel_observer default_observer;
runtime_observer* observer_of_process = &default_observer;

}  // namespace

void runtime_observer::looked_up(const lookup_event&) {}
void runtime_observer::reference_replaced(const reference_event&) {}
void runtime_observer::search_began(const search_event&) {}
void runtime_observer::candidate_tried(const candidate_event&) {}
void runtime_observer::fault_found(const fault_event&) {}

runtime_observer* set_runtime_observer(runtime_observer* observer) {
    runtime_observer* const earlier = observer_of_process;
    observer_of_process = observer == nullptr ? &default_observer : observer;
    return earlier;
}

runtime_observer& current_observer() {
    return *observer_of_process;
}

bool runtime_is_observed() {
    return observer_of_process != &default_observer || trace_is_seen();
}

std::string event_text(const lookup_event& event) {
    if (event.value != nullptr) return event.name + " = '" + *event.value + "' " + event.origin;
    return event.name + (event.marker == '$' ? " = <undefined variable>" : " = <undefined path>");
}

std::string event_text(const candidate_event& event) {
    return "  - '" + event.path + "' -> " + (event.is_found ? "Found" : "Not found");
}

// The forms differ for historical reasons only, as do the newlines at the end of two of them.
std::string event_text(const fault_event& event) {
    const std::string file(event.file);
    const std::string line = std::to_string(event.line);
    const std::string text(event.text);
    switch (event.kind) {
        case fault_kind::unknown_variable:
            return "load_messages: file '" + file + "' line " + line + ", " + text + '\n';
        case fault_kind::missing_equals:
            return "load_messages: [file '" + file + "' line " + line + "] Warning - " + text +
                   '\n';
        default:
            break;
    }
    return "load_messages: file '" + file + "', line " + line + " : " + text;
}

}  // namespace trv
