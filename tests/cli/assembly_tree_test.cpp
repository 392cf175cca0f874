#include <cli/assembly_tree.h>
#include <tests/cli/samples.h>

#include <gtest/gtest.h>

#include <sstream>

namespace trv::testing {
namespace {

std::string tree(const CTrvAssemblyData& data, const cli::TreeForm& form = {}) {
    std::ostringstream out;
    cli::printTree(data, {}, form, out);
    return out.str();
}

CTrvAssemblyComponentData turned(CTrvAssemblyComponentData made, const double (&vec1)[3],
                                 const double (&vec2)[3], const double (&vec3)[3]) {
    made.setOrientation(vec1, vec2, vec3);
    return made;
}

constexpr double unitX[3] = {1, 0, 0};
constexpr double unitY[3] = {0, 1, 0};
constexpr double unitZ[3] = {0, 0, 1};
constexpr double minusX[3] = {-1, 0, 0};

TEST(PrintTree, ShowsAComponentWithoutAName) {
    EXPECT_EQ(tree(CTrvAssemblyData()), "(no name), at 0 0 0\n");
}

TEST(PrintTree, ConnectsComponentsWithTheirParents) {
    EXPECT_EQ(tree(assembly(component(
                  "a", {component("b", {component("c", {component("d")}), component("e")}),
                        component("f"), component("g", {component("h", {component("i")})})}))),
              u8"a, at 0 0 0\n"
              u8"├── b, at 0 0 0\n"
              u8"│   ├── c, at 0 0 0\n"
              u8"│   │   └── d, at 0 0 0\n"
              u8"│   └── e, at 0 0 0\n"
              u8"├── f, at 0 0 0\n"
              u8"└── g, at 0 0 0\n"
              u8"    └── h, at 0 0 0\n"
              u8"        └── i, at 0 0 0\n");
}

TEST(PrintTree, IndentsComponentsWithoutGuides) {
    cli::TreeForm form;
    form.hasGuides = false;
    EXPECT_EQ(
        tree(assembly(component("a", {component("b", {component("c")}), component("d")})), form),
        "a, at 0 0 0\n"
        "    b, at 0 0 0\n"
        "        c, at 0 0 0\n"
        "    d, at 0 0 0\n");
}

TEST(PrintTree, KeepsEveryComponentOnItsLine) {
    CTrvAssemblyComponentData root = leaf("a\nb", "c\td");
    root.setComment("e\x1b[0mf %1 %2");
    EXPECT_EQ(tree(assembly(root)), "a\\x0ab: c\\x09d, at 0 0 0 -- e\\x1b[0mf %1 %2\n");
}

TEST(PrintTree, ShowsARotationAsAnAngle) {
    const CTrvAssemblyComponentData root = turned(component("a"), unitY, minusX, unitZ);
    EXPECT_EQ(tree(assembly(root)), u8"a, at 0 0 0, turned 90° about z\n");
    EXPECT_EQ(tree(assembly(root), {{}, true}), "a, at 0 0 0, axes 0 1 0 / -1 0 0 / 0 0 1\n");
}

TEST(PrintTree, ShowsAxesThatAreNotARotation) {
    const double other[] = {0, 0.5, 0};
    const CTrvAssemblyComponentData plain = component("a");
    EXPECT_EQ(tree(assembly(turned(plain, other, unitY, unitZ))),
              "a, at 0 0 0, axes 0 0.5 0 / 0 1 0 / 0 0 1\n");
    EXPECT_EQ(tree(assembly(turned(plain, unitX, other, unitZ))),
              "a, at 0 0 0, axes 1 0 0 / 0 0.5 0 / 0 0 1\n");
    EXPECT_EQ(tree(assembly(turned(plain, unitX, unitY, other))),
              "a, at 0 0 0, axes 1 0 0 / 0 1 0 / 0 0.5 0\n");
    // A mirror.
    EXPECT_EQ(tree(assembly(turned(plain, minusX, unitY, unitZ))),
              "a, at 0 0 0, axes -1 0 0 / 0 1 0 / 0 0 1\n");
}

TEST(PrintTree, ShowsNoRotationByNothing) {
    const double nearlyX[] = {1.000001, 0, 0};
    const CTrvAssemblyComponentData root = turned(component("a"), nearlyX, unitY, unitZ);
    EXPECT_EQ(tree(assembly(root)), "a, at 0 0 0\n");
    EXPECT_EQ(tree(assembly(root), {{}, true}), "a, at 0 0 0, axes 1.000001 0 0 / 0 1 0 / 0 0 1\n");
}

TEST(PrintTree, RoundsNumbers) {
    CTrvAssemblyComponentData root = leaf("a", "f");
    const double translation[] = {0.1 + 0.2, -1e-9, 1.23456789};
    root.setTranslation(translation);
    EXPECT_EQ(tree(assembly(root)), "a: f, at 0.3 0 1.234568\n");
}

TEST(PrintTree, FitsATerminal) {
    CTrvAssemblyComponentData child = leaf("b", "f.stl");
    child.setComment("note");
    const CTrvAssemblyData data = assembly(component("a", {child}));
    EXPECT_EQ(tree(data, {{31, false}, false}), u8"a, at 0 0 0\n└── b: f.stl, at 0 0 0 -- note\n");
    EXPECT_EQ(tree(data, {{29, false}, false}), u8"a, at 0 0 0\n└── b: f.stl, at 0 0 0 -- no…\n");
    EXPECT_EQ(tree(data, {{14, false}, false}), u8"a, at 0 0 0\n└── b: f.stl,…\n");
    EXPECT_EQ(tree(data, {{3, false}, false}), u8"a,…\n└─…\n");
}

TEST(PrintTree, ColoursFilesAndComments) {
    CTrvAssemblyComponentData child = leaf("b", "f");
    child.setComment("c");
    EXPECT_EQ(tree(assembly(component("a", {child})), {{0, true}, false}),
              u8"a, at 0 0 0\n└── b: \x1b[36mf\x1b[0m, at 0 0 0\x1b[2m -- c\x1b[0m\n");
}

TEST(PrintTree, DimsDisabledComponentsAndWhatIsBelowThem) {
    CTrvAssemblyComponentData off = component("b", {leaf("c", "f")});
    off.setEnabled(false);
    EXPECT_EQ(tree(assembly(component("a", {off, component("d")})), {{0, true}, false}),
              u8"a, at 0 0 0\n"
              u8"\x1b[2m├── b (disabled), at 0 0 0\x1b[0m\n"
              u8"\x1b[2m│   └── c: f, at 0 0 0\x1b[0m\n"
              u8"└── d, at 0 0 0\n");
}

TEST(PrintTree, PrintsWhatIsSelected) {
    const CTrvAssemblyData data =
        assembly(component("a", {component("b", {component("x")}), component("c")}));
    std::ostringstream out;
    EXPECT_TRUE(cli::printTree(data, {{}, QStringLiteral("X")}, {}, out));
    EXPECT_EQ(out.str(), u8"a, at 0 0 0\n└── b, at 0 0 0\n    └── x, at 0 0 0\n");
    std::ostringstream nothing;
    EXPECT_FALSE(cli::printTree(data, {{}, QStringLiteral("y")}, {}, nothing));
    EXPECT_EQ(nothing.str(), "");
}

}  // namespace
}  // namespace trv::testing
