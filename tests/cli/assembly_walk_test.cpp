#include <cli/assembly_walk.h>
#include <tests/cli/samples.h>

#include <gtest/gtest.h>

#include <string>

namespace trv::testing {
namespace {

std::string walk(const CTrvAssemblyData& tree) {
    std::string seen;
    cli::forEachComponent(tree, [&](const ComponentBody& body, std::size_t level) {
        seen += std::to_string(level) + body.name + ' ';
    });
    return seen;
}

TEST(ForEachComponent, VisitsTheRootOfAnEmptyAssembly) {
    EXPECT_EQ(walk(CTrvAssemblyData()), "0 ");
}

TEST(ForEachComponent, VisitsParentsBeforeChildrenInOrder) {
    EXPECT_EQ(walk(assembly(component("a", {component("b", {component("c"), component("d")}),
                                            component("e"), component("f", {component("g")})}))),
              "0a 1b 2c 2d 1e 1f 2g ");
}

TEST(ForEachComponent, AcceptsAnyDepth) {
    constexpr int levels = 100000;
    std::size_t count = 0;
    std::size_t maxLevel = 0;
    cli::forEachComponent(chain(levels, "f"), [&](const ComponentBody&, std::size_t level) {
        ++count;
        maxLevel = level;
    });
    EXPECT_EQ(count, 100000U);
    EXPECT_EQ(maxLevel, 99999U);
}

}  // namespace
}  // namespace trv::testing
