#include <trvfiles/assembly/assembly_comparison.h>

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace {

using trv::ComponentFields;

// The names of the fields that differ, and whether that makes the components unequal.
std::string difference(const ComponentFields& one, const ComponentFields& other) {
    const trv::ComponentDifference found = trv::differenceOf(one, other);
    std::string names;
    if (found.name) names += "name ";
    if (found.comment) names += "comment ";
    if (found.geometryFileName) names += "file ";
    if (found.enabled) names += "enabled ";
    if (found.translation) names += "translation ";
    if (found.vec1) names += "vec1 ";
    if (found.vec2) names += "vec2 ";
    if (found.vec3) names += "vec3 ";
    return names + (found.counts() ? "unequal" : "equal");
}

template <class Change>
std::string differenceAfter(Change change) {
    ComponentFields changed;
    change(changed);
    return difference(ComponentFields(), changed);
}

TEST(AssemblyComparison, NamesEachFieldThatDiffers) {
    EXPECT_EQ(difference({}, {}), "equal");
    EXPECT_EQ(differenceAfter([](auto& fields) { fields.name = "x"; }), "name unequal");
    EXPECT_EQ(differenceAfter([](auto& fields) { fields.comment = "x"; }), "comment unequal");
    EXPECT_EQ(differenceAfter([](auto& fields) { fields.geometryFileName = "x"; }), "file unequal");
    EXPECT_EQ(differenceAfter([](auto& fields) { fields.enabled = false; }), "enabled unequal");
    EXPECT_EQ(differenceAfter([](auto& fields) { fields.translation[2] = 1; }),
              "translation unequal");
    EXPECT_EQ(differenceAfter([](auto& fields) { fields.vec1[0] = 2; }), "vec1 unequal");
    EXPECT_EQ(differenceAfter([](auto& fields) { fields.vec2[0] = 2; }), "vec2 unequal");
}

TEST(AssemblyComparison, DoesNotCountTheThirdVector) {
    EXPECT_EQ(differenceAfter([](auto& fields) { fields.vec3[0] = 2; }), "vec3 equal");
}

TEST(AssemblyComparison, ToleratesAMillionthInEachEntry) {
    EXPECT_EQ(differenceAfter([](auto& fields) { fields.translation[0] = 1e-6; }), "equal");
    EXPECT_EQ(differenceAfter([](auto& fields) { fields.translation[0] = 1.001e-6; }),
              "translation unequal");
    EXPECT_EQ(differenceAfter([](auto& fields) {
                  fields.translation[0] = std::numeric_limits<double>::quiet_NaN();
              }),
              "equal");
}

TEST(AssemblyComparison, ToleratesAMillionthInTheSquaredDistanceOfSizes) {
    const double zero[3] = {0, 0, 0};
    const double within[3] = {0, 0.000999, 0};
    const double beyond[3] = {0, 0.001001, 0};
    const double unknown[3] = {std::numeric_limits<double>::quiet_NaN(), 7, 7};
    EXPECT_FALSE(trv::dimensionsDiffer(zero, within));
    EXPECT_TRUE(trv::dimensionsDiffer(zero, beyond));
    EXPECT_FALSE(trv::dimensionsDiffer(zero, unknown));
}

}  // namespace
