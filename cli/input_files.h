#pragma once

/// @file
/// Files that a command is given: what is in them, or why they cannot be read.
///
/// Names are resolved as a facade on the current directory resolves them.

#include <cli/command.h>
#include <cli/file_kind.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/assembly/assembly_reader.h>
#include <trvfiles/axis/axis_file.h>
#include <trvfiles/environment/file_replacement.h>
#include <trvfiles/machine_context/CMachineContextData.h>
#include <trvfiles/support/EFileIOStatus.h>

#include <QString>
#include <QStringList>

#include <array>
#include <memory>

namespace trv::cli {

/// What stands in the way of reading or writing a file, if anything does.
struct Problem {
    EFileIOStatus status = eFileIOSuccess;
    /// For a person: the place where one is known, and the reason.
    QString reason;

    explicit operator bool() const { return status != eFileIOSuccess; }
};

/// "eFileIOOpenError: No such file or directory"
QString problemText(const Problem& problem);

/// Says what is wrong with a file.
///
/// @return what the command is to end with
ExitStatus report(const QString& name, const Problem& problem, const Console& console);

/// What a message calls a pipe or a device that is not opened.
QString notRegularText();

/// The path that a name stands for.
QString resolved(const QString& name);

/// Tells the kind of a file; a file of an unknown kind is a problem.
///
/// @param kind  FileKind::unknown where there is a problem
Problem findKind(const QString& name, FileKind& kind);

/// @param report  takes what the reader left out, where it is asked for
Problem readAssembly(const QString& name, CTrvAssemblyData& data, ReadReport* report = nullptr);

struct AxisFile {
    AxisMatrix matrix = {};
    /// Below 0 where the file holds none.
    std::array<int, 3> tags = {-1, -1, -1};
};

Problem readAxis(const QString& name, AxisFile& axis);

/// Writes an axis file over what stood under the name, and unlike the facade sees every failure.
Problem writeAxis(const QString& name, const AxisFile& axis);

struct ContextFile {
    CMachineContextData data;
    /// The sections that the file lacks although a written one always has them.
    QStringList missingSections;
};

/// Reads a machine context; of what the file lacks the record keeps its default.
Problem readContext(const QString& name, ContextFile& context);

/// Writes a machine context. The old file is whole until the new one takes its place. A temporary
/// file that cannot be opened is also reported through the fatal channel.
///
/// @param held  what holdFile() has returned, if the file has been read since
Problem writeContext(const QString& name, const CMachineContextData& data,
                     file_replacement* held = nullptr);

/// Keeps other commands from changing a file, and hosts from saving to it, until it is destroyed:
/// for commands that read a file, change something and write it. Nothing is reported.
///
/// @return nullptr for a name that the runtime cannot express; a replacement that is not open if
///         the file cannot be held
std::unique_ptr<file_replacement> holdFile(const QString& name);

/// Why a directory cannot be listed, in the system's words; empty where it can.
QString whyNotListed(const QString& name);

}  // namespace trv::cli
