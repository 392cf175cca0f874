#pragma once

/// @file
/// What is wrong with a file, at a place, as compilers print it.

#include <cli/source_text.h>

#include <QJsonObject>
#include <QString>

#include <ostream>

namespace trv::cli {

struct Diagnostic {
    enum class Severity { warning, error };

    Severity severity = Severity::error;
    /// Without a line the diagnostic is about the whole file.
    Place place;
    /// A word for scripts that names the kind; it stays the same in later versions.
    QString code;
    /// Lower case, without a full stop; may quote any character of the file.
    QString text;
    /// The line of the file; empty if it is not to be shown.
    QString sourceLine;
    /// What the code is about, for programs.
    QJsonObject fields = {};
};

/// Prints "FILE:LINE:COLUMN: warning: TEXT". With a source line, that line and a caret under the
/// column follow.
///
/// @param columns  of the terminal; a longer line is cut around the caret
void printDiagnostic(const QString& file, const Diagnostic& diagnostic, int columns,
                     std::ostream& stream);

/// docs/command.md lists the keys.
QJsonObject diagnosticJson(const Diagnostic& diagnostic);

}  // namespace trv::cli
