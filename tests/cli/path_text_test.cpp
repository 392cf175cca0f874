#include <cli/path_text.h>

#include <gtest/gtest.h>

#include <string>

namespace trv::testing {
namespace {

using cli::PathForm;
using cli::PathText;

ComponentBody named(const std::string& name) {
    ComponentBody component;
    component.name = name;
    return component;
}

TEST(PathText, HasTheNamesAndTheIndices) {
    const ComponentBody bracket = named("Bracket OP10");
    const ComponentBody vise = named("Left vise");
    const ComponentBody body = named("Body");
    PathText path(PathForm::visible);
    EXPECT_EQ(path.text(), "");
    path.enter(bracket, 7);
    EXPECT_EQ(path.text(), "Bracket OP10");
    path.enter(vise, 1);
    path.enter(body, 0);
    EXPECT_EQ(path.text(), "Bracket OP10/Left vise[1]/Body[0]");
}

TEST(PathText, FollowsTheWalk) {
    const ComponentBody a = named("a");
    const ComponentBody b = named("b");
    const ComponentBody c = named("long name");
    PathText path(PathForm::visible);
    path.enter(a, 0);
    path.enter(c, 0);
    path.enter(b, 5);
    EXPECT_EQ(path.text(), "a/long name[0]/b[5]");
    path.leave();
    path.leave();
    path.enter(b, 12);
    path.enter(c, 3);
    EXPECT_EQ(path.text(), "a/b[12]/long name[3]");
    path.leave();
    EXPECT_EQ(path.text(), "a/b[12]");
    path.leave();
    path.leave();
    path.enter(b, 0);
    EXPECT_EQ(path.text(), "b");
}

TEST(PathText, NamesARootWithoutAName) {
    const ComponentBody unnamed = named("");
    PathText path(PathForm::visible);
    path.enter(unnamed, 0);
    path.enter(unnamed, 2);
    EXPECT_EQ(path.text(), "(root)/[2]");
}

TEST(PathText, EscapesNamesOnlyInVisibleForm) {
    const ComponentBody root = named("a\\b");
    const ComponentBody child = named("c\n");
    PathText visible(PathForm::visible);
    visible.enter(root, 0);
    visible.enter(child, 0);
    EXPECT_EQ(visible.text(), "a\\\\b/c\\x0a[0]");
    PathText exact(PathForm::exact);
    exact.enter(root, 0);
    exact.enter(child, 0);
    EXPECT_EQ(exact.text(), "a\\b/c\n[0]");
}

}  // namespace
}  // namespace trv::testing
