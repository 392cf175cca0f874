#pragma once

/// @file
/// The fields of a machine context as texts that a command shows and takes, and as JSON.
///
/// Threads: any.

#include <trvfiles/machine_context/context_fields.h>

#include <QJsonObject>
#include <QString>

#include <vector>

namespace trv::cli {

using ContextFieldList = std::vector<const ContextField*>;

/// "machine.name"
QString nameOf(const ContextField& field);

/// @return the field of a name; nullptr if there is none
const ContextField* findContextField(const QString& name);

/// A field as it is in a written file.
QString storedValue(const ContextField& field, const CMachineContextData& data);

/// Sets a field to a text, unless a file would give back something else.
///
/// @return what is wrong with the text, human-readable; empty if nothing is
QString setContextField(const ContextField& field, const QString& text, CMachineContextData& data);

/// A file with the values of fields: the keys "file" and "fields".
///
/// @param name  of the file, as given
QJsonObject contextJson(const QString& name, const ContextFieldList& fields,
                        const CMachineContextData& data);

}  // namespace trv::cli
