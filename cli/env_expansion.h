#pragma once

/// @file
/// The expansion of a text, told by the runtime itself.

#include <cli/env_runtime.h>

#include <QString>

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace trv::cli {

struct Expansion {
    /// As expand_variables() returns it.
    int code = 0;
    std::string text;
};

/// Expands a text.
///
/// @param asPath      whether separators are normalised, as expand_path() does
/// @param takeLookup  gets a line for each reference that is replaced, in that order: "NAME =
///                    'value' from 'FILE' line N" or "NAME = <undefined variable>"
Expansion expand(const std::string& text, bool asPath, RuntimeMessages& messages,
                 const RuntimeMessages::TraceReader& takeLookup);

/// Finds the lines that tell lookups in a trace, among those that tell how a "+" is replaced.
class LookupFilter {
public:
    /// Asks for every line of the trace in turn.
    bool isLookup(std::string_view line);

private:
    int skipped_ = 0;
};

/// Collects the undefined references among lookups.
class UndefinedReferences {
public:
    /// @param lookup  a line; one that is no lookup is ignored
    void add(std::string_view lookup);

    /// "$NAME" or "?NAME", each once.
    const std::vector<std::string>& inOrder() const { return inOrder_; }

private:
    std::vector<std::string> inOrder_;
    std::unordered_set<std::string> known_;
};

/// A status of an expansion or a search for a person: "EXP_SYNTAX_ERROR (-31): ...".
QString codeText(int code);

}  // namespace trv::cli
