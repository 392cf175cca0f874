#pragma once

/// @file
/// The expansion of a text, with the lookups that it makes.

#include <cli/command.h>
#include <cli/env_observer.h>

#include <QJsonArray>
#include <QString>

#include <functional>
#include <string>
#include <unordered_set>
#include <vector>

namespace trv::cli {

struct Expansion {
    /// As expand_variables() returns it.
    int code = 0;
    std::string text;
};

using LookupTaker = std::function<void(const lookup_event& lookup)>;

/// Expands a text.
///
/// @param asPath      whether separators are normalised, as expand_path() does
/// @param takeLookup  gets the lookup of each reference that is replaced, in that order
Expansion expand(const std::string& text, bool asPath, const LookupTaker& takeLookup);

/// The undefined references among lookups, for a message.
class UndefinedReferences {
public:
    /// Ignores the lookup of a defined variable.
    void add(const lookup_event& lookup);

    /// "$NAME" or "?NAME", each once, as JSON.
    QJsonArray json() const;

    /// "$NAME" or "?NAME", each once.
    const std::vector<std::string>& inOrder() const { return inOrder_; }

private:
    std::vector<std::string> inOrder_;
    std::unordered_set<std::string> known_;
};

/// Prints what is wrong with a text that is expanded or searched for.
void printFailure(const QString& text, const QString& reason, const Console& console);

/// The same with a line for each reference.
void printUndefined(const QString& text, const UndefinedReferences& references,
                    const Console& console);

/// "EXP_OK", "EXP_NOT_FOUND"; "error" for a status without a name.
QString codeName(int code);

/// The human-readable status of an expansion or a search: "EXP_SYNTAX_ERROR (-31): ...".
QString codeText(int code);

}  // namespace trv::cli
