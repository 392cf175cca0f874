#include <cli/env_expansion.h>
#include <trvfiles/environment/variable_expansion.h>

#include <algorithm>
#include <string_view>

namespace trv::cli {
namespace {

bool startsWith(std::string_view text, std::string_view beginning) {
    return text.substr(0, beginning.size()) == beginning;
}

bool endsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

// How many lines at the front of a trace tell of one "+": the text that refers and the one it
// refers to, or a reference that is none, and then the value so far.
std::size_t linesOfReplacement(const std::vector<std::string>& trace, std::size_t line) {
    if (startsWith(trace[line], "   - ")) return 3;
    if (startsWith(trace[line], "ref=[") && endsWith(trace[line], "]\n")) return 2;
    return 0;
}

// "$NAME" or "?NAME"; empty for the lookup of something that is defined.
std::string undefinedReference(std::string_view lookup) {
    constexpr std::string_view variable = " = <undefined variable>";
    constexpr std::string_view path = " = <undefined path>";
    if (endsWith(lookup, variable)) {
        return '$' + std::string(lookup.substr(0, lookup.size() - variable.size()));
    }
    if (endsWith(lookup, path)) {
        return '?' + std::string(lookup.substr(0, lookup.size() - path.size()));
    }
    return {};
}

struct Meaning {
    int code;
    const char* name;
    const char* text;
};

constexpr int outOfMemory = -41;

constexpr Meaning meanings[] = {
    {EXP_NOT_FOUND, "EXP_NOT_FOUND", "there is no such file"},
    {EXP_SYNTAX_ERROR, "EXP_SYNTAX_ERROR", "a bracket behind a $ or ? is not closed"},
    {EXP_BUFFER_TOO_SMALL, "EXP_BUFFER_TOO_SMALL", "the list or the path found is too long"},
    {outOfMemory, "error", "memory ran out"},
    {EXP_NAME_TOO_LONG, "EXP_NAME_TOO_LONG",
     "a value refers to itself, or the text or its expansion is too long"},
    {EXP_UNDEFINED, "EXP_UNDEFINED", "something that it refers to is not defined"},
    {EXP_INVALID_ARGUMENT, "EXP_INVALID_ARGUMENT", "no file name follows the list of directories"},
};

}  // namespace

Expansion expand(const std::string& text, bool asPath, RuntimeMessages& messages) {
    Expansion expansion;
    expansion.lookups = lookupsIn(messages.traceOf([&] {
        expansion.code =
            asPath ? expand_path(text, &expansion.text) : expand_variables(text, &expansion.text);
    }));
    return expansion;
}

std::vector<std::string> lookupsIn(const std::vector<std::string>& trace) {
    std::vector<std::string> lookups;
    for (std::size_t line = 0; line < trace.size();) {
        const std::size_t passed = linesOfReplacement(trace, line);
        if (passed == 0) lookups.push_back(trace[line]);
        line += std::max<std::size_t>(passed, 1);
    }
    return lookups;
}

std::vector<std::string> undefinedIn(const std::vector<std::string>& lookups) {
    std::vector<std::string> references;
    for (const std::string& lookup : lookups) {
        const std::string reference = undefinedReference(lookup);
        if (reference.empty()) continue;
        if (std::find(references.begin(), references.end(), reference) == references.end()) {
            references.push_back(reference);
        }
    }
    return references;
}

QString codeText(int code) {
    for (const Meaning& meaning : meanings) {
        if (meaning.code != code) continue;
        return QStringLiteral("%1 (%2): %3")
            .arg(QString::fromLatin1(meaning.name), QString::number(code),
                 QString::fromLatin1(meaning.text));
    }
    return QStringLiteral("error %1").arg(code);
}

}  // namespace trv::cli
