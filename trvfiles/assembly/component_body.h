#pragma once

/// @file
/// A component's fields without the copies that its getters make.

#include <string>
#include <vector>

class CTrvAssemblyComponentData;

namespace trv {

/// References to a component's fields, for the library's own walks over a tree. Valid while the
/// component lives and is not changed.
struct ComponentView {
    explicit ComponentView(const CTrvAssemblyComponentData& component);

    const std::string& name;
    const std::string& comment;
    const std::string& geometryFileName;
    const bool& enabled;
    const double* translation;
    const double* vec1;
    const double* vec2;
    const double* vec3;
    const std::vector<CTrvAssemblyComponentData>& components;

private:
    template <class Body>
    explicit ComponentView(const Body& body);
};

}  // namespace trv
