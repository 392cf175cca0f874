#pragma once

/// @file
/// Lines that fit a terminal, and their colours.
///
/// Threads: any.

#include <cli/command.h>

#include <QCommandLineOption>
#include <QString>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace trv::cli {

/// The form of printed lines.
struct TextForm {
    /// The columns of the terminal. Longer lines are cut. 0: lines have any length.
    int columns = 0;
    bool colour = false;
};

/// The columns that a text takes on a terminal: 2 for a wide character of East Asia or a pictogram,
/// 0 for a combining mark, 1 for any other one.
///
/// REQUIRES: UTF-8 without control characters.
int columnsOf(std::string_view text);

enum class Style { plain, file, faint };

/// A line of parts in different styles.
class StyledLine {
public:
    explicit StyledLine(TextForm form) : form_(form) {}

    /// The text of the line, to be appended to. It is UTF-8 without control characters.
    std::string& text() { return text_; }

    /// What is appended from now on has the style.
    void begin(Style style);

    /// Makes the whole line faint.
    void setFaint() { faint_ = true; }

    /// Appends the line with its line end to a text and empties it. A line that is too long ends
    /// with an ellipsis.
    void finish(std::string& out);

private:
    struct Part {
        std::size_t begin;
        Style style;
    };

    void cut();
    void appendPart(std::size_t begin, std::size_t end, Style style, std::string& out) const;
    void appendParts(std::string& out) const;

    TextForm form_;
    std::string text_;
    std::vector<Part> parts_;
    bool faint_ = false;
};

/// The option "--color".
QCommandLineOption colorOption();

/// The form of the lines on standard output, from the terminal, the option "--color", and the
/// variables NO_COLOR and TERM.
///
/// @param form  written on success only
/// @return what is wrong with the option; empty if nothing is
QString readTextForm(const QCommandLineParser& call, const Console& console, TextForm& form);

}  // namespace trv::cli
