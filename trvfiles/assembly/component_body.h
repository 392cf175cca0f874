#pragma once

/// @file
/// What a component of an assembly is made of, and how a tree of any depth is copied and freed.

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

/// A component with its children, which stand side by side in one block of memory. The library's
/// own walks read it where the component's getters would copy.
///
/// Trees may be deeper than any stack, so no operation recurses.
struct ComponentBody : ComponentFields {
    ComponentBody() = default;
    /// Without children.
    explicit ComponentBody(const ComponentFields& fields) : ComponentFields(fields) {}
    ComponentBody(ComponentBody&&) noexcept = default;
    /// Needs no memory.
    ~ComponentBody();

    /// The component's body, valid while the component lives and is not changed. One that has none
    /// reads like a default-made one.
    static const ComponentBody& of(const CTrvAssemblyComponentData& component);

    /// A component that has the body.
    static CTrvAssemblyComponentData toComponent(ComponentBody body);

    /// A copy with all that is below.
    ComponentBody copy() const;

    std::vector<ComponentBody> components;
};

}  // namespace trv
