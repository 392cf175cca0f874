#include <fuzz/harness/plain_messages.h>
#include <trvfiles/environment/message_condition.h>
#include <trvfiles/support/blanks.h>

#include <algorithm>

namespace trv::fuzz {
namespace {

bool startsWith(const std::string& text, std::string_view prefix) {
    return text.compare(0, prefix.size(), prefix) == 0;
}

std::string withoutComment(const std::string& line) {
    std::string kept;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == '#' && (i + 1 == line.size() || line[++i] != '#')) break;
        kept += line[i];
    }
    return kept;
}

class Parser {
public:
    void take(const std::string& raw) {
        if (open_.empty() || open_.back()) {
            takeLine(withoutComment(std::string(trim_trailing(raw))));
        } else {
            skipLine(std::string(trim_leading(raw)));
        }
    }

    std::vector<PlainSection> sections;

private:
    void takeLine(const std::string& line) {
        const std::string text(trim_leading(line));
        if (startsWith(text, "/if")) {
            open_.push_back(evaluate_condition(text.substr(3)) == condition_result::yes);
        } else if (startsWith(text, "/else")) {
            if (!open_.empty()) open_.back() = false;
        } else if (startsWith(text, "/endif")) {
            if (!open_.empty()) open_.pop_back();
        } else if (startsWith(text, "[")) {
            sections.push_back({text.substr(1, text.find(']') - 1), {}});
        } else if (!text.empty() && !sections.empty()) {
            sections.back().messages.push_back(line);
        }
    }

    void skipLine(const std::string& text) {
        if (startsWith(text, "/if")) {
            ++inner_;
        } else if (startsWith(text, "/else") && inner_ == 0) {
            open_.back() = true;
        } else if (startsWith(text, "/endif") && inner_ == 0) {
            open_.pop_back();
        } else if (startsWith(text, "/endif")) {
            --inner_;
        }
    }

    std::vector<bool> open_;
    int inner_ = 0;
};

}  // namespace

std::vector<PlainSection> parseMessagesPlainly(std::string_view text) {
    constexpr std::size_t maxLineLength = 1023;
    Parser parser;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
        const std::string line(text.substr(0, std::min(end, maxLineLength)));
        // A zero byte ends the text, but not the line.
        parser.take(line.c_str());
        text.remove_prefix(end);
    }
    return parser.sections;
}

}  // namespace trv::fuzz
