#include <tests/assembly/sample_components.h>
#include <trvfiles/assembly/CTrvAssemblyNode.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

using namespace trv::testing;
using Component = CTrvAssemblyComponentData;
using Node = CTrvAssemblyNode;
using Visit = CTrvAssemblyNode::Visit;

namespace {

// root( a( c d ) b( e ) )
Component tree() {
    return group("root", {group("a", {leaf("c", "c.stl"), leaf("d", "d.stl")}),
                          group("b", {leaf("e", "e.stl")})});
}

std::string namesOf(const Node& node) {
    std::string names;
    node.visit([&](const Node& visited, std::size_t level) {
        names += visited.getName() + std::to_string(level) + ' ';
        return Visit::proceed;
    });
    return names;
}

std::string childrenOf(const Node& node) {
    std::string names;
    for (const Node& child : node.children())
        names += child.getName();
    return names;
}

}  // namespace

TEST(AssemblyNode, IsMadeByTheLibraryOnly) {
    static_assert(!std::is_default_constructible_v<Node>);
    static_assert(!std::is_copy_constructible_v<Node> && !std::is_move_constructible_v<Node>);
    static_assert(!std::is_copy_assignable_v<Node> && !std::is_move_assignable_v<Node>);
    static_assert(!std::is_destructible_v<Node>);
    SUCCEED();
}

TEST(AssemblyNode, IsTheComponentItself) {
    Component component;
    Node& node = component.node();
    node.setName("n");
    node.setComment("c");
    node.setGeometryFileName("g");
    node.setEnabled(false);
    node.setTranslation({1, 2, 3});
    node.setOrientation({{{4, 5, 6}, {7, 8, 9}, {10, 11, 12}}});
    EXPECT_EQ(component.getName(), "n");
    EXPECT_EQ(component.getComment(), "c");
    EXPECT_EQ(component.getGeometryFileName(), "g");
    EXPECT_FALSE(component.isEnabled());
    double vectors[4][3] = {};
    component.getTranslation(vectors[0]);
    component.getOrientation(vectors[1], vectors[2], vectors[3]);
    EXPECT_EQ(vectors[0][2], 3);
    EXPECT_EQ(vectors[1][0], 4);
    EXPECT_EQ(vectors[2][1], 8);
    EXPECT_EQ(vectors[3][2], 12);
    component.setName("m");
    EXPECT_EQ(node.getName(), "m");
    EXPECT_EQ(node.getComment(), "c");
    EXPECT_EQ(node.getGeometryFileName(), "g");
    EXPECT_FALSE(node.isEnabled());
    EXPECT_EQ(node.getTranslation(), (Vector3{1, 2, 3}));
    EXPECT_EQ(node.getOrientation(),
              (std::array<Vector3, 3>{Vector3{4, 5, 6}, Vector3{7, 8, 9}, Vector3{10, 11, 12}}));
}

TEST(AssemblyNode, HasTheDefaultsOfAComponent) {
    const Component component;
    const Node& node = component.node();
    EXPECT_EQ(node.getName(), "");
    EXPECT_TRUE(node.isEnabled());
    EXPECT_EQ(node.getTranslation(), (Vector3{0, 0, 0}));
    EXPECT_EQ(node.getOrientation(),
              (std::array<Vector3, 3>{Vector3{1, 0, 0}, Vector3{0, 1, 0}, Vector3{0, 0, 1}}));
    EXPECT_EQ(node.getChildCount(), 0U);
}

TEST(AssemblyNode, HasNarrowAndWideTexts) {
    Component component;
    Node& node = component.node();
    node.setNameW(L"Fr\u00E4ser");
    node.setCommentW(L"\u00D8 6");
    node.setGeometryFileNameW(L"\u00E9.stl");
    EXPECT_EQ(node.getName(), "Fr\xC3\xA4ser");
    EXPECT_EQ(node.getComment(), "\xC3\x98 6");
    EXPECT_EQ(node.getGeometryFileName(), "\xC3\xA9.stl");
    EXPECT_EQ(node.getNameW(), L"Fr\u00E4ser");
    EXPECT_EQ(node.getCommentW(), L"\u00D8 6");
    EXPECT_EQ(node.getGeometryFileNameW(), L"\u00E9.stl");
}

TEST(AssemblyNode, EditsTheChildrenInTheirPlace) {
    Component component = tree();
    for (Node& child : component.node().children())
        child.setEnabled(false);
    component.node().getChild(1).getChild(0).setName("changed");
    const std::vector<Component> children = component.getComponents();
    EXPECT_FALSE(children[0].isEnabled());
    EXPECT_FALSE(children[1].isEnabled());
    EXPECT_EQ(children[1].getComponents()[0].getName(), "changed");
    EXPECT_EQ(children[0].getComponents()[0].getName(), "c");
}

TEST(AssemblyNode, EditsAnAssembly) {
    CTrvAssemblyData assembly = assemblyOf(tree());
    assembly.getRootComponent().node().getChild(0).removeChild(0);
    const std::vector<CComponentInfo> placed = assembly.getComponentFileList();
    ASSERT_EQ(placed.size(), 2U);
    EXPECT_EQ(placed[0].getFileName(), "d.stl");
    EXPECT_EQ(placed[1].getFileName(), "e.stl");
}

TEST(AssemblyNode, IsKeptByAMoveOfItsOwner) {
    Component component = tree();
    Node& child = component.node().getChild(0);
    const Component owner = std::move(component);
    child.setName("x");
    EXPECT_EQ(namesOf(owner.node()), "root0 x1 c2 d2 b1 e2 ");
}

TEST(AssemblyNode, InsertsChildren) {
    Component component = group("root", {leaf("b", "f")});
    Node& node = component.node();
    EXPECT_EQ(node.insertChild(0, leaf("a", "f")).getName(), "a");
    EXPECT_EQ(node.addChild(leaf("d", "f")).getName(), "d");
    EXPECT_EQ(node.insertChild(2, leaf("c", "f")).getName(), "c");
    EXPECT_EQ(node.insertChild(99, leaf("e", "f")).getName(), "e");
    EXPECT_EQ(childrenOf(node), "abcde");
    EXPECT_EQ(node.getChildCount(), 5U);
}

TEST(AssemblyNode, InsertsATreeAndADefaultComponent) {
    Component component;
    component.node().addChild(tree());
    component.node().addChild(Component());
    EXPECT_EQ(namesOf(component.node()), "0 root1 a2 c3 d3 b2 e3 1 ");
}

TEST(AssemblyNode, RemovesChildren) {
    Component component = tree();
    Node& node = component.node();
    EXPECT_FALSE(node.removeChild(2));
    EXPECT_TRUE(node.removeChild(0));
    EXPECT_EQ(namesOf(node), "root0 b1 e2 ");
    EXPECT_TRUE(node.removeChild(0));
    EXPECT_FALSE(node.removeChild(0));
    EXPECT_EQ(namesOf(node), "root0 ");
}

TEST(AssemblyNode, CopiesASubtree) {
    Component component = tree();
    Component copy = component.node().getChild(0).toComponent();
    copy.setName("copy");
    EXPECT_EQ(namesOf(copy.node()), "copy0 c1 d1 ");
    EXPECT_EQ(component.node().getChild(0).getName(), "a");
}

TEST(AssemblyNode, IsReplacedInItsPlace) {
    Component component = tree();
    Node& child = component.node().getChild(0);
    child.assign(group("new", {leaf("n", "f")}));
    EXPECT_EQ(namesOf(component.node()), "root0 new1 n2 b1 e2 ");
    EXPECT_EQ(child.getName(), "new");
    child.assign(Component());
    EXPECT_EQ(namesOf(component.node()), "root0 1 b1 e2 ");
}

TEST(AssemblyNode, MayTakeTheCopyOfWhatIsBelowIt) {
    Component component = tree();
    component.node().assign(component.node().getChild(1).toComponent());
    EXPECT_EQ(namesOf(component.node()), "b0 e1 ");
}

TEST(AssemblyNode, VisitsEachComponentBeforeItsChildren) {
    const Component component = tree();
    EXPECT_EQ(namesOf(component.node()), "root0 a1 c2 d2 b1 e2 ");
    EXPECT_EQ(namesOf(component.node().getChild(0)), "a0 c1 d1 ");
}

TEST(AssemblyNode, LetsAVisitorEdit) {
    Component component = tree();
    const bool isComplete = component.node().visit([](Node& node, std::size_t level) {
        node.setName(node.getName() + '!' + std::to_string(level));
        return Visit::proceed;
    });
    EXPECT_TRUE(isComplete);
    EXPECT_EQ(namesOf(component.node()), "root!00 a!11 c!22 d!22 b!11 e!22 ");
}

TEST(AssemblyNode, LetsAVisitorSkipABranch) {
    Component component = tree();
    std::string names;
    EXPECT_TRUE(component.node().visit([&](const Node& node, std::size_t) {
        names += node.getName() + ' ';
        return node.getName() == "a" ? Visit::skip : Visit::proceed;
    }));
    EXPECT_EQ(names, "root a b e ");
    names.clear();
    EXPECT_TRUE(component.node().visit([&](const Node& node, std::size_t) {
        names += node.getName() + ' ';
        return Visit::skip;
    }));
    EXPECT_EQ(names, "root ");
}

TEST(AssemblyNode, LetsAVisitorStop) {
    Component component = tree();
    const auto visitedUntil = [&](const std::string& last) {
        std::string names;
        EXPECT_FALSE(component.node().visit([&](Node& node, std::size_t) {
            names += node.getName() + ' ';
            return node.getName() == last ? Visit::stop : Visit::proceed;
        }));
        return names;
    };
    EXPECT_EQ(visitedUntil("root"), "root ");
    EXPECT_EQ(visitedUntil("c"), "root a c ");
    EXPECT_EQ(visitedUntil("e"), "root a c d b e ");
}

TEST(AssemblyNode, LetsAVisitorChangeTheChildrenOfItsComponent) {
    Component component = tree();
    std::string names;
    component.node().visit([&](Node& node, std::size_t level) {
        names += node.getName() + ' ';
        if (node.getName() == "a") node.removeChild(0);
        if (level == 1) node.addChild(leaf("new", "f"));
        return Visit::proceed;
    });
    EXPECT_EQ(names, "root a d new b e new ");
}

TEST(AssemblyNode, PassesOnWhatAVisitorThrows) {
    const Component component = tree();
    EXPECT_THROW(component.node().visit(
                     [](const Node&, std::size_t) -> Visit { throw std::runtime_error("enough"); }),
                 std::runtime_error);
}
