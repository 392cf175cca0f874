#pragma once

/// @file
/// The fields of a machine context under the names that their sections and keys give them.
///
/// Threads: any.

#include <trvfiles/machine_context/CMachineContextData.h>

#include <QString>

#include <string>
#include <vector>

namespace trv::cli {

/// A text, a proximity, or the origin. Of the functions, those that are not its own are null.
struct ContextField {
    const char* section;
    const char* key;
    std::wstring (CMachineContextData::*text)() const;
    void (CMachineContextData::*setText)(const std::wstring&);
    double (CMachineContextData::*proximity)() const;
    void (CMachineContextData::*setProximity)(double);

    bool isText() const { return text != nullptr; }
    bool isProximity() const { return proximity != nullptr; }

    /// "machine.name"
    QString name() const;
};

/// All of them, in the order of a file.
const std::vector<ContextField>& contextFields();

/// @return the field, or none (null)
const ContextField* findContextField(const QString& name);

/// A field as it stands in a written file.
QString storedText(const ContextField& field, const CMachineContextData& data);

/// Sets a field from a text, unless what a file would give back is something else.
///
/// @return what is wrong with the text, a sentence; empty where nothing is
QString setContextField(const ContextField& field, const QString& text, CMachineContextData& data);

}  // namespace trv::cli
