#pragma once

/// @file
/// Standard input and pipes as files: their content can be read only once, but a command determines
/// the kind of a file before it reads it. The content is copied to a temporary file, so its size is
/// not limited by memory.
///
/// Threads: any.

#include <QString>

#include <cstdio>

class QFile;

namespace trv::cli {

/// Whether a name means standard input: "-".
bool isStandardInput(const QString& name);

/// Whether a path is that of a named pipe.
bool isPipe(const QString& path);

/// A file with the content of standard input or of a pipe. The stream is read to its end when it is
/// asked for first; the file remains until the process ends.
struct StreamCopy {
    /// Empty if there is a problem.
    QString path;
    /// Why there is no copy, human-readable.
    QString problem;
};

StreamCopy copyOfStandardInput();

/// @param path  resolved
StreamCopy copyOfPipe(const QString& path);

/// Copies a stream to its end.
///
/// @param maxBytes  more are a problem: a device without end must not fill the disk
/// @return what went wrong, human-readable; empty if nothing did
QString copyStream(std::FILE* stream, QFile& file, qint64 maxBytes);

}  // namespace trv::cli
