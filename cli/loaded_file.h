#pragma once

/// @file
/// A file whose beginning has been read. That of most project files is the whole file, so that the
/// kind and the content need one opening.

#include <cli/file_kind.h>

#include <QString>

#include <string>

namespace trv::cli {

struct Problem;

struct LoadedFile {
    QString name;
    /// As readablePath() returns it.
    QString path;
    /// The first bytes, as many as kindOf() needs.
    std::string beginning;
    /// Whether the beginning is the whole file.
    bool isWhole = false;
    /// The `errno` of a read that has failed; 0 if none has.
    int readError = 0;

    FileKind kind() const { return kindOf(beginning); }

    /// Whether a reader of bytes gets from the beginning what one that opens the file in text mode
    /// gets. Text mode on Windows removes a CR before an LF, and ends at a SUB.
    bool isWholeText() const;
};

/// Opens and reads the beginning of a file.
///
/// @param name  as for readablePath()
/// @return a problem if the file cannot be opened; none if reading fails, which a reader of the
/// path
///         reports with the place
Problem load(const QString& name, LoadedFile& file);

}  // namespace trv::cli
