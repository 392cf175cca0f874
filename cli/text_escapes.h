#pragma once

/// @file
/// The escapes for hidden characters in the output of the commands.
///
/// Threads: any.

#include <QString>

#include <string>

namespace trv::cli {

/// The text of shown().
QString escapedText(const QString& text);
void appendEscapedText(std::string& out, const QString& text);

/// The text of shownUnquoted(): the same with "\" as it is.
QString escapedExceptBackslash(const QString& text);

/// JSON in which hidden characters are escaped too.
QString escapedJson(const QString& json);

/// Appends a text as a JSON string, in the form of QJsonDocument and escapedJson().
void appendJsonString(std::string& out, const QString& text);

}  // namespace trv::cli
