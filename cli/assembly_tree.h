#pragma once

/// @file
/// The tree of an assembly as text.

#include <cli/command.h>
#include <cli/component_selection.h>
#include <cli/terminal_text.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>

#include <ostream>

namespace trv::cli {

struct TreeForm {
    TextForm text;
    /// Whether rotations are printed as axis vectors.
    bool matrix = false;
    /// Whether lines connect each component to its parent; without them it is indented. With them a
    /// new last sibling changes the lines of those before it.
    bool hasGuides = true;
};

/// The option "--no-guides", which means the same for every command that has it.
QCommandLineOption noGuidesOption();

/// Prints a line for each selected component: name, geometry file, placement in the parent's frame,
/// comment.
///
/// @return whether a component is selected
bool printTree(const CTrvAssemblyData& assembly, const ComponentSelection& selection,
               const TreeForm& form, std::ostream& out);

}  // namespace trv::cli
