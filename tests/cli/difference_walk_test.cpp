#include <cli/difference_walk.h>
#include <tests/cli/samples.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace trv::testing {
namespace {

using cli::Difference;
using Parts = std::vector<CTrvAssemblyComponentData>;

// "moved none root/a[0]; changed name root/b[1]"
std::string found(const CTrvAssemblyData& first, const CTrvAssemblyData& second) {
    const char* const changes[] = {"added", "removed", "moved", "changed", "ignored"};
    const char* const fields[] = {"none",    "dimension",   "name",        "comment", "file",
                                  "enabled", "translation", "orientation", "vec3"};
    std::string text;
    cli::DifferenceWalk(first, second).run(cli::PathForm::exact, [&](const Difference& difference) {
        if (!text.empty()) text += "; ";
        text += changes[static_cast<int>(difference.change)];
        text += std::string(" ") + fields[static_cast<int>(difference.field)] + ' ';
        text += difference.path;
    });
    return text;
}

std::string found(const Parts& first, const Parts& second) {
    return found(assembly(component("r", first)), assembly(component("r", second)));
}

CTrvAssemblyComponentData oriented(CTrvAssemblyComponentData part, double x1, double y2,
                                   double z3) {
    const double vec1[] = {x1, 0, 0};
    const double vec2[] = {0, y2, 0};
    const double vec3[] = {0, 0, z3};
    part.setOrientation(vec1, vec2, vec3);
    return part;
}

TEST(DifferenceWalk, FindsNothingInEqualAssemblies) {
    EXPECT_EQ(found(chain(100000, "f"), chain(100000, "f")), "");
}

TEST(DifferenceWalk, FindsTheDimensionFirst) {
    CTrvAssemblyData data = assembly(component("a"));
    const double size[] = {1, 2, 3};
    data.setDimension(size);
    EXPECT_EQ(found(assembly(component("b")), data), "changed dimension ; changed name b");
}

TEST(DifferenceWalk, HasTheIndicesAndTheComponents) {
    const CTrvAssemblyData first =
        assembly(component("r", {leaf("a", "f"), leaf("b", "g"), leaf("c", "h")}));
    const CTrvAssemblyData second =
        assembly(component("r", {leaf("c", "h"), leaf("b", "g"), leaf("x", "y")}));
    std::string text;
    cli::DifferenceWalk(first, second).run(cli::PathForm::exact, [&](const Difference& difference) {
        text += difference.first == nullptr ? "-" : difference.first->component->name;
        text += std::to_string(difference.firstIndex);
        text += difference.second == nullptr ? "-" : difference.second->component->name;
        text += std::to_string(difference.secondIndex) + ' ';
    });
    EXPECT_EQ(text, "a0-0 b1b1 -0x2 ");
}

TEST(DifferenceWalk, HasAPathInTheFileThatHasTheComponent) {
    EXPECT_EQ(found({component("a", {component("b"), leaf("c", "f")})},
                    {component("new"),
                     component("A", {leaf("c", "f"), component("d", {component("e")})})}),
              "removed none r/a[0]; added none r/new[0]; added none r/A[1]");
    EXPECT_EQ(found({leaf("a", "f")}, {component("new"), leaf("A", "f")}),
              "added none r/new[0]; changed name r/a[0]");
    CTrvAssemblyComponentData parent = leaf("A", "f");
    parent.setComponents({component("b"), component("c")});
    EXPECT_EQ(found({leaf("a", "f")}, {component("new"), parent}),
              "added none r/new[0]; changed name r/a[0]; added none r/A[1]/b[0]; "
              "added none r/A[1]/c[1]");
}

TEST(DifferenceWalk, FindsASubtreeOnce) {
    const CTrvAssemblyComponentData tree =
        component("a", {component("b", {component("c")}), component("d")});
    EXPECT_EQ(found(Parts{}, {tree}), "added none r/a[0]");
    EXPECT_EQ(found({tree}, Parts{}), "removed none r/a[0]");
}

TEST(DifferenceWalk, ComparesMovedComponents) {
    CTrvAssemblyComponentData changed = component("a", {component("x")});
    changed.setComment("c");
    EXPECT_EQ(
        found({component("a", {component("y"), component("x")}), leaf("b", "b"), leaf("c", "c")},
              {leaf("b", "b"), leaf("c", "c"), changed}),
        "moved none r/a[0]; changed comment r/a[0]; removed none r/a[0]/y[0]");
}

TEST(DifferenceWalk, IgnoresVec3UnlessARotationDescribesIt) {
    const CTrvAssemblyData plain = assembly(component("a"));
    EXPECT_EQ(found(plain, assembly(oriented(component("a"), 1, 1, -1))), "ignored vec3 a");
    // Half a turn about x.
    EXPECT_EQ(found(plain, assembly(oriented(component("a"), 1, -1, -1))), "changed orientation a");
    EXPECT_EQ(found(plain, assembly(oriented(component("a"), 1, 2, 2))),
              "changed orientation a; ignored vec3 a");
}

TEST(DifferenceWalk, HasARotationOnlyIfItsAngleIsVisible) {
    const auto angle = [](const CTrvAssemblyComponentData& part) {
        double degrees = -1;
        const CTrvAssemblyData first = assembly(component("a"));
        const CTrvAssemblyData second = assembly(part);
        cli::DifferenceWalk(first, second)
            .run(cli::PathForm::exact, [&](const Difference& difference) {
                if (difference.rotation) degrees = difference.rotation->degrees;
            });
        return degrees;
    };
    EXPECT_EQ(angle(oriented(component("a"), -1, -1, 1)), 180);
    EXPECT_EQ(angle(oriented(component("a"), 1.000003, 1, 1)), -1);
    EXPECT_EQ(angle(oriented(component("a"), 2, 2, 2)), -1);
}

// Returns a tree that differs from the given one by a few changes of any kind.
CTrvAssemblyComponentData mutated(std::mt19937& random, const CTrvAssemblyComponentData& tree) {
    CTrvAssemblyComponentData copy = tree;
    const auto seldom = [&] { return random() % 16 == 0; };
    if (seldom()) copy.setName(random() % 2 == 0 ? "a" : "b");
    if (seldom()) copy.setComment("c");
    if (seldom()) copy.setGeometryFileName(random() % 2 == 0 ? "f" : "g");
    const double values[] = {0, 4.9999e-6, 5.0001e-6, 1};
    const double translation[] = {values[random() % 4], 0, 0};
    if (seldom()) copy.setTranslation(translation);
    Parts children = copy.getComponents();
    for (CTrvAssemblyComponentData& child : children)
        child = mutated(random, child);
    if (!children.empty() && seldom()) children.pop_back();
    if (!children.empty() && seldom()) children.push_back(children.front());
    if (seldom()) std::shuffle(children.begin(), children.end(), random);
    copy.setComponents(children);
    return copy;
}

TEST(DifferenceWalk, FindsADifferenceIfAndOnlyIfTheRecordsDiffer) {
    std::mt19937 random(1);
    const CTrvAssemblyComponentData group =
        component("a", {component("a"), component("a"), leaf("b", "f")});
    int equal = 0;
    int unequal = 0;
    for (int i = 0; i < 2000; ++i) {
        const CTrvAssemblyComponentData tree =
            mutated(random, component("r", {group, group, component("b", {component("a")})}));
        const CTrvAssemblyData first = assembly(tree);
        // Half of the pairs differ by one round of changes, the others mostly by their order.
        CTrvAssemblyComponentData other = tree;
        if (i % 2 == 0) {
            other = mutated(random, tree);
        } else {
            Parts children = other.getComponents();
            std::shuffle(children.begin(), children.end(), random);
            other.setComponents(children);
        }
        const CTrvAssemblyData second = assembly(other);
        ASSERT_EQ(found(first, second).empty(), first == second) << found(first, second);
        ++(first == second ? equal : unequal);
    }
    EXPECT_GT(equal, 200);
    EXPECT_GT(unequal, 200);
}

}  // namespace
}  // namespace trv::testing
