#pragma once

/// @file
/// The tree of an assembly as text.

#include <cli/component_selection.h>
#include <cli/terminal_text.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>

#include <ostream>

namespace trv::cli {

struct TreeForm {
    TextForm text;
    /// Whether rotations are printed as axis vectors.
    bool matrix = false;
};

/// Prints a line for each selected component: name, geometry file, placement in the parent's frame,
/// comment. Lines connect each component to its parent.
///
/// @return whether a component is selected
bool printTree(const CTrvAssemblyData& assembly, const ComponentSelection& selection,
               const TreeForm& form, std::ostream& out);

}  // namespace trv::cli
