#pragma once

/// @file
/// Flattening an assembly: the placement of each component in the world, one after the other.

#include <trvfiles/assembly/XForm3Gen.h>
#include <trvfiles/assembly/component_body.h>

#include <cstddef>
#include <vector>

namespace trv {

/// The placement of a component in its parent's frame.
inline Math::XForm3Gen<double> placementOf(const ComponentFields& component) {
    Math::XForm3Gen<double> form;
    const auto setRow = [&form](int row, const double values[3], double last) {
        for (int column = 0; column < 3; ++column)
            form(row, column) = values[column];
        form(row, 3) = last;
    };
    setRow(0, component.vec1, 0);
    setRow(1, component.vec2, 0);
    setRow(2, component.vec3, 0);
    setRow(3, component.translation, 1);
    return form;
}

/// A component with its placement in the world, valid during the visit.
struct PlacedComponent {
    /// Whether the component is an entry of the flattened list.
    bool isEntry() const { return !component.geometryFileName.empty(); }

    const ComponentBody& component;
    const Math::XForm3Gen<double>& world;
    /// How many components are above it, up to the one where flattening begins.
    std::size_t level;
    /// Its position among the children of its parent.
    std::size_t index;
};

/// Calls `visit(PlacedComponent)` for each component before its children, disabled ones included.
/// It returns whether the children are visited. Keeps one placement for each level.
///
/// Iterative: the tree may be deeper than the stack.
///
/// @param root    the component where the walk begins
/// @param parent  the placement of its parent in the world
/// @param visit   may throw
template <class Visit>
void visitPlacements(const ComponentBody& root, const Math::XForm3Gen<double>& parent,
                     Visit visit) {
    struct Level {
        const std::vector<ComponentBody>* children;
        std::size_t next;
        Math::XForm3Gen<double> world;
    };
    std::vector<Level> levels;
    // `outer` is a copy: adding a level may move the others.
    const auto enter = [&](const ComponentBody& component, Math::XForm3Gen<double> outer,
                           std::size_t index) {
        const Math::XForm3Gen<double> world = placementOf(component) * outer;
        const bool isEntered = visit(PlacedComponent{component, world, levels.size(), index});
        if (isEntered && !component.components.empty()) {
            levels.push_back({&component.components, 0, world});
        }
    };
    enter(root, parent, 0);
    while (!levels.empty()) {
        Level& level = levels.back();
        if (level.next == level.children->size()) {
            levels.pop_back();
            continue;
        }
        const std::size_t index = level.next++;
        enter((*level.children)[index], level.world, index);
    }
}

/// Calls `visit(PlacedComponent)` for each component that is enabled and below no disabled one,
/// before its children: the entries of the flattened list in their order, and the components
/// between them. The list needs no memory of its own.
///
/// @param root    the component where flattening begins
/// @param parent  the placement of its parent in the world
/// @param visit   may throw
template <class Visit>
void flatten(const ComponentBody& root, const Math::XForm3Gen<double>& parent, Visit visit) {
    visitPlacements(root, parent, [&visit](const PlacedComponent& placed) {
        if (placed.component.enabled) visit(placed);
        return placed.component.enabled;
    });
}

}  // namespace trv
