#pragma once

/// @file
/// A walk over all components of an assembly.

#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/assembly/component_body.h>

#include <cstddef>
#include <vector>

namespace trv::cli {

/// Calls `visit(component, level)` for every component, each before its children, the root being on
/// level 0. The tree may be deeper than the stack.
template <class Visit>
void forEachComponent(const CTrvAssemblyData& assembly, Visit visit) {
    struct Siblings {
        const std::vector<ComponentBody>* components;
        std::size_t next;
    };
    std::vector<Siblings> levels;
    const auto enter = [&](const ComponentBody& component) {
        visit(component, levels.size());
        levels.push_back({&component.components, 0});
    };
    enter(ComponentBody::of(assembly.getRootComponent()));
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
