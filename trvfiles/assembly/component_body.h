#pragma once

/// @file
/// The fields of a component of an assembly, and how a tree of any depth is copied and freed.

#include <trvfiles/assembly/CTrvAssemblyNode.h>

#include <string>
#include <vector>

class CTrvAssemblyComponentData;

namespace trv {

/// Everything but the children.
struct ComponentFields {
    std::string name;
    std::string comment;
    bool enabled = true;
    double translation[3] = {0, 0, 0};
    double vec1[3] = {1, 0, 0};
    double vec2[3] = {0, 1, 0};
    double vec3[3] = {0, 0, 1};
    std::string geometryFileName;
};

/// A component with its children, which are in one block of memory. The library's own walks read
/// it, because the getters of a component copy.
///
/// A tree may be deeper than the stack, so no operation recurses.
///
/// Hosts refer to it by its base CTrvAssemblyNode, which has no fields.
struct ComponentBody : CTrvAssemblyNode, ComponentFields {
    ComponentBody() = default;
    /// A component without children.
    explicit ComponentBody(const ComponentFields& fields) : ComponentFields(fields) {}
    ComponentBody(ComponentBody&&) noexcept = default;
    ComponentBody& operator=(ComponentBody&& other) noexcept;
    /// Allocates nothing.
    ~ComponentBody();

    /// The body of a component, valid while the component lives and is not changed. A component
    /// that has none gives a default-constructed one.
    static const ComponentBody& of(const CTrvAssemblyComponentData& component);

    /// The body of a component, to be changed in place, valid while the component lives and is not
    /// assigned to. A component that has none gets a default-constructed one. Its name keeps code
    /// that only reads from getting one by accident.
    static ComponentBody& editable(CTrvAssemblyComponentData& component);

    /// A component that has the body.
    static CTrvAssemblyComponentData toComponent(ComponentBody body);

    /// A copy of the component with all that is below it. A copy constructor would be called by
    /// accident, for a cost that grows with the tree.
    ComponentBody copy() const;

    std::vector<ComponentBody> components;
};

}  // namespace trv
