#pragma once

/// @file
/// Variables and path lists of the installation: their values, and how they came about.
///
/// All texts are narrow ones, as the runtime has them.

#include <cli/env_history.h>

#include <string>
#include <vector>

namespace trv::cli {

/// Which variable, or which path list, is asked for.
struct Subject {
    bool isPath;
    std::string name;

    /// "?NAME" for a path list, else "NAME".
    std::string text() const { return isPath ? '?' + name : name; }
};

/// From the text that a Subject shows itself as.
Subject subjectOf(const std::string& text);

/// Whether it is the work zone's temporary directory, which no file defines. Looking it up makes
/// the directory, and may draw a number for the zone.
bool isTemporaryDirectory(const Subject& subject);

struct Value {
    bool isDefined = false;
    bool fromEnvironment = false;
    std::string text;
    /// "from 'FILE' line N", "from environment" or "set by program"; empty for a temporary
    /// directory that was worked out.
    std::string origin;
};

/// What a program gets.
Value lookUp(const Subject& subject);

struct Definitions {
    /// Each one replaced by the next; the last one counts.
    History inOrder;
    /// Entries that a lookup never comes to: they are after these in the section, under a name that
    /// differs in case at most.
    History hidden;
};

Definitions definitionsOf(const Subject& subject);

struct VariableNames {
    /// In the order of the entries; of names that differ in case alone the first.
    std::vector<std::string> names;
    /// Where texts without a "=" stand, which are no variables. A walk by for_each_variable() ends
    /// at the first one.
    std::vector<std::string> otherTexts;
};

/// What section `var` holds.
VariableNames variableNames();

}  // namespace trv::cli
