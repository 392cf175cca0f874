#include <cli/terminal_text.h>
#include <trvfiles/support/platform.h>

#include <QChar>

#include <algorithm>
#include <cstring>
#include <iterator>

namespace trv::cli {
namespace {

// The last character of a line that is cut.
constexpr const char* ellipsis = "…";

struct CharacterRange {
    uint first;
    uint last;
};

// The blocks of wide characters, in ascending order. Some of them contain a few narrow ones.
constexpr CharacterRange wideCharacters[] = {
    {0x1100, 0x115F},   {0x2E80, 0x303E},   {0x3041, 0xA4CF},   {0xA960, 0xA97F},
    {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},
    {0xFFE0, 0xFFE6},   {0x1F300, 0x1F64F}, {0x1F680, 0x1F6FF}, {0x1F900, 0x1F9FF},
    {0x20000, 0x3FFFD},
};

bool isWide(uint code) {
    const auto* const range =
        std::lower_bound(std::begin(wideCharacters), std::end(wideCharacters), code,
                         [](const CharacterRange& one, uint value) { return one.last < value; });
    return range != std::end(wideCharacters) && range->first <= code;
}

int columnsOf(uint code) {
    constexpr uint firstMark = 0x300;
    if (code < firstMark) return 1;
    const QChar::Category category = QChar::category(code);
    if (category == QChar::Mark_NonSpacing || category == QChar::Mark_Enclosing) return 0;
    return isWide(code) ? 2 : 1;
}

// Removes the first character.
//
// REQUIRES: UTF-8, not empty.
uint takeCharacter(std::string_view& text) {
    const auto first = static_cast<unsigned char>(text.front());
    const std::size_t length = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    uint code = length == 1 ? first : first & (0xFFU >> (length + 1));
    const std::size_t present = std::min(length, text.size());
    for (std::size_t i = 1; i < present; ++i)
        code = code << 6 | (static_cast<unsigned char>(text[i]) & 0x3F);
    text.remove_prefix(present);
    return code;
}

const char* escapeOf(Style style) {
    switch (style) {
        case Style::file:
            return "\x1b[36m";
        case Style::faint:
            return "\x1b[2m";
        case Style::plain:
            break;
    }
    return "";
}

bool isSet(const char* variable) {
    const char* value = platform::get_environment(variable);
    return value != nullptr && *value != '\0';
}

// https://no-color.org: any value of NO_COLOR that is not empty means no colour.
bool isColourWanted(const Console& console) {
    if (console.outColumns == 0 || isSet("NO_COLOR")) return false;
    return !isSet("TERM") || std::strcmp(platform::get_environment("TERM"), "dumb") != 0;
}

}  // namespace

int columnsOf(std::string_view text) {
    int columns = 0;
    while (!text.empty())
        columns += columnsOf(takeCharacter(text));
    return columns;
}

void StyledLine::begin(Style style) {
    if (form_.colour) parts_.push_back({text_.size(), style});
}

void StyledLine::finish(std::string& out) {
    // Every character has at least as many bytes as columns.
    const auto columns = static_cast<std::size_t>(form_.columns);
    if (form_.columns > 0 && text_.size() > columns) cut();
    appendParts(out);
    out += '\n';
    text_.clear();
    parts_.clear();
    faint_ = false;
}

void StyledLine::cut() {
    std::string_view rest = text_;
    // The length of the beginning that leaves one column for the ellipsis.
    std::size_t kept = 0;
    int columns = 0;
    while (!rest.empty()) {
        columns += columnsOf(takeCharacter(rest));
        if (columns < form_.columns) kept = text_.size() - rest.size();
        if (columns > form_.columns) {
            text_.resize(kept);
            text_ += ellipsis;
            // The ellipsis has the style of the character before it.
            while (!parts_.empty() && parts_.back().begin > kept)
                parts_.pop_back();
            return;
        }
    }
}

void StyledLine::appendPart(std::size_t begin, std::size_t end, Style style,
                            std::string& out) const {
    if (begin >= end) return;
    const bool isEscaped = form_.colour && style != Style::plain;
    if (isEscaped) out += escapeOf(style);
    out.append(text_, begin, end - begin);
    if (isEscaped) out += "\x1b[0m";
}

void StyledLine::appendParts(std::string& out) const {
    if (faint_) return appendPart(0, text_.size(), Style::faint, out);
    std::size_t begin = 0;
    Style style = Style::plain;
    for (const Part& part : parts_) {
        appendPart(begin, part.begin, style, out);
        begin = part.begin;
        style = part.style;
    }
    appendPart(begin, text_.size(), style, out);
}

QCommandLineOption colorOption() {
    return QCommandLineOption(QStringLiteral("color"),
                              QStringLiteral("Colour the text: on a terminal, always or never"),
                              QStringLiteral("auto|always|never"));
}

QString readTextForm(const QCommandLineParser& call, const Console& console, TextForm& form) {
    const QString choice = call.isSet(QStringLiteral("color")) ? call.value(QStringLiteral("color"))
                                                               : QStringLiteral("auto");
    const bool isAuto = choice == QLatin1String("auto");
    const bool isAlways = choice == QLatin1String("always");
    if (!isAuto && !isAlways && choice != QLatin1String("never")) {
        return QStringLiteral("--color takes auto, always or never, not '%1'").arg(choice);
    }
    form.columns = console.outColumns;
    form.colour = isAlways || (isAuto && isColourWanted(console));
    return {};
}

}  // namespace trv::cli
