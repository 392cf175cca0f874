#pragma once

/// @file
/// What happens inside the runtime, as events: lookups, replaced references, searches for files and
/// faults in message files.
///
/// There is one observer for the process. The default one writes the events as lines to the
/// channels (see diagnostics.h): faults always, all other events while the trace is seen.
///
/// All texts of an event are copies or belong to the operation that reports it. They are valid
/// until the observer's function returns, whatever it calls in the runtime. An observer may look
/// up, expand and search, add texts to stores, and set handlers or another observer: what it sets
/// receives the next event. If it throws, the operation ends as if a handler had thrown.
///
/// Threads: one at a time, with the whole runtime. Set an observer before other threads start.

#include <cstdint>
#include <string>
#include <string_view>

namespace trv {

/// A reference in a text that is being expanded has been looked up.
struct lookup_event {
    /// '$' for a variable, '?' for a path variable.
    char marker;
    const std::string& name;
    /// As it is stored, before the references in it are expanded. nullptr if it is undefined.
    const std::string* value;
    /// As describe_variable_origin() gives it. Empty if it is undefined, or if its value is put
    /// together from several texts of the store.
    const std::string& origin;
};

/// A text of a store.
struct stored_text {
    std::int32_t offset;
    std::string text;
    /// "from 'FILE' line N" or "set by program".
    std::string origin;
};

/// The value of a stored text while its references are being replaced. Each function takes time for
/// the length of its result: an observer that reads the whole value at each event takes time for
/// the square of the value's length.
class partial_value {
public:
    partial_value() = default;
    partial_value(const partial_value&) = delete;
    partial_value& operator=(const partial_value&) = delete;
    virtual ~partial_value() = default;

    /// The beginning, which is complete.
    virtual std::string resolved() const = 0;
    /// What follows it, in which references may be left.
    virtual std::string rest() const = 0;
};

/// A reference "+(XXXXXXXX)" in the value of a stored text has been replaced.
struct reference_event {
    /// The text that refers.
    const stored_text& referring;
    /// The text whose value replaces the reference. nullptr if the reference is undefined: then
    /// "$(TRVNULL)" replaces its "+".
    const stored_text* referred;
    /// The value after the replacement. For an undefined reference `resolved()` ends after
    /// "$(TRVNULL)", otherwise before the value that replaces the reference.
    const partial_value& value;
};

/// A search for a file begins.
struct search_event {
    const std::string& name;
    /// The directories, expanded and separated by ";" or ",".
    std::string_view directories;
};

/// A path has been tried in a search.
struct candidate_event {
    const std::string& path;
    bool is_found;
};

/// What is wrong with a message file. Those before `line_too_long` abort the parse or break the
/// rules of the file; the others are warnings.
enum class fault_kind {
    not_opened,
    not_loaded,
    unclosed_condition,
    too_many_conditions,
    invalid_condition,
    else_without_if,
    endif_without_if,
    unknown_keyword,
    line_too_long,
    unknown_variable,
    missing_equals
};

/// A fault in a message file.
struct fault_event {
    fault_kind kind;
    std::string_view file;
    /// From 1; 0 or -1 for a fault that belongs to no line.
    int line;
    /// Without a newline at its end.
    std::string_view text;
    /// What the text quotes: a condition, a keyword, or an entry; empty for the others.
    std::string_view subject = {};

    bool is_fatal() const { return kind < fault_kind::line_too_long; }
};

/// Receives the events. Each function does nothing unless it is overridden. The runtime never
/// deletes an observer.
class runtime_observer {
public:
    virtual void looked_up(const lookup_event& event);
    virtual void reference_replaced(const reference_event& event);
    virtual void search_began(const search_event& event);
    virtual void candidate_tried(const candidate_event& event);
    virtual void fault_found(const fault_event& event);

protected:
    runtime_observer() = default;
    runtime_observer(const runtime_observer&) = default;
    runtime_observer& operator=(const runtime_observer&) = default;
    ~runtime_observer() = default;
};

/// Replaces the observer for every later event.
///
/// @param observer  has to live until it is replaced; nullptr puts the default observer back
/// @return the observer that was replaced, which may be the default one
runtime_observer* set_runtime_observer(runtime_observer* observer);

/// The observer that receives the next event.
runtime_observer& current_observer();

/// Whether an event other than a fault has a receiver: the observer is not the default one, or the
/// trace is seen. Asking may take a walk along the process environment.
bool runtime_is_observed();

/// runtime_is_observed() for one operation. It is asked again only if the answer may have changed,
/// so that an operation without an observer pays one predictable branch for each event.
class observation {
public:
    /// @param hook_calls  changes whenever code of the host has run that was not called for an
    ///                    event
    bool is_on(std::uint32_t hook_calls = 0) {
        if (is_on_ || hook_calls != hook_calls_when_asked_) {
            is_on_ = runtime_is_observed();
            hook_calls_when_asked_ = hook_calls;
        }
        return is_on_;
    }

private:
    // True at first, so that the first call asks. While it is true, each call asks: an observer has
    // run in between.
    bool is_on_ = true;
    std::uint32_t hook_calls_when_asked_ = 0;
};

/// The lines that the default observer writes.
std::string event_text(const lookup_event& event);
std::string event_text(const candidate_event& event);
std::string event_text(const fault_event& event);

}  // namespace trv
