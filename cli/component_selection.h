#pragma once

/// @file
/// Which components of an assembly a command prints.
///
/// Threads: any.

#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/assembly/component_body.h>

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace trv::cli {

struct ComponentSelection {
    /// Components below this level are left out. The root is on level 0.
    std::optional<std::uint32_t> maxLevel;
    /// If it is not empty: of the components that are not below maxLevel only those remain whose
    /// name, comment or geometry file contains the text, in any case, and their ancestors.
    QString match;
};

struct SelectedComponent {
    const ComponentBody* component;
    std::uint32_t level : 31;
    /// Whether no sibling after it is selected.
    std::uint32_t isLast : 1;
};

/// The selected components, each before its children. The tree may be deeper than the stack.
///
/// @return pointers into the assembly, valid while it lives and is not changed
std::vector<SelectedComponent> selectComponents(const CTrvAssemblyData& assembly,
                                                const ComponentSelection& selection);

}  // namespace trv::cli
