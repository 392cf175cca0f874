#pragma once

/// @file
/// How the classes that hold text as QString open a file: by its whole name, with "\" translated
/// for a system that does not know it. A directory is never opened for reading.
///
/// Each function that takes a `fault` stores there why a file was not opened, with the number of
/// the system, and leaves it as it is after a success.
///
/// Threads: any.

#include <trvfiles/support/platform.h>

#include <QString>

class QFile;
struct CFileFault;

namespace trv {

/// Opens a file for reading.
///
/// @return the file; nullptr if it cannot be opened or the path is the name of no file, with the
///         reason in `errno` too
platform::file_handle openForRead(const QString& path, platform::file_mode mode,
                                  CFileFault* fault = nullptr);

/// Creates a file, or truncates an existing one.
///
/// @return as openForRead()
platform::file_handle openForWrite(const QString& path, platform::file_mode mode,
                                   CFileFault* fault = nullptr);

/// Whether openForRead() would open the file. It returns at once: it does not wait for the writer
/// of a pipe.
bool isReadable(const QString& path);

/// Whether a path leads to a regular file. Nothing is opened.
bool isRegularFile(const QString& path);

/// Opens a file, or a resource of the host (":/x"), for Qt's readers.
///
/// @param handle  takes the open file, which `file` reads without owning it: has to outlive `file`
/// @param file    a QFile that has no name yet
bool openForRead(const QString& path, platform::file_handle& handle, QFile& file,
                 CFileFault* fault = nullptr);

/// Creates a file for Qt's writers, or truncates an existing one. After a write no bytes are in a
/// buffer of Qt's, and QFile::flush() reports what the system refuses.
///
/// @param handle  as for openForRead()
/// @param file    a QFile that has no name yet
bool openForWrite(const QString& path, platform::file_handle& handle, QFile& file,
                  CFileFault* fault = nullptr);

}  // namespace trv
