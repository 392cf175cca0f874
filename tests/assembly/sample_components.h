#pragma once

#include <trvfiles/assembly/CTrvAssemblyData.h>

#include <array>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace trv::testing {

using Components = std::vector<CTrvAssemblyComponentData>;

/// A component with the identity placement. It has a geometry file if the name is not empty.
inline CTrvAssemblyComponentData leaf(std::string fileName) {
    CTrvAssemblyComponentData component;
    component.setGeometryFileName(std::move(fileName));
    return component;
}

/// A component without a geometry file, with some children.
inline CTrvAssemblyComponentData group(Components children) {
    CTrvAssemblyComponentData component;
    component.setComponents(std::move(children));
    return component;
}

inline CTrvAssemblyComponentData named(std::string name, CTrvAssemblyComponentData component = {}) {
    component.setName(std::move(name));
    return component;
}

inline CTrvAssemblyComponentData moved(double x, double y, double z,
                                       CTrvAssemblyComponentData component = {}) {
    const double translation[3] = {x, y, z};
    component.setTranslation(translation);
    return component;
}

/// Makes `parent` the only parent of `child`.
inline CTrvAssemblyComponentData over(CTrvAssemblyComponentData child,
                                      CTrvAssemblyComponentData parent = {}) {
    Components children;
    children.push_back(std::move(child));
    parent.setComponents(std::move(children));
    return parent;
}

/// A chain of `levels` components, each translated by 1 along x, with `bottom` at its end.
inline CTrvAssemblyComponentData chain(std::size_t levels, CTrvAssemblyComponentData bottom) {
    for (; levels > 0; --levels)
        bottom = over(std::move(bottom), moved(1, 0, 0));
    return bottom;
}

using Vector3 = std::array<double, 3>;

/// A component with the identity placement, a name and a geometry file.
inline CTrvAssemblyComponentData leaf(const std::string& name, const std::string& fileName) {
    CTrvAssemblyComponentData component;
    component.setName(name);
    component.setGeometryFileName(fileName);
    return component;
}

inline CTrvAssemblyComponentData group(const std::string& name,
                                       std::vector<CTrvAssemblyComponentData> children) {
    CTrvAssemblyComponentData component;
    component.setName(name);
    component.setComponents(std::move(children));
    return component;
}

inline CTrvAssemblyData assemblyOf(CTrvAssemblyComponentData root, Vector3 dimension = {}) {
    CTrvAssemblyData assembly;
    assembly.setDimension(dimension.data());
    assembly.getRootComponent() = std::move(root);
    return assembly;
}

/// A chain of `components` components. The last one has a geometry file.
inline CTrvAssemblyComponentData chain(int components) {
    CTrvAssemblyComponentData component = leaf("level", "end.stl");
    for (int i = 1; i < components; ++i)
        component = over(std::move(component), named("level"));
    return component;
}

}  // namespace trv::testing
