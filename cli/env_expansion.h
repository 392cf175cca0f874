#pragma once

/// @file
/// The expansion of a text, told by the runtime itself.

#include <cli/env_runtime.h>

#include <QString>

#include <string>
#include <vector>

namespace trv::cli {

struct Expansion {
    /// As expand_variables() returns it.
    int code = 0;
    std::string text;
    /// A line for each reference that was replaced, in that order: "NAME = 'value' from 'FILE' line
    /// N" or "NAME = <undefined variable>".
    std::vector<std::string> lookups;
};

/// @param asPath  whether separators are normalised, as expand_path() does
Expansion expand(const std::string& text, bool asPath, RuntimeMessages& messages);

/// The lines of a trace that tell lookups, without those that tell how a "+" was replaced.
std::vector<std::string> lookupsIn(const std::vector<std::string>& trace);

/// The undefined references among lookups, as "$NAME" or "?NAME", each once.
std::vector<std::string> undefinedIn(const std::vector<std::string>& lookups);

/// A status of an expansion or a search for a person: "EXP_SYNTAX_ERROR (-31): ...".
QString codeText(int code);

}  // namespace trv::cli
