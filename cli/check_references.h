#pragma once

/// @file
/// The files to which a project file refers. A name is relative to the directory of the file that
/// has it, as for a host whose facade is on the project's directory.
///
/// Threads: any.

#include <cli/source_text.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/machine_context/CMachineContextData.h>

#include <QJsonObject>
#include <QString>

#include <vector>

namespace trv::cli {

struct Reference {
    /// What the file is for: "geometry file".
    QString what;
    QString name;
    /// The key of a machine context; empty in an assembly.
    QString section;
    QString key;
};

using References = std::vector<Reference>;

/// The geometry files that do not exist, each once, also those of disabled components.
References missingReferences(const QString& file, const CTrvAssemblyData& assembly);

/// The same of the machine, the position and the reference axis.
References missingReferences(const QString& file, const CMachineContextData& context);

/// Where the file first names each of the references; line 0 if it does not.
std::vector<Place> placesOf(const SourceText& source, const References& references);

/// The members of the JSON of a missing file beside its code and its place.
QJsonObject fieldsOf(const Reference& reference);

/// "geometry file "a.stl" does not exist"
QString textOf(const Reference& reference);

}  // namespace trv::cli
