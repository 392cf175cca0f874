#pragma once

/// @file
/// How the classes that hold text as QString open a file: by its whole name, "\" translated where
/// the system does not know it, and never a directory for reading.
///
/// Threads: any.

#include <trvfiles/support/platform.h>

#include <QString>

namespace trv {

/// @return the file, or none where the path names none or it cannot be opened, with the reason in
///         `errno`
platform::file_handle openForRead(const QString& path, platform::file_mode mode);

/// Creates a file, or cuts an existing one to nothing.
///
/// @return as openForRead()
platform::file_handle openForWrite(const QString& path, platform::file_mode mode);

}  // namespace trv
