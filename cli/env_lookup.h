#pragma once

/// @file
/// Variables and path lists of the installation: their values, origins and definitions.
///
/// All texts are narrow ones, as the runtime has them.

#include <cli/env_history.h>

#include <string>
#include <vector>

namespace trv::cli {

/// A variable or a path list that a call asks for.
struct Subject {
    bool isPath;
    std::string name;

    /// "?NAME" for a path list, else "NAME".
    std::string text() const { return isPath ? '?' + name : name; }
};

/// The inverse of Subject::text().
Subject subjectOf(const std::string& text);

/// Whether it is the work zone's temporary directory, which no file defines. Looking it up creates
/// the directory, and may allocate a number for the zone.
bool isTemporaryDirectory(const Subject& subject);

struct Value {
    bool isDefined = false;
    bool fromEnvironment = false;
    std::string text;
    /// "from 'FILE' line N", "from environment" or "set by program"; empty for a temporary
    /// directory that was computed.
    std::string origin;
};

/// The value that a program gets.
Value lookUp(const Subject& subject);

struct Definitions {
    /// Each one replaces the one before; the last one counts.
    History inOrder;
    /// Entries that a lookup never finds: they are after the others in the section, under the same
    /// name or one that differs in case only.
    History hidden;
};

Definitions definitionsOf(const Subject& subject);

struct VariableNames {
    /// In the order of the entries. Of names that differ in case only, the first one.
    std::vector<std::string> names;
    /// The origins of texts without "=", which are not variables. A walk by for_each_variable()
    /// ends at the first one.
    std::vector<std::string> otherTexts;
};

/// The contents of section `var`.
VariableNames variableNames();

}  // namespace trv::cli
