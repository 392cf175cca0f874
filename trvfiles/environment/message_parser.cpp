#include <trvfiles/environment/message_condition.h>
#include <trvfiles/environment/message_parser.h>
#include <trvfiles/environment/message_store.h>
#include <trvfiles/environment/runtime_observer.h>
#include <trvfiles/support/blanks.h>
#include <trvfiles/support/line_source.h>

#include <cstring>
#include <string>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

// Both are rules of the file format: 1023 characters of a line count, and "/if" nests 7 deep.
constexpr int line_buffer_size = 1024;
constexpr int max_open_conditions = 7;

// An unknown keyword is reported again and again until the handler ends the process: the parse
// cannot go on. If the handler always returns, the parse is aborted after this number of reports.
constexpr int max_keyword_reports = 1000;

bool starts_with(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

// Cuts off a comment, in place: the text only gets shorter. "##" is a "#" of the text.
void cut_comment(char* text) {
    char* end = std::strchr(text, '#');
    if (end == nullptr) return;
    for (const char* next = end; *next != '\0'; ++next) {
        if (*next == '#') {
            if (next[1] != '#') break;
            ++next;
        }
        *end++ = *next;
    }
    *end = '\0';
}

const char* skip_blanks(const char* text) {
    while (is_blank(*text))
        ++text;
    return text;
}

// Invariant: `condition_[level_]` says whether the lines of the innermost open block are taken. All
// blocks around it are taken, because the blocks in a skipped one are not opened but counted in
// `skipped_conditions_`.
class message_parser {
public:
    message_parser(message_store* store, VCL8BLineSource& source, const char* file_name,
                   const message_sink& sink, std::int32_t file)
        : store_(store), source_(source), file_name_(file_name), sink_(sink), file_(file) {}

    /// Whether the parse came to the end of the source.
    bool run() {
        while (!aborted_ && read_line()) {
            if (condition_[level_]) {
                take_line();
            } else {
                skip_line();
            }
        }
        if (!condition_[level_]) report_fatal_at(line_number_, "'/if' without '/endif'");
        if (level_ > 0) report_fatal_at(-1, "'/if' without '/endif' at end of file.");
        if (aborted_) report_fatal_at(0, "Error loading file.");
        return !aborted_;
    }

private:
    bool read_line() {
        const std::uint64_t length = source_.readLine(line_, line_buffer_size);
        if (length == 0) return false;
        ++line_number_;
        // The rest of a long line is lost, and its beginning is taken.
        if (length >= line_buffer_size) {
            report(fault_kind::line_too_long, line_number_, "Input line too long");
        }
        return true;
    }

    // Trailing blanks are cut before the comment, so blanks before a comment belong to the text.
    void take_line() {
        cut_trailing_blanks(line_);
        cut_comment(line_);
        const char* text = skip_blanks(line_);
        if (*text == '\0') return;
        if (text[0] == '/' && text[1] != '/') {
            take_directive(text);
        } else if (text[0] == '[') {
            take_header(text + 1);
        } else {
            take_entry();
        }
    }

    // A header without "]" ends at the end of its line.
    void take_header(std::string_view text) {
        const std::string name(text.substr(0, text.find(']')));
        section_ = sink_.section(store_, name.c_str(), sink_.context);
        if (section_ < 0) aborted_ = true;
    }

    void take_entry() {
        // Entries above the first header belong to no section.
        if (section_ < 0) return;
        if (sink_.entry(store_, section_, line_, file_, line_number_, sink_.context) != 0) {
            aborted_ = true;
        }
    }

    // A keyword is recognised by its first letters: "/ifdef" is an "/if".
    void take_directive(const char* line) {
        const std::string_view keyword(line + 1);
        if (starts_with(keyword, "if")) {
            open_condition(line);
        } else if (starts_with(keyword, "else")) {
            turn_condition();
        } else if (starts_with(keyword, "endif")) {
            close_condition();
        } else {
            refuse_keyword(keyword);
        }
    }

    void open_condition(const std::string& line) {
        if (level_ == max_open_conditions) {
            // The "%s" is part of the text, which hosts compare.
            report_fatal_at(line_number_, "too many nested conditions: %s");
            aborted_ = true;
            return;
        }
        ++level_;
        condition_[level_] = evaluate(line);
    }

    // Reports a condition that cannot be evaluated, which then counts as false.
    bool evaluate(const std::string& line) {
        switch (evaluate_condition(std::string_view(line).substr(sizeof "/if" - 1))) {
            case condition_result::yes:
                return true;
            case condition_result::no:
                break;
            case condition_result::undefined:
                report(fault_kind::unknown_variable, line_number_,
                       "unknown variable : '" + line + "'");
                break;
            case condition_result::invalid:
                report_fatal_at(line_number_, "invalid condition: " + line);
                break;
        }
        return false;
    }

    void turn_condition() {
        if (level_ == 0) {
            report_fatal_at(line_number_, "'/else' without '/if'");
            return;
        }
        condition_[level_] = false;
    }

    void close_condition() {
        if (level_ == 0) {
            report_fatal_at(line_number_, "'/endif' without '/if'");
            return;
        }
        --level_;
    }

    void refuse_keyword(std::string_view keyword) {
        const std::string text = "Unknown keyword : '/" + std::string(keyword) + "'";
        for (int report = 0; report < max_keyword_reports; ++report)
            report_fatal_at(line_number_, text);
        aborted_ = true;
    }

    // Blocks inside a skipped one are only counted: their conditions are not evaluated, and their
    // "/else" and "/endif" do not end the skipped block.
    void skip_line() {
        const std::string_view text(skip_blanks(line_));
        if (starts_with(text, "/if")) {
            ++skipped_conditions_;
        } else if (starts_with(text, "/else")) {
            if (skipped_conditions_ == 0) condition_[level_] = true;
        } else if (starts_with(text, "/endif")) {
            if (skipped_conditions_ == 0) {
                --level_;
            } else {
                --skipped_conditions_;
            }
        }
    }

    void report_fatal_at(int line, std::string_view text) { report(fault_kind::fatal, line, text); }

    void report(fault_kind kind, int line, std::string_view text) {
        current_observer().fault_found({kind, file_name_, line, text});
    }

    message_store* store_;
    VCL8BLineSource& source_;
    const char* file_name_;
    message_sink sink_;
    std::int32_t file_;

    char line_[line_buffer_size] = "";
    int line_number_ = 0;
    int section_ = -1;
    bool aborted_ = false;

    // One flag for each open "/if" and, below them, one for the file itself.
    bool condition_[1 + max_open_conditions] = {true};
    int level_ = 0;
    std::uint64_t skipped_conditions_ = 0;
};

}  // namespace

parse_result parse_messages(message_store* store, VCL8BLineSource& source, const char* file_name,
                            const message_sink& sink) {
    if (sink.section == nullptr || sink.entry == nullptr) return parse_result::not_registered;
    // A copy: the name may be a text of the store, which moves while the file is read.
    const std::string name(file_name != nullptr ? file_name : "");
    const std::int32_t file = register_file_name(store, name.c_str());
    if (file < 0) return parse_result::not_registered;
    message_parser parser(store, source, name.c_str(), sink, file);
    return parser.run() ? parse_result::complete : parse_result::aborted;
}

}  // namespace trv
