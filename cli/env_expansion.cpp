#include <cli/env_expansion.h>
#include <trvfiles/environment/variable_expansion.h>

#include <utility>

namespace trv::cli {
namespace {

bool startsWith(std::string_view text, std::string_view beginning) {
    return text.substr(0, beginning.size()) == beginning;
}

bool endsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

// How many lines tell of one "+", from its first one on: the text that refers and the one it refers
// to, or a reference to nothing, and then the value so far.
int linesOfReplacement(std::string_view line) {
    if (startsWith(line, "   - ")) return 3;
    if (startsWith(line, "ref=[") && endsWith(line, "]\n")) return 2;
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

Expansion expand(const std::string& text, bool asPath, RuntimeMessages& messages,
                 const RuntimeMessages::TraceReader& takeLookup) {
    Expansion expansion;
    LookupFilter filter;
    messages.trace(
        [&] {
            expansion.code = asPath ? expand_path(text, &expansion.text)
                                    : expand_variables(text, &expansion.text);
        },
        [&](std::string_view line) {
            if (filter.isLookup(line)) takeLookup(line);
        });
    return expansion;
}

bool LookupFilter::isLookup(std::string_view line) {
    if (skipped_ == 0) skipped_ = linesOfReplacement(line);
    if (skipped_ == 0) return true;
    --skipped_;
    return false;
}

void UndefinedReferences::add(std::string_view lookup) {
    std::string reference = undefinedReference(lookup);
    if (reference.empty() || !known_.insert(reference).second) return;
    inOrder_.push_back(std::move(reference));
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
