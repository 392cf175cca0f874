#include <trvfiles/environment/text_list.h>
#include <trvfiles/environment/variable_expansion.h>
#include <trvfiles/environment/variables.h>
#include <trvfiles/support/diagnostics.h>

#include <memory>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

constexpr std::size_t longest_result = std::size_t{16} << 20;
constexpr std::size_t most_replacements = 1'000'000;

constexpr char variable_marker = '$';
constexpr char path_marker = '?';

std::size_t next_marker(std::string_view text, std::size_t from) {
    while (from < text.size() && text[from] != variable_marker && text[from] != path_marker)
        ++from;
    return from;
}

// Names are ASCII in every locale.
bool is_name_character(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
}

// The origin in full, however long the name of a file in it.
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

// `found` is the value where it stands, which tells its origin.
void trace_lookup(char marker, const std::string& name, const char* found,
                  const std::string& value) {
    std::string line = name + " = ";
    if (found != nullptr) {
        line += "'" + value + "' " + origin_of(marker, name.c_str(), found);
    } else {
        line += marker == variable_marker ? "<undefined variable>" : "<undefined path>";
    }
    report_trace(line.c_str());
}

// One expansion. Values inside values are kept on a stack of its own, so that their depth is
// limited by memory alone.
class expander {
public:
    explicit expander(const char* source) {
        // Most results are paths of about this length.
        constexpr std::size_t usual_length = 63;
        current_.text = source;
        result_.reserve(usual_length);
    }

    int run();
    std::string take_result() { return std::move(result_); }

private:
    // The source, or the value of a reference in the text around it.
    struct open_text {
        std::string text;
        std::size_t next = 0;
        std::string reference = {};
    };

    int step();
    int replace(char marker, const std::string& name);
    bool is_open(char marker, const std::string& name) const {
        return nesting_ != nullptr && nesting_->references.count(marker + name) != 0;
    }
    void open(std::string reference, std::string value);
    void close();

    // What only values with references in them need.
    struct nesting {
        std::vector<open_text> around;
        // The references, marker and name, whose values are open: one of them again has no end.
        std::unordered_set<std::string> references;
        std::size_t open_length = 0;
    };

    open_text current_;
    std::unique_ptr<nesting> nesting_;
    bool is_closed_ = false;
    bool is_traced_ = false;
    std::size_t replacements_ = 0;
    std::string result_;
};

int expander::run() {
    int complete = EXP_OK;
    while (!is_closed_) {
        const int code = step();
        if (is_expand_error(code)) return code;
        if (code == EXP_UNDEFINED) complete = code;
        if (result_.size() > longest_result) return EXP_NAME_TOO_LONG;
    }
    return complete;
}

// Copies what stands before the next marker, and then deals with that one or with the text's end.
int expander::step() {
    const std::string_view text = current_.text;
    const std::size_t mark = next_marker(text, current_.next);
    result_.append(text, current_.next, mark - current_.next);
    if (mark == text.size()) {
        close();
        return EXP_OK;
    }

    const char marker = text[mark];
    const std::string_view rest = text.substr(mark + 1);
    const char follower = rest.empty() ? '\0' : rest.front();
    if (follower == marker) {
        result_ += marker;
        current_.next = mark + 2;
        return EXP_OK;
    }
    if (follower == '{' || follower == '(') {
        const std::size_t closer = rest.find(follower == '{' ? '}' : ')');
        if (closer == std::string_view::npos) return EXP_SYNTAX_ERROR;
        current_.next = mark + closer + 2;
        return replace(marker, std::string(rest.substr(1, closer - 1)));
    }
    std::size_t length = 0;
    while (length < rest.size() && is_name_character(rest[length]))
        ++length;
    current_.next = mark + 1 + length;
    return replace(marker, std::string(rest.substr(0, length)));
}

int expander::replace(char marker, const std::string& name) {
    if (++replacements_ > most_replacements || is_open(marker, name)) return EXP_NAME_TOO_LONG;

    const char* found =
        marker == variable_marker ? get_variable(name.c_str()) : get_path_variable(name.c_str());
    // Asked once for an expansion, and after a lookup, because that may load the environment.
    if (replacements_ == 1) is_traced_ = trace_is_seen();
    std::string_view value = found == nullptr ? "" : found;
    std::string kept;
    if (is_traced_) {
        // What was found is good until the next lookup only, be it one of a trace handler.
        kept = value;
        value = kept;
        trace_lookup(marker, name, found, kept);
    }
    if (found == nullptr) {
        result_ += null_value(name.c_str());
        return EXP_UNDEFINED;
    }
    if (next_marker(value, 0) == value.size()) {
        result_ += value;
        return EXP_OK;
    }
    open(marker + name, std::string(value));
    return nesting_->open_length > longest_result ? EXP_NAME_TOO_LONG : EXP_OK;
}

// What is open goes into the result but for its references: it is bounded like the result, so that
// a deep chain of long values ends before memory does.
void expander::open(std::string reference, std::string value) {
    if (nesting_ == nullptr) nesting_ = std::make_unique<nesting>();
    nesting_->open_length += value.size();
    nesting_->references.insert(reference);
    nesting_->around.push_back(std::move(current_));
    current_ = {std::move(value), 0, std::move(reference)};
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
    // The source may lie in the output, which is therefore touched last.
    expander expansion(source);
    const int code = expansion.run();
    *output = is_expand_error(code) ? std::string() : expansion.take_result();
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
        return i < path.size() && (path[i] == '/' || path[i] == '\\');
    };
    std::string normal;
    normal.reserve(path.size());
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
