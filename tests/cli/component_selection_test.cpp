#include <cli/component_selection.h>
#include <tests/cli/samples.h>

#include <gtest/gtest.h>

namespace trv::testing {
namespace {

// The names of the selected components, each with its level. A "." follows the last sibling.
std::string selected(const CTrvAssemblyData& data, const cli::ComponentSelection& selection) {
    std::string text;
    for (const cli::SelectedComponent& entry : cli::selectComponents(data, selection)) {
        if (!text.empty()) text += ' ';
        text += entry.component->name + std::to_string(entry.level);
        if (entry.isLast != 0) text += '.';
    }
    return text;
}

CTrvAssemblyData tree() {
    CTrvAssemblyComponentData commented = component("e");
    commented.setComment("Soft JAW");
    return assembly(
        component("a", {component("b", {component("c", {leaf("d", "jaw.stl")}), commented}),
                        component("f"), component("g", {component("jawless"), component("h")})}));
}

TEST(SelectComponents, SelectsEverything) {
    EXPECT_EQ(selected(tree(), {}), "a0. b1 c2 d3. e2. f1 g1. jawless2 h2.");
}

TEST(SelectComponents, StopsAtALevel) {
    EXPECT_EQ(selected(tree(), {0, {}}), "a0.");
    EXPECT_EQ(selected(tree(), {1, {}}), "a0. b1 f1 g1.");
    EXPECT_EQ(selected(tree(), {2, {}}), "a0. b1 c2 e2. f1 g1. jawless2 h2.");
    EXPECT_EQ(selected(tree(), {9, {}}), selected(tree(), {}));
}

TEST(SelectComponents, FindsATextInNameCommentAndFileInAnyCase) {
    EXPECT_EQ(selected(tree(), {{}, QStringLiteral("Jaw")}), "a0. b1 c2 d3. e2. g1. jawless2.");
}

TEST(SelectComponents, KeepsOnlyTheAncestorsOfAMatch) {
    EXPECT_EQ(selected(tree(), {{}, QStringLiteral("h")}), "a0. g1. h2.");
    EXPECT_EQ(selected(tree(), {{}, QStringLiteral("f")}), "a0. b1 e2. f1.");
    EXPECT_EQ(selected(tree(), {{}, QStringLiteral("a")}), "a0. b1 c2 d3. e2. g1. jawless2.");
    EXPECT_EQ(selected(tree(), {{}, QStringLiteral("c")}), "a0. b1. c2.");
}

TEST(SelectComponents, SelectsNothingWithoutAMatch) {
    EXPECT_EQ(selected(tree(), {{}, QStringLiteral("x")}), "");
}

TEST(SelectComponents, SearchesOnlyAboveTheLevel) {
    EXPECT_EQ(selected(tree(), {2, QStringLiteral("jaw")}), "a0. b1 e2. g1. jawless2.");
    EXPECT_EQ(selected(tree(), {1, QStringLiteral("jaw")}), "");
}

TEST(SelectComponents, FindsLettersBeyondAscii) {
    EXPECT_EQ(selected(assembly(component(u8"Größe")), {{}, QStringLiteral("GRÖSSE")}), "");
    EXPECT_EQ(selected(assembly(component(u8"Öse")), {{}, QString::fromUtf8(u8"ö")}), u8"Öse0.");
}

TEST(SelectComponents, WalksATreeDeeperThanTheStack) {
    const CTrvAssemblyData deep = chain(1000000, "f");
    EXPECT_EQ(cli::selectComponents(deep, {{}, QStringLiteral("f")}).size(), 1000000U);
    EXPECT_EQ(cli::selectComponents(deep, {3, {}}).size(), 4U);
}

}  // namespace
}  // namespace trv::testing
