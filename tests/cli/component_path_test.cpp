#include <cli/assembly_difference.h>
#include <cli/component_path.h>
#include <tests/cli/samples.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace trv::cli {
namespace {

using testing::assembly;
using testing::component;

const ComponentBody& rootOf(const CTrvAssemblyData& data) {
    return ComponentBody::of(data.getRootComponent());
}

// The place of a path as "1 0", or what is wrong with the path.
std::string search(const CTrvAssemblyData& data, const char* path) {
    const ComponentSearch found = findComponent(rootOf(data), QString::fromUtf8(path));
    if (!found.mistake.isEmpty()) return found.mistake.toStdString();
    std::string place;
    for (const std::size_t index : found.place)
        place += (place.empty() ? "" : " ") + std::to_string(index);
    return "at " + place;
}

CTrvAssemblyData vise() {
    return assembly(component(
        "Setup", {component("Base plate"),
                  component("Left vise", {component("Jaw"), component("Body"), component("Jaw")}),
                  component("")}));
}

TEST(ComponentPath, IsThatOfADifference) {
    const CTrvAssemblyData first =
        assembly(component("S\n", {component("a"), component("/[\\", {component("")})}));
    const CTrvAssemblyData second =
        assembly(component("S\n", {component("a"), component("/[\\", {component("x")})}));
    std::ostringstream out;
    EXPECT_TRUE(printDifferences(first, second, out));
    EXPECT_EQ(out.str(), "S\\x0a//[\\\\[1]/[0]: name \"\" -> \"x\"\n");
    EXPECT_EQ(pathOf(rootOf(first), {1, 0}), "S\\x0a//[\\\\[1]/[0]");
    EXPECT_EQ(pathOf(rootOf(first), {}), "S\\x0a");
    EXPECT_EQ(pathOf(ComponentBody(), {}), "(root)");
}

TEST(ComponentPath, NamesAComponent) {
    EXPECT_EQ(search(vise(), "Setup"), "at ");
    EXPECT_EQ(search(vise(), "Setup/Base plate[0]"), "at 0");
    EXPECT_EQ(search(vise(), "Setup/Left vise[1]/Jaw[0]"), "at 1 0");
    EXPECT_EQ(search(vise(), "Setup/Left vise[1]/Jaw[2]"), "at 1 2");
    EXPECT_EQ(search(vise(), "Setup/[2]"), "at 2");
    EXPECT_EQ(search(assembly(component("", {component("a")})), "(root)/a[0]"), "at 0");
}

TEST(ComponentPath, NeedsNoIndexAfterAUniqueName) {
    EXPECT_EQ(search(vise(), "Setup/Left vise/Body"), "at 1 1");
    EXPECT_EQ(search(vise(), "Setup/Left vise/Jaw[2]"), "at 1 2");
    EXPECT_EQ(search(vise(), "Setup/Left vise[1]/Body"), "at 1 1");
    EXPECT_EQ(
        search(vise(), "Setup/Left vise/Jaw"),
        "several components below 'Setup/Left vise[1]' are named 'Jaw'; the first is 'Jaw[0]'");
}

TEST(ComponentPath, SaysWhichPartNamesNothing) {
    EXPECT_EQ(search(vise(), "setup/Base plate"), "there is no root 'setup'; the root is 'Setup'");
    EXPECT_EQ(search(vise(), ""), "there is no root ''; the root is 'Setup'");
    EXPECT_EQ(search(vise(), "Setup/Left wise/Jaw[0]"),
              "there is no 'Left wise' below 'Setup'; the nearest is 'Left vise[1]'");
    EXPECT_EQ(search(vise(), "Setup/Left vise[1]/Bodi\n"),
              "there is no 'Bodi\\x0a' below 'Setup/Left vise[1]'; the nearest is 'Body[1]'");
    EXPECT_EQ(search(vise(), "Setup/Left vise/Body[2]"),
              "there is no 'Body[2]' below 'Setup/Left vise[1]'; the nearest is 'Body[1]'");
    EXPECT_EQ(search(vise(), "Setup/Base plate[00]"),
              "there is no 'Base plate[00]' below 'Setup'; the nearest is 'Base plate[0]'");
    EXPECT_EQ(search(vise(), "Setup/Base plate/Pin"),
              "there is no 'Pin' below 'Setup/Base plate[0]', which has no components");
    EXPECT_EQ(search(vise(), "Setup/"),
              "there is no '' below 'Setup'; the first of 3 components is 'Base plate[0]'");
    EXPECT_EQ(search(vise(), "Setup/Left vise/Clamp"),
              "there is no 'Clamp' below 'Setup/Left vise[1]'; the first of 3 components is "
              "'Jaw[0]'");
}

TEST(ComponentPath, AcceptsEveryNameAsItIsShown) {
    for (const char* name :
         {"a/b", "a[1]", "[0]", "/", "/[0]", "a[0]/b", "\\x2f", "a\\", "\n", "", "]", "[", "(root)",
          "x[0]/x[0]", "\xC3\xB6", "\xF3\xA0\x81\x81", "\xE2\x80\xAE", "name.name=1"}) {
        const CTrvAssemblyData data =
            assembly(component(name, {component("x"), component(name, {component(name)})}));
        for (const ComponentPlace& place :
             {ComponentPlace{}, ComponentPlace{0}, ComponentPlace{1}, ComponentPlace{1, 0}}) {
            const std::string path = pathOf(rootOf(data), place);
            const ComponentSearch found = findComponent(rootOf(data), QString::fromStdString(path));
            EXPECT_EQ(found.mistake.toStdString(), "") << path;
            EXPECT_EQ(found.place, place) << path;
        }
    }
}

TEST(ComponentPath, PrefersTheMeaningWithAllIndices) {
    const CTrvAssemblyData data =
        assembly(component("S", {component("a[1]"), component("a", {component("b")}),
                                 component("a/b"), component("b/c")}));
    EXPECT_EQ(search(data, "S/a[1]"), "at 1");
    EXPECT_EQ(search(data, "S/a[1][0]"), "at 0");
    EXPECT_EQ(search(data, "S/a\\x5b1]"), "at 0");
    EXPECT_EQ(search(data, "S/a/b"),
              "2 components have this path; in a name, \\x2f is a / and \\x5b is a [");
    EXPECT_EQ(search(data, "S/a\\x2fb"), "at 2");
    EXPECT_EQ(search(data, "S/a[1]/b[0]"), "at 1 0");
    EXPECT_EQ(search(data, "S/b/c"), "at 3");
}

TEST(ComponentPath, RejectsAPathThatTwoComponentsPrint) {
    const CTrvAssemblyData data =
        assembly(component("S", {component("b[1]/c"), component("b", {component("c")})}));
    ASSERT_EQ(pathOf(rootOf(data), {0}), "S/b[1]/c[0]");
    ASSERT_EQ(pathOf(rootOf(data), {1, 0}), "S/b[1]/c[0]");
    EXPECT_EQ(search(data, "S/b[1]/c[0]"),
              "2 components have this path; in a name, \\x2f is a / and \\x5b is a [");
    EXPECT_EQ(search(data, "S/b\\x5b1]\\x2fc[0]"), "at 0");
    EXPECT_EQ(search(data, "S/b[1]/c"),
              "2 components have this path; in a name, \\x2f is a / and "
              "\\x5b is a [");
    EXPECT_EQ(search(data, "S/b/c"), "at 1 0");
}

TEST(ComponentPath, ReadsEveryEscape) {
    const CTrvAssemblyData data = assembly(component("a\\\t\xE2\x80\xAE\xF3\xA0\x81\x81z"));
    EXPECT_EQ(search(data, "a\\\\\\x09\\u202e\\U000e0041z"), "at ");
    EXPECT_EQ(search(data, "\\x61\\x5C\\u0009\\U0000202E\xF3\xA0\x81\x81\\x7a"), "at ");
    for (const char* path : {"a\\", "\\", "\\n", "\\x1", "\\xg1", "\\u12 4", "\\U0011000", "\\X41",
                             "\\U00110000", "\\x-1", "\\x+1"}) {
        EXPECT_EQ(search(data, path),
                  "a \\ has to begin one of the escapes \\\\, \\xHH, \\uHHHH and \\UHHHHHHHH")
            << path;
    }
}

TEST(ComponentPath, LeadsToTheComponent) {
    CTrvAssemblyComponentData root = component("S", {component("a", {component("b")})});
    ComponentBody body = ComponentBody::of(root).copy();
    componentAt(body, {0, 0}).comment = "here";
    EXPECT_EQ(body.components[0].components[0].comment, "here");
    EXPECT_EQ(&componentAt(static_cast<const ComponentBody&>(body), {}), &body);
}

TEST(ComponentPath, AcceptsAnyDepthAndNumber) {
    constexpr int levels = 100000;
    const CTrvAssemblyData deep = testing::chain(levels, "f");
    std::string path = "L";
    for (int level = 1; level < levels; ++level)
        path += "/L";
    EXPECT_EQ(findComponent(rootOf(deep), QString::fromStdString(path)).place.size(), levels - 1U);
    EXPECT_EQ(search(deep, (path + "/M").c_str()).substr(0, 25), "there is no 'M' below 'L/");

    std::vector<CTrvAssemblyComponentData> children(100000, component("same"));
    const CTrvAssemblyData wide = assembly(component("S", std::move(children)));
    EXPECT_EQ(search(wide, "S/same[99999]"), "at 99999");
    EXPECT_EQ(search(wide, "S/same"),
              "several components below 'S' are named 'same'; the first is 'same[0]'");
}

}  // namespace
}  // namespace trv::cli
