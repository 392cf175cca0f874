#pragma once

/// @file
/// How the classes that hold text as QString open a file: by its whole name, "\" translated where
/// the system does not know it, and never a directory for reading.
///
/// Threads: any.

#include <trvfiles/support/platform.h>

#include <QString>

class QFile;

namespace trv {

/// @return the file, or none where the path names none or it cannot be opened, with the reason in
///         `errno`
platform::file_handle openForRead(const QString& path, platform::file_mode mode);

/// Creates a file, or cuts an existing one to nothing.
///
/// @return as openForRead()
platform::file_handle openForWrite(const QString& path, platform::file_mode mode);

/// Whether openForRead() would open the file. Answers at once, and never waits for the writer of a
/// pipe.
bool isReadable(const QString& path);

/// Opens a file, or a resource of the host (":/x"), for Qt's readers.
///
/// @param handle  takes the open file, which `file` reads without owning it: has to outlive `file`
/// @param file    a QFile that has no name yet
/// @param reason  takes the reason if the file does not open
bool openForRead(const QString& path, platform::file_handle& handle, QFile& file, QString& reason);

/// Creates a file for Qt's writers, or cuts an existing one to nothing. Nothing is left in a buffer
/// of Qt's after a write, and QFile::flush() reports what the system refuses.
///
/// @param handle  as for openForRead()
/// @param file    a QFile that has no name yet
bool openForWrite(const QString& path, platform::file_handle& handle, QFile& file);

}  // namespace trv
