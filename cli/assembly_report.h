#pragma once

/// @file
/// What the commands print about an assembly as a whole.

#include <cli/component_selection.h>
#include <cli/text_output.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>

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

/// The lines of the counts.
void printCounts(const CTrvAssemblyData& assembly, std::ostream& out);

/// The name of the file, unless it is empty, the size and the counts.
void printAssemblyHead(const QString& name, const CTrvAssemblyData& assembly, std::ostream& out);

/// The members of a JSON object; docs/command.md lists the keys. The tree is a flat list: JSON
/// readers do not accept the depth that assemblies may have.
///
/// @param selection  the components in the list; nullptr for an object without the list
/// @return the number of components in the list
std::size_t writeAssembly(const QString& name, const CTrvAssemblyData& assembly,
                          const ComponentSelection* selection, JsonWriter& json);

/// A few words: "assembly, 12 components, 9 placed files".
QString assemblySummary(const CTrvAssemblyData& assembly);

}  // namespace trv::cli
