#pragma once

/// @file
/// The results of a command that takes several files: texts one after another, or one JSON
/// document.

#include <cli/command.h>
#include <cli/input_files.h>
#include <cli/text_output.h>

#include <QString>

#include <functional>
#include <memory>
#include <ostream>

namespace trv::cli {

/// What is before the text of each file if there are several.
enum class Heading {
    /// A line with the name of the file, and a blank line between files.
    name,
    /// A blank line between files. The text itself names the file.
    blankLine
};

/// The output of one call.
class FileOutput {
public:
    FileOutput(int fileCount, Heading heading, std::ostream& out);

    /// To be called before the text of a file.
    ///
    /// @return where the text goes
    std::ostream& beginText(const QString& name);

    /// Writes the members of the object of a file. The document of several files is an object with
    /// the array "files".
    void writeJson(const std::function<void(JsonWriter&)>& writeMembers);

    /// Ends the JSON document of several files, which is empty if no file was read.
    void endJson();

private:
    JsonWriter& severalFiles();

    std::ostream& out_;
    bool hasSeveral_;
    Heading heading_;
    bool isFirst_ = true;
    /// Of several files.
    std::unique_ptr<JsonWriter> json_;
};

/// Calls `print` for each file of a call and reports the files with a problem.
///
/// @return `failed` if there is a problem
ExitStatus printEachFile(const QStringList& names, const Console& console,
                         const std::function<Problem(const QString& name)>& print);

}  // namespace trv::cli
