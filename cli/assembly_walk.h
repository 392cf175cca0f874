#pragma once

/// @file
/// A walk over all components of an assembly.

#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/assembly/component_view.h>

#include <cstddef>
#include <vector>

namespace trv::cli {

/// Calls `visit(view, level)` for every component, each before its children, the root being on
/// level 0. The tree may be deeper than the stack.
template <class Visit>
void forEachComponent(const CTrvAssemblyData& assembly, Visit visit) {
    struct Siblings {
        const std::vector<CTrvAssemblyComponentData>* components;
        std::size_t next;
    };
    std::vector<Siblings> levels;
    const auto enter = [&](const CTrvAssemblyComponentData& component) {
        const ComponentView view(component);
        visit(view, levels.size());
        levels.push_back({&view.components, 0});
    };
    enter(assembly.getRootComponent());
    while (!levels.empty()) {
        Siblings& siblings = levels.back();
        if (siblings.next == siblings.components->size()) {
            levels.pop_back();
        } else {
            enter((*siblings.components)[siblings.next++]);
        }
    }
}

}  // namespace trv::cli
