#pragma once

/// @file
/// The directory to which the names in a project file are relative: that of the file itself, as for
/// a host whose facade is on the project's directory.
///
/// Threads: any.

#include <trvfiles/text/text_conversion.h>

#include <QString>

namespace trv::cli {

class ReferenceDirectory {
public:
    /// @param file  the name of the file that refers to others; "-", which is in the current
    ///              directory
    explicit ReferenceDirectory(const QString& file);

    /// The absolute path of a name; empty if no file can have it.
    QString pathOf(const HostPath& name) const;

    /// Whether there is something else than a directory.
    bool hasFile(const HostPath& name) const;

private:
    const HostPath path_;
};

}  // namespace trv::cli
