#include <cli/difference_json.h>
#include <tests/cli/samples.h>

#include <gtest/gtest.h>

#include <limits>
#include <sstream>
#include <string>

namespace trv::testing {
namespace {

// Checks that the result is that of comparing the records, too.
std::string json(const CTrvAssemblyData& first, const CTrvAssemblyData& second) {
    std::ostringstream out;
    EXPECT_EQ(cli::printDifferencesAsJson({QStringLiteral("f1"), first},
                                          {QStringLiteral("f2"), second}, out),
              first != second);
    return out.str();
}

std::string unequal(const std::string& differences, const std::string& notes = "") {
    return R"({"files":["f1","f2"],"differences":[)" + differences + R"(],"notes":[)" + notes +
           "],\"equal\":false}\n";
}

TEST(DifferenceJson, OfEqualAssembliesIsEmpty) {
    EXPECT_EQ(json(chain(5, "f"), chain(5, "f")),
              "{\"files\":[\"f1\",\"f2\"],\"differences\":[],\"notes\":[],\"equal\":true}\n");
}

TEST(DifferenceJson, IsAMemberOfAnotherObject) {
    std::ostringstream out;
    cli::JsonWriter writer(out);
    writer.add("a", 1);
    cli::addDifferences(assembly(leaf("a", "f")), assembly(leaf("a", "g")), writer);
    writer.add("b", 2);
    writer.end();
    EXPECT_EQ(out.str(),
              R"({"a":1,"differences":[{"change":"changed","field":"geometryFile","first":"f",)"
              R"("path":"a","second":"g"}],"b":2})"
              "\n");
}

TEST(DifferenceJson, HasTheDimension) {
    CTrvAssemblyData data;
    const double size[] = {1, 2, 3.5};
    data.setDimension(size);
    EXPECT_EQ(json(CTrvAssemblyData(), data),
              unequal(R"({"change":"changed","field":"dimension","first":[0,0,0],"path":null,)"
                      R"("second":[1,2,3.5]})"));
}

TEST(DifferenceJson, HasTheTexts) {
    CTrvAssemblyComponentData other = component("a\n");
    other.setComment("c");
    other.setEnabled(false);
    EXPECT_EQ(
        json(assembly(leaf("a\\", "f")), assembly(other)),
        unequal(
            R"({"change":"renamed","field":"name","first":"a\\","path":"a\\","second":"a\n"},)"
            R"({"change":"changed","field":"comment","first":"","path":"a\\","second":"c"},)"
            R"({"change":"changed","field":"geometryFile","first":"f","path":"a\\","second":null},)"
            R"({"change":"changed","field":"enabled","first":true,"path":"a\\","second":false})"));
}

TEST(DifferenceJson, HasThePlacement) {
    CTrvAssemblyComponentData first = component("a");
    CTrvAssemblyComponentData second = component("a");
    const double from[] = {1, 2, 3};
    const double to[] = {1, 2.5, -3};
    first.setTranslation(from);
    second.setTranslation(to);
    const double x[] = {1, 0, 0};
    const double y[] = {0, 0, 1};
    const double z[] = {0, -1, 0};
    second.setOrientation(x, y, z);
    EXPECT_EQ(json(assembly(first), assembly(second)),
              unequal(R"({"change":"changed","field":"translation","first":[1,2,3],"path":"a",)"
                      R"("second":[1,2.5,-3],"translation":[0,0.5,-6]},)"
                      R"({"angle":90,"axis":[1,0,0],"change":"changed","field":"orientation",)"
                      R"("first":{"vec1":[1,0,0],"vec2":[0,1,0],"vec3":[0,0,1]},"path":"a",)"
                      R"("second":{"vec1":[1,0,0],"vec2":[0,0,1],"vec3":[0,-1,0]}})"));
}

TEST(DifferenceJson, HasNoAngleWithoutARotation) {
    CTrvAssemblyComponentData second = component("a");
    const double x[] = {2, 0, 0};
    const double y[] = {0, 1, 0};
    const double z[] = {0, 0, 0.5};
    second.setOrientation(x, y, z);
    const double infinite[] = {std::numeric_limits<double>::infinity(), 0, 0};
    second.setTranslation(infinite);
    EXPECT_EQ(json(assembly(component("a")), assembly(second)),
              unequal(R"({"change":"changed","field":"translation","first":[0,0,0],"path":"a",)"
                      R"("second":["inf",0,0],"translation":["inf",0,0]},)"
                      R"({"angle":null,"axis":null,"change":"changed","field":"orientation",)"
                      R"("first":{"vec1":[1,0,0],"vec2":[0,1,0],"vec3":[0,0,1]},"path":"a",)"
                      R"("second":{"vec1":[2,0,0],"vec2":[0,1,0],"vec3":[0,0,0.5]}})",
                      R"({"field":"vec3","first":[0,0,1],"path":"a","second":[0,0,0.5]})"));
}

TEST(DifferenceJson, HasWhatIsAddedRemovedOrMoved) {
    EXPECT_EQ(json(assembly(component("r", {leaf("a", "f"), leaf("b", "g"), leaf("c", "h"),
                                            component("d", {leaf("e", "i"), leaf("f", "j")})})),
                   assembly(component(
                       "r", {leaf("x", "k"), leaf("b", "g"), leaf("c", "h"), leaf("a", "f")}))),
              unequal(R"({"change":"moved","field":null,"first":0,"path":"r/a[0]","second":3},)"
                      R"({"below":0,"change":"added","field":null,"first":null,"path":"r/x[0]",)"
                      R"("second":0},)"
                      R"({"below":2,"change":"removed","field":null,"first":3,"path":"r/d[3]",)"
                      R"("second":null})"));
}

TEST(DifferenceJson, HasNotesOfEqualAssemblies) {
    CTrvAssemblyComponentData second = component("a");
    const double x[] = {1, 0, 0};
    const double y[] = {0, 1, 0};
    const double z[] = {0, 0, -1};
    second.setOrientation(x, y, z);
    EXPECT_EQ(json(assembly(component("a")), assembly(second)),
              R"({"files":["f1","f2"],"differences":[],"notes":[{"field":"vec3","first":[0,0,1],)"
              R"("path":"a","second":[0,0,-1]}],"equal":true})"
              "\n");
}

}  // namespace
}  // namespace trv::testing
