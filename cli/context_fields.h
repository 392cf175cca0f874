#pragma once

/// @file
/// The fields of a machine context as texts that a command shows and takes.
///
/// Threads: any.

#include <trvfiles/machine_context/context_fields.h>

#include <QString>

namespace trv::cli {

/// "machine.name"
QString nameOf(const ContextField& field);

/// @return the field of a name; nullptr if there is none
const ContextField* findContextField(const QString& name);

/// A field as it is in a written file.
QString storedValue(const ContextField& field, const CMachineContextData& data);

/// Sets a field to a text, unless a file would give back something else.
///
/// @return what is wrong with the text, a sentence; empty if nothing is
QString setContextField(const ContextField& field, const QString& text, CMachineContextData& data);

}  // namespace trv::cli
