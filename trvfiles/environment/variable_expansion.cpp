#include <trvfiles/environment/path_text.h>
#include <trvfiles/environment/runtime_observer.h>
#include <trvfiles/environment/variable_expansion.h>
#include <trvfiles/environment/variables.h>
#include <trvfiles/environment/variables_internal.h>

#include <array>
#include <memory>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

// A text of a few bytes can double at each reference ("A = $B$B", "B = $C$C"), so the length of the
// source bounds neither time nor memory. These limits do.
constexpr std::size_t max_length = std::size_t{16} << 20;
constexpr std::size_t max_replacements = 1'000'000;

constexpr char variable_marker = '$';
constexpr char path_marker = '?';

// A table of 256 flags. It is read once for each character of a text, in the innermost loop: one
// load takes the place of several comparisons.
class character_set {
public:
    template <class Predicate>
    constexpr explicit character_set(Predicate holds) {
        for (std::size_t code = 0; code < members_.size(); ++code)
            members_[code] = holds(static_cast<char>(code));
    }
    bool holds(char c) const { return members_[static_cast<unsigned char>(c)]; }

private:
    std::array<bool, 256> members_ = {};
};

constexpr character_set markers_and_end([](char c) {
    return c == variable_marker || c == path_marker || c == '\0';
});
// Names are ASCII in every locale.
constexpr character_set name_characters([](char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
});

// A result while it grows. The result is `beginning_` followed by the first `end_length_` bytes of
// `end_`. A result of up to 256 bytes, such as most paths, never leaves `end_`: it takes one
// allocation, that of the caller's string, and no copy of what was appended before.
class growing_result {
public:
    // Appends a text up to its first marker, or all of it if it has none. Returns where it stopped.
    //
    // Inlined, so that `end_length_` stays in a register: a call makes an expansion 6 % slower.
    [[gnu::always_inline]] const char* add_to_marker(const char* text);
    void add(std::string_view text);
    std::size_t size() const { return beginning_.size() + end_length_; }
    void move_to(std::string& output);

private:
    // Moves `end_` into the beginning.
    void flush_end() {
        beginning_.append(end_.data(), end_length_);
        end_length_ = 0;
    }

    std::string beginning_;
    std::array<char, 256> end_;
    std::size_t end_length_ = 0;
};

inline const char* growing_result::add_to_marker(const char* text) {
    while (true) {
        while (end_length_ < end_.size() && !markers_and_end.holds(*text))
            end_[end_length_++] = *text++;
        if (end_length_ < end_.size()) return text;
        flush_end();
    }
}

void growing_result::add(std::string_view text) {
    flush_end();
    beginning_ += text;
}

void growing_result::move_to(std::string& output) {
    if (beginning_.empty()) {
        output.assign(end_.data(), end_length_);
        return;
    }
    flush_end();
    output = std::move(beginning_);
}

// The origin in full, however long the name of a file in it. A result that fills the buffer may
// have been cut, so the buffer grows until one byte is left over.
std::string origin_of(char marker, const char* name, const char* value) {
    const auto describe =
        marker == variable_marker ? describe_variable_origin : describe_path_origin;
    std::string origin;
    std::size_t size = 256;
    do {
        size *= 2;
        origin.resize(size);
        describe(origin.data(), size, name, value);
        origin.resize(std::char_traits<char>::length(origin.data()));
    } while (origin.size() + 1 == size);
    return origin;
}

// One expansion. Iterative: the texts around the current one are on a stack in `nesting_`, so their
// depth is limited by max_length and not by the stack of the thread. Each text on it has a
// reference of its own, and no reference is open twice: so every chain of values ends.
class expander {
public:
    explicit expander(const char* source) : current_{source} {}

    int run();
    void move_result_to(std::string& output) { result_.move_to(output); }

private:
    // The source, or the value of a reference in the text around it.
    struct open_text {
        std::string text;
        std::size_t next = 0;
        std::string reference = {};
    };

    int step();
    int replace(char marker);
    [[gnu::cold]] const char* report_lookup(char marker, const char* found);
    bool is_open(char marker) const {
        return nesting_ != nullptr && nesting_->references.count(marker + name_) != 0;
    }
    void open(std::string reference, std::string value, std::size_t next);
    void close();

    // Allocated for the first value that has references itself. Most values have none.
    struct nesting {
        std::vector<open_text> around;
        // The references, marker and name, whose values are open: one of them again has no end.
        std::unordered_set<std::string> references;
        std::size_t open_length = 0;
    };

    open_text current_;
    // The name of the last reference. A member, so that its memory serves all references.
    std::string name_;
    std::unique_ptr<nesting> nesting_;
    bool is_closed_ = false;
    observation observed_;
    // The value of the last lookup that was reported.
    std::string reported_value_;
    std::size_t replacements_ = 0;
    growing_result result_;
};

int expander::run() {
    int complete = EXP_OK;
    while (!is_closed_) {
        const int code = step();
        if (is_expand_error(code)) return code;
        if (code == EXP_UNDEFINED) complete = code;
        if (result_.size() > max_length) return EXP_NAME_TOO_LONG;
    }
    return complete;
}

// Copies the text before the next marker, and then handles that marker or the end of the text.
//
// Texts are walked by pointer and end at their terminator. `next` is an offset: replace() may move
// the text to the stack.
int expander::step() {
    const char* const text = current_.text.c_str();
    const auto offset_of = [text](const char* place) {
        return static_cast<std::size_t>(place - text);
    };
    const char* const mark = result_.add_to_marker(text + current_.next);
    const char marker = *mark;
    if (marker == '\0') {
        close();
        return EXP_OK;
    }

    const char* name = mark + 1;
    if (*name == marker) {
        result_.add({&marker, 1});
        current_.next = offset_of(name + 1);
        return EXP_OK;
    }
    const char* end = name;
    if (*name == '{' || *name == '(') {
        const char closer = *name == '{' ? '}' : ')';
        end = ++name;
        while (*end != closer && *end != '\0')
            ++end;
        if (*end == '\0') return EXP_SYNTAX_ERROR;
        current_.next = offset_of(end + 1);
    } else {
        while (name_characters.holds(*end))
            ++end;
        current_.next = offset_of(end);
    }
    name_.assign(name, end);
    return replace(marker);
}

int expander::replace(char marker) {
    // The limit counts every reference, also one whose value is empty: a chain of n variables such
    // as "A = $B$B" over an empty value has 2^n references and no length.
    if (++replacements_ > max_replacements || is_open(marker)) return EXP_NAME_TOO_LONG;

    const char* value =
        marker == variable_marker ? find_variable(name_) : get_path_variable(name_.c_str());
    if (observed_.is_on(hook_calls())) value = report_lookup(marker, value);
    if (value == nullptr) {
        result_.add(null_value(name_.c_str()));
        return EXP_UNDEFINED;
    }
    // A value without markers is copied from where it is. Only the rest of another one is kept.
    const char* const rest = result_.add_to_marker(value);
    if (*rest == '\0') return EXP_OK;
    open(marker + name_, value, static_cast<std::size_t>(rest - value));
    return nesting_->open_length > max_length ? EXP_NAME_TOO_LONG : EXP_OK;
}

// @param found  the value as the lookup returned it: its address identifies its origin
// @return the value, in memory that stays valid: what was found is valid until the next lookup
//         only, and the observer may look up
const char* expander::report_lookup(char marker, const char* found) {
    if (found == nullptr) {
        current_observer().looked_up({marker, name_, nullptr, {}});
        return nullptr;
    }
    reported_value_ = found;
    current_observer().looked_up(
        {marker, name_, &reported_value_, origin_of(marker, name_.c_str(), found)});
    return reported_value_.c_str();
}

// The open values are bounded together like the result. Otherwise a deep chain of long values would
// exhaust memory before one character of it reaches the result.
void expander::open(std::string reference, std::string value, std::size_t next) {
    if (nesting_ == nullptr) nesting_ = std::make_unique<nesting>();
    nesting_->open_length += value.size();
    nesting_->references.insert(reference);
    nesting_->around.push_back(std::move(current_));
    current_ = {std::move(value), next, std::move(reference)};
}

void expander::close() {
    if (nesting_ == nullptr || nesting_->around.empty()) {
        is_closed_ = true;
        return;
    }
    nesting_->open_length -= current_.text.size();
    nesting_->references.erase(current_.reference);
    current_ = std::move(nesting_->around.back());
    nesting_->around.pop_back();
}

}  // namespace

bool is_expand_error(int code) {
    return code != EXP_OK && code != EXP_UNDEFINED;
}

int expand_variables(const char* source, std::string* output) {
    if (output == nullptr) return EXP_INVALID_ARGUMENT;
    if (source == nullptr) {
        output->clear();
        return EXP_INVALID_ARGUMENT;
    }
    // The source may be in the output: the expander has a copy, and the output changes last.
    expander expansion(source);
    const int code = expansion.run();
    if (is_expand_error(code)) {
        output->clear();
    } else {
        expansion.move_result_to(*output);
    }
    return code;
}

int expand_variables(const std::string& source, std::string* output) {
    return expand_variables(source.c_str(), output);
}

int expand_variables(const std::vector<std::string>& sources, std::string* output) {
    return expand_variables(join_list(sources), output);
}

int expand_path(const char* source, std::string* output) {
    const int code = expand_variables(source, output);
    if (!is_expand_error(code)) *output = normalize_separators(*output);
    return code;
}

int expand_path(const std::string& source, std::string* output) {
    return expand_path(source.c_str(), output);
}

int expand_path(const std::vector<std::string>& sources, std::string* output) {
    return expand_path(join_list(sources), output);
}

std::string normalize_separators(const std::string& path) {
    const auto separator_at = [&path](std::size_t i) {
        return i < path.size() && is_path_separator(path[i]);
    };
    std::string normal;
    normal.reserve(path.size());
    // A run begins at a separator and takes each "." only together with the separator after it. So
    // "a/./b" loses its ".", while "a/.b", "a/../b" and "./a" keep theirs.
    std::size_t next = 0;
    while (next < path.size()) {
        if (!separator_at(next)) {
            normal += path[next++];
            continue;
        }
        normal += '\\';
        ++next;
        while (separator_at(next) ||
               (next < path.size() && path[next] == '.' && separator_at(next + 1))) {
            ++next;
        }
    }
    return normal;
}

}  // namespace trv
