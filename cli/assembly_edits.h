#pragma once

/// @file
/// Changes of an assembly that the options of a command describe.
///
/// Threads: any.

#include <cli/component_path.h>
#include <trvfiles/assembly/component_body.h>

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QList>
#include <QString>

#include <array>
#include <map>
#include <string>
#include <vector>

namespace trv::cli {

/// A new value for a field of one component.
struct FieldEdit {
    enum class Key { name, comment, translation, enabled };

    /// As findComponent() takes it.
    QString path;
    Key key = Key::name;
    /// Of a name or a comment, in narrow text.
    std::string text;
    std::array<double, 3> translation = {};
    bool enabled = true;
};

struct AssemblyEdits {
    /// The new names of geometry files by their old names, in narrow text.
    std::map<std::string, std::string> fileNames;
    std::vector<FieldEdit> fields;

    bool isEmpty() const { return fileNames.empty() && fields.empty(); }
};

/// The options that readEdits() reads: "--rename-file", "--set", "--enable" and "--disable".
QList<QCommandLineOption> editOptions();

/// Reads the options of a call.
///
/// @return what is wrong with them, human-readable; empty if nothing is
QString readEdits(const QCommandLineParser& call, AssemblyEdits& edits);

/// Finds the components of the edits of fields. All paths are those of the unchanged assembly.
///
/// @param places  takes a place for each element of `edits.fields`
/// @return which path names no component, or which field would be set twice; empty if all is well
QString findPlaces(const AssemblyEdits& edits, const ComponentBody& root,
                   std::vector<ComponentPlace>& places);

/// Whether applyEdits() would change a component.
bool wouldChange(const AssemblyEdits& edits, const std::vector<ComponentPlace>& places,
                 const ComponentBody& root);

/// Changes the components. A file is renamed once, so edits can exchange two names.
void applyEdits(const AssemblyEdits& edits, const std::vector<ComponentPlace>& places,
                ComponentBody& root);

}  // namespace trv::cli
