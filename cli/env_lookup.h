#pragma once

/// @file
/// Variables and path lists of the installation: their values, origins and definitions.
///
/// All texts are narrow ones, as the runtime has them.

#include <cli/env_history.h>
#include <cli/env_origin.h>
#include <trvfiles/environment/runtime_observer.h>

#include <cstdint>
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
    std::string text;
    Origin origin;

    bool isFromEnvironment() const { return origin.kind == Origin::Kind::environment; }
};

/// The value that a program gets.
Value lookUp(const Subject& subject);

/// A reference that was looked up in an expansion. `value` is as it is stored, before the
/// references in it are expanded.
struct Lookup {
    Subject subject;
    Value value;
};

/// A copy of the event, with the origin of the value.
Lookup lookupOf(const lookup_event& event);

/// "SITE = Erlbach  (/opt/shop/site/environ.cfg:4)" or "NOBODY is not defined", without hidden
/// characters.
QString lookupText(const Lookup& lookup);

/// The keys `name` and `value`, which is null for an undefined one, and those of addOrigin() for a
/// defined one.
QJsonObject lookupJson(const Lookup& lookup);

struct Definitions {
    /// Each one replaces the one before; the last one counts.
    History inOrder;
    /// Entries that a lookup never finds: they are after the others in the section, under the same
    /// name or one that differs in case only.
    History hidden;
};

Definitions definitionsOf(const Subject& subject);

/// The text in the environment's store whose value a lookup gives, unless the process environment
/// has one. It is the last definition of its entry.
///
/// @return text_pool::none if there is none
std::int32_t definitionThatCounts(const Subject& subject);

struct VariableNames {
    /// In the order of the entries. Of names that differ in case only, the first one.
    std::vector<std::string> names;
    /// The origins of texts without "=", which are not variables. A walk by for_each_variable()
    /// ends at the first one.
    std::vector<Origin> otherTexts;
};

/// The contents of section `var`, or of section `path`, whose names are here without a "?".
VariableNames variableNames(bool ofPaths);

}  // namespace trv::cli
