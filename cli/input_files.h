#pragma once

/// @file
/// Files that are arguments of a command: their content, or why they cannot be read.
///
/// Names are resolved as a facade on the current directory resolves them. "-" is standard input for
/// every function that reads, and no file for those that write. Standard input and pipes are read
/// once and kept, see stream_copy.h.

#include <cli/command.h>
#include <cli/file_kind.h>
#include <cli/loaded_file.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/axis/axis_file.h>
#include <trvfiles/environment/file_replacement.h>
#include <trvfiles/machine_context/CMachineContextData.h>
#include <trvfiles/support/CFileFault.h>
#include <trvfiles/support/EFileIOStatus.h>

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <array>
#include <memory>
#include <vector>

namespace trv::cli {

/// Why a file is not read or written, if it is not.
struct Problem {
    EFileIOStatus status = eFileIOSuccess;
    /// Human-readable, without the place.
    QString reason;
    /// The place in the file, as in CFileFault; 0 if it is not known.
    int line = 0;
    int column = 0;
    /// For programs: a word that stays the same in later versions, and what it is about.
    QString code = {};
    QJsonObject fields = {};

    explicit operator bool() const { return status != eFileIOSuccess; }
};

/// What a call of the library reports as a problem: its status with the reason and its place.
Problem problemOf(EFileIOStatus status, const CFileFault& fault);

/// A failure of the system as a problem.
///
/// @param error  an `errno` value
Problem systemProblem(EFileIOStatus status, int error);

/// The name of a file in texts: "standard input" for "-".
QString displayName(const QString& name);

/// The first line of the text about a file and the blank line after it: "Axis file a.ref", or "Axis
/// file" if the name is empty.
QString headingText(const QString& kind, const QString& name);

/// "eFileIOContentError"
QString statusName(EFileIOStatus status);

/// "eFileIOOpenError: No such file or directory", "eFileIOContentError: line 2: four numbers are
/// expected"
QString problemText(const Problem& problem);

/// Prints what is wrong with a file.
///
/// @return the exit status of the command
ExitStatus report(const QString& name, const Problem& problem, const Console& console);

/// Prints what is wrong with a file or a directory, for a failure without a status of the library.
///
/// @return the exit status of the command
ExitStatus fail(const QString& name, const QString& reason, const Console& console);

/// The problem of a device, which is not opened.
Problem notRegular();

/// For a file of a kind that a command does not read: "this is an axis file; try 'trvfiles axis
/// show'".
QString otherKindText(FileKind kind);

/// The path of a name: relative to the current directory, cleaned.
QString resolved(const QString& name);

/// The path under which the content of a file can be read several times: the kind of a file is
/// found before it is read. That of standard input or of a pipe is the path of its copy. A device
/// is a problem, because it may have no end. Nothing else is opened.
Problem readablePath(const QString& name, QString& path);

/// Determines the kind of a file; an unknown kind is a problem.
///
/// @param kind  FileKind::unknown if there is a problem
Problem findKind(const QString& name, FileKind& kind);

/// Why the kind of a file is unknown: reading fails, it is empty, or it has another content.
Problem whyKindIsUnknown(const LoadedFile& file);

using Notes = std::vector<CFileFault::Note>;

// If the content is that of another kind, the reason names the kind and a command for it. `notes`
// takes what was accepted but altered, if it is not nullptr.

/// Reads an assembly.
Problem readAssembly(const QString& name, CTrvAssemblyData& data, Notes* notes = nullptr);
Problem readAssembly(const LoadedFile& file, CTrvAssemblyData& data, Notes* notes = nullptr);

struct AxisFile {
    AxisMatrix matrix = {};
    /// Below 0 for a tag that the file does not have.
    std::array<int, 3> tags = {-1, -1, -1};
};

Problem readAxis(const QString& name, AxisFile& axis, Notes* notes = nullptr);
Problem readAxis(const LoadedFile& file, AxisFile& axis, Notes* notes = nullptr);

/// Writes an axis file. The old file is whole until the new one takes its place.
///
/// @param held  what holdFile() has returned for the name
Problem writeAxis(const QString& name, const AxisFile& axis, file_replacement* held);

struct ContextFile {
    CMachineContextData data;
    /// The sections that the file lacks although a written one always has them.
    QStringList missingSections;
};

/// Reads a machine context. A field that the file does not have keeps its default.
Problem readContext(const QString& name, ContextFile& context, Notes* notes = nullptr);
Problem readContext(const LoadedFile& file, ContextFile& context, Notes* notes = nullptr);

/// Writes a machine context. The old file is whole until the new one takes its place. A temporary
/// file that cannot be opened is also reported through the fatal channel.
///
/// @param held  what holdFile() has returned, if the file has been read since
Problem writeContext(const QString& name, const CMachineContextData& data,
                     file_replacement* held = nullptr);

/// Keeps other commands from changing a file, and hosts from saving to it, until it is destroyed:
/// for commands that read a file, change something and write it. Nothing is reported.
///
/// @return nullptr for a name that the runtime cannot express, and for a directory, a pipe or a
///         device, which no file may replace; a replacement that is not open if the file cannot be
///         held
std::unique_ptr<file_replacement> holdFile(const QString& name);

/// Why a file is not held.
///
/// @param held  what holdFile() has returned for the name
Problem whyNotHeld(const QString& name, const file_replacement* held);

/// Why a directory cannot be listed, in the system's words; empty if it can.
QString whyNotListed(const QString& name);

}  // namespace trv::cli
