#pragma once

/// @file
/// The lines of a sectioned settings file and their meaning.
///
/// Threads: any.

#include <cstddef>
#include <string_view>

namespace trv::settings {

/// The blanks of the format: " \t\f\v\n\r".
constexpr bool isBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// A text without the blanks at both of its ends.
inline std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

/// Consumes a text line by line.
class Lines {
public:
    explicit Lines(std::string_view text) : rest_(text) {}

    /// Sets `line` to the next line without its end; returns false at the end of the text. There,
    /// an empty line or a single CR without a line end is not a line.
    bool next(std::string_view& line) {
        const std::size_t end = rest_.find('\n');
        const bool isTerminated = end != std::string_view::npos;
        line = rest_.substr(0, end);
        rest_.remove_prefix(isTerminated ? end + 1 : rest_.size());
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        return isTerminated || !line.empty();
    }

    /// What follows the line.
    std::string_view rest() const { return rest_; }

private:
    std::string_view rest_;
};

/// Whether a line opens a section.
///
/// @param name  written if it does
inline bool isHeader(std::string_view line, std::string_view& name) {
    if (line.empty() || line.front() != '[') return false;
    const std::size_t end = line.find(']');
    if (end == std::string_view::npos) return false;
    name = trimmed(line.substr(1, end - 1));
    return true;
}

/// Whether a line sets a key.
///
/// @param key  written if it does
inline bool isKeyLine(std::string_view line, std::string_view& key) {
    if (line.empty() || line.front() == '#') return false;
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) return false;
    key = trimmed(line.substr(0, equals));
    return true;
}

/// The number of sections with a name and of lines that set a key.
struct Counts {
    std::size_t sections;
    std::size_t keys;
};

inline Counts countOf(std::string_view text) {
    Counts counts = {0, 0};
    std::string_view name;
    std::string_view line;
    for (Lines lines(text); lines.next(line);) {
        if (isHeader(line, name)) {
            if (!name.empty()) ++counts.sections;
        } else if (isKeyLine(line, name)) {
            ++counts.keys;
        }
    }
    return counts;
}

}  // namespace trv::settings
