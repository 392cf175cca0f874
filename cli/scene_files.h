#pragma once

/// @file
/// The geometry files of the assemblies on a page.
///
/// Threads: one at a time.

#include <cli/geometry_file.h>
#include <cli/output_buffer.h>
#include <cli/reference_directory.h>
#include <cli/text_output.h>

#include <QHash>
#include <QString>

#include <ostream>
#include <string>
#include <vector>

namespace trv::cli {

/// Each file once, whatever the number of names and of assemblies that name it.
class SceneFiles {
public:
    /// Examines a file that is not known yet.
    ///
    /// @param name  as a component has it
    /// @return the index of the file
    int add(const ReferenceDirectory& directory, const std::string& name);

    /// Prints a line for each file that is not shown.
    void reportHidden(std::ostream& err) const;

    /// Adds the array "files" to the current object.
    void write(JsonWriter& json) const;

    /// Writes an element with the content, in base64, for each file that is shown.
    ///
    /// @throws std::runtime_error if a file has become unreadable since add()
    void writeContents(OutputBuffer& out) const;

private:
    struct File {
        QString name;
        QString path;
        GeometryFile geometry;
    };

    std::vector<File> files_;
    /// By their paths; names that no file can have are there under the name.
    QHash<QString, int> indices_;
};

}  // namespace trv::cli
