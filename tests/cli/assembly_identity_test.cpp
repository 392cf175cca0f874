#include <cli/assembly_identity.h>
#include <tests/cli/samples.h>

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <vector>

namespace trv::cli {
namespace {

using Component = CTrvAssemblyComponentData;

Component sample() {
    return testing::component("a", {testing::leaf("b", "f"), testing::component("c")});
}

TEST(AssemblyIdentity, SeesEachField) {
    const double moved[] = {0, 0, 1e-300};
    const double zeros[] = {-0.0, 0, 0};
    const double x[] = {1, 0, 0};
    const double y[] = {0, 1, 0};
    const double z[] = {0, 0, 1};
    const std::vector<std::function<void(Component&)>> changes = {
        [](Component& part) { part.setName("n"); },
        [](Component& part) { part.setComment("n"); },
        [](Component& part) { part.setGeometryFileName("n"); },
        [](Component& part) { part.setEnabled(false); },
        [&](Component& part) { part.setTranslation(moved); },
        [&](Component& part) { part.setTranslation(zeros); },
        [&](Component& part) { part.setOrientation(moved, y, z); },
        [&](Component& part) { part.setOrientation(x, moved, z); },
        [&](Component& part) { part.setOrientation(x, y, moved); },
        [](Component& part) { part.setComponents({testing::component("more")}); },
    };
    const CTrvAssemblyData data = testing::assembly(sample());
    EXPECT_TRUE(areIdentical(data, testing::assembly(sample())));
    for (std::size_t i = 0; i < changes.size(); ++i) {
        std::vector<Component> children = sample().getComponents();
        changes[i](children[1]);
        Component root = sample();
        root.setComponents(children);
        EXPECT_FALSE(areIdentical(data, testing::assembly(root))) << i;
        EXPECT_FALSE(areIdentical(testing::assembly(root), data)) << i;
    }
}

TEST(AssemblyIdentity, SeesTheDimension) {
    CTrvAssemblyData data;
    const double dimension[] = {0, -0.0, 0};
    data.setDimension(dimension);
    EXPECT_FALSE(areIdentical(data, CTrvAssemblyData()));
}

TEST(AssemblyIdentity, TreatsANanAsItself) {
    const double vector[] = {std::numeric_limits<double>::quiet_NaN(), 0, 0};
    EXPECT_TRUE(areIdentical(vector, vector));
    CTrvAssemblyData data;
    data.setDimension(vector);
    const CTrvAssemblyData copy = data;
    EXPECT_TRUE(areIdentical(copy, data));
}

TEST(AssemblyIdentity, AcceptsAnyDepth) {
    EXPECT_TRUE(areIdentical(testing::chain(100000, "f"), testing::chain(100000, "f")));
    EXPECT_FALSE(areIdentical(testing::chain(100000, "f"), testing::chain(100000, "g")));
}

}  // namespace
}  // namespace trv::cli
