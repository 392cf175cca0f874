#pragma once

/// @file
/// What the commands print about an assembly.

#include <trvfiles/assembly/CTrvAssemblyData.h>

#include <QJsonObject>
#include <QString>

#include <ostream>

namespace trv::cli {

struct AssemblyCounts {
    /// Every component, the root and the disabled ones included.
    std::size_t components = 0;
    /// The record's own count.
    unsigned long long componentNumber = 0;
    /// The entries of the flattened list.
    std::size_t placedFiles = 0;
};

AssemblyCounts countsOf(const CTrvAssemblyData& assembly);

/// The size, the counts and the tree.
void printAssembly(const QString& name, const CTrvAssemblyData& assembly, std::ostream& out);

/// The tree, a line a component: name, geometry file, placement in the parent's frame, comment.
void printTree(const CTrvAssemblyData& assembly, std::ostream& out);

/// The same for a program; docs/command.md lists the keys. The tree is a flat list: JSON
/// readers do not accept the depth that assemblies may have.
QJsonObject assemblyJson(const QString& name, const CTrvAssemblyData& assembly);

/// The flattened list, a line a placed file.
void printPlacements(const CTrvAssemblyData& assembly, std::ostream& out);
void printPlacementsAsCsv(const CTrvAssemblyData& assembly, std::ostream& out);
QJsonObject placementsJson(const QString& name, const CTrvAssemblyData& assembly);

/// A few words: "assembly, 12 components, 9 placed files".
QString assemblySummary(const CTrvAssemblyData& assembly);

}  // namespace trv::cli
