#pragma once

/// @file
/// Files for the tests of the command.

#include <trvfiles/assembly/CTrvAssemblyData.h>

#include <string>
#include <utility>
#include <vector>

namespace trv::testing {

/// Three components: a group, a placed file, and a disabled file that is rotated by 90 degrees.
inline const char* const setupXml =
    "<ComponentInfo version=\"1\">\n"
    "  <Attributs>\n"
    "    <Dimension x=\"100\" y=\"50\" z=\"20.5\"/>\n"
    "  </Attributs>\n"
    "  <Component name=\"Setup\">\n"
    "    <Translation x=\"10\"/>\n"
    "    <Data>\n"
    "      <Component name=\"Vise\" comment=\"left, &quot;old&quot;\">\n"
    "        <Translation y=\"5\" z=\"0.1\"/>\n"
    "        <Data><File name=\"vise, small.stl\"/></Data>\n"
    "      </Component>\n"
    "      <Component name=\"Part\" enabled=\"0\">\n"
    "        <Orientation><vec1 y=\"1\"/><vec2 x=\"-1\"/><vec3 z=\"1\"/></Orientation>\n"
    "        <Data><File name=\"part.stl\"/></Data>\n"
    "      </Component>\n"
    "    </Data>\n"
    "  </Component>\n"
    "</ComponentInfo>\n";

/// A rotation by 90 degrees about z and a translation by 10, 20, 30, with tags.
inline const char* const turnedAxis =
    "      1\n"
    "      0.000000     -1.000000      0.000000     10.000000\n"
    "      1.000000      0.000000      0.000000     20.000000\n"
    "      0.000000      0.000000      1.000000     30.000000\n"
    "      0.000000      0.000000      0.000000      1.000000\n"
    "      0.000000      1.000000      0.000000    -20.000000\n"
    "     -1.000000      0.000000      0.000000     10.000000\n"
    "      0.000000      0.000000      1.000000    -30.000000\n"
    "      0.000000      0.000000      0.000000      1.000000\n"
    "  #3 0 7\n";

inline const char* const identityAxis =
    "      0\n"
    "      1.000000      0.000000      0.000000      0.000000\n"
    "      0.000000      1.000000      0.000000      0.000000\n"
    "      0.000000      0.000000      1.000000      0.000000\n"
    "      0.000000      0.000000      0.000000      1.000000\n"
    "      1.000000      0.000000      0.000000      0.000000\n"
    "      0.000000      1.000000      0.000000      0.000000\n"
    "      0.000000      0.000000      1.000000      0.000000\n"
    "      0.000000      0.000000      0.000000      1.000000\n";

/// A machine context with all of its fields, as it is written.
inline const char* const setupContext =
    "[header]\n"
    "version=2\n"
    "comment=first op\n"
    "name=Setup A\n"
    "[machine]\n"
    "name=MILL5\n"
    "position=POS1\n"
    "proximity=10.000000\n"
    "[postpro]\n"
    "origin_program=12.500000 0.000000 -3.000000\n"
    "reference_axis=transfo.dat\n"
    "[part]\n"
    "surface_group=TOP\n"
    "[clamping_system]\n"
    "name=VISE\n"
    "proximity=2.500000\n";

inline CTrvAssemblyComponentData component(const std::string& name,
                                           std::vector<CTrvAssemblyComponentData> children = {}) {
    CTrvAssemblyComponentData made;
    made.setName(name);
    made.setComponents(std::move(children));
    return made;
}

inline CTrvAssemblyComponentData leaf(const std::string& name, const std::string& file) {
    CTrvAssemblyComponentData made = component(name);
    made.setGeometryFileName(file);
    return made;
}

inline CTrvAssemblyData assembly(CTrvAssemblyComponentData root) {
    CTrvAssemblyData made;
    made.getRootComponent() = std::move(root);
    return made;
}

/// `levels` nested components. The innermost one has a file.
inline CTrvAssemblyData chain(int levels, const std::string& file) {
    CTrvAssemblyComponentData inner = leaf("L", file);
    for (int level = 1; level < levels; ++level) {
        std::vector<CTrvAssemblyComponentData> children;
        children.push_back(std::move(inner));
        inner = component("L", std::move(children));
    }
    return assembly(std::move(inner));
}

/// The same as a file, without indentation, which would make it large.
inline std::string chainXml(int levels, const std::string& file) {
    std::string text = "<ComponentInfo version=\"1\"><Attributs/>";
    for (int level = 0; level < levels; ++level)
        text += "<Component name=\"L\"><Data>";
    text += "<File name=\"" + file + "\"/>";
    for (int level = 0; level < levels; ++level)
        text += "</Data></Component>";
    return text + "</ComponentInfo>";
}

}  // namespace trv::testing
