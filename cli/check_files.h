#pragma once

/// @file
/// Checks one project file: its kind, its content and what is wrong with it.
///
/// Threads: any; several files at once.

#include <cli/diagnostic.h>
#include <cli/file_kind.h>
#include <trvfiles/support/EFileIOStatus.h>

#include <QJsonObject>
#include <QString>

#include <vector>

namespace trv::cli {

struct FileReport {
    QString name;
    FileKind kind = FileKind::unknown;
    EFileIOStatus status = eFileIOSuccess;
    /// The content in a few words; empty if the file cannot be read.
    QString summary;
    /// By line; those about the whole file are last.
    std::vector<Diagnostic> diagnostics;

    bool hasError() const { return status != eFileIOSuccess; }
    std::size_t warningCount() const { return diagnostics.size() - (hasError() ? 1 : 0); }
};

struct CheckOptions {
    /// Files to which a file refers have to exist.
    bool checksReferences = false;
    /// Diagnostics have the lines of the file.
    bool showsSource = false;
};

FileReport checkFile(const QString& name, const CheckOptions& options);

/// The report about a directory that cannot be listed.
FileReport unlistedDirectory(const QString& name, const QString& reason);

/// Whether the file can be read and is of no kind.
bool isNoProjectFile(const FileReport& report);

/// "a.xml: 2 warnings (SUMMARY)"
QString verdictText(const FileReport& report);

/// docs/command.md lists the keys.
QJsonObject reportJson(const FileReport& report);

}  // namespace trv::cli
