#include <cli/assembly_outline.h>
#include <tests/cli/samples.h>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

namespace trv::testing {
namespace {

using cli::AssemblyOutline;

AssemblyOutline outlineOf(const CTrvAssemblyData& data) {
    return AssemblyOutline(ComponentBody::of(data.getRootComponent()));
}

TEST(AssemblyOutline, HasTheComponentsLevelByLevel) {
    const CTrvAssemblyData data = assembly(component(
        "a", {component("b", {component("c"), component("d")}), component("e", {leaf("f", "g")})}));
    const AssemblyOutline outline = outlineOf(data);
    EXPECT_EQ(outline.root().component->name, "a");
    EXPECT_EQ(outline.root().size, 6U);
    const cli::OutlineNode* const children = outline.childrenOf(outline.root());
    EXPECT_EQ(children[0].component->name, "b");
    EXPECT_EQ(children[0].size, 3U);
    EXPECT_EQ(children[1].component->name, "e");
    EXPECT_EQ(children[1].size, 2U);
    EXPECT_EQ(outline.childrenOf(children[0])[1].component->name, "d");
    EXPECT_EQ(outline.childrenOf(children[0])[1].size, 1U);
    EXPECT_EQ(outline.childrenOf(children[1])[0].component->name, "f");
}

TEST(AssemblyOutline, AcceptsAnyDepth) {
    const CTrvAssemblyData data = chain(100000, "f");
    EXPECT_EQ(outlineOf(data).root().size, 100000U);
}

using Change = std::function<void(CTrvAssemblyComponentData&)>;

void translate(CTrvAssemblyComponentData& part, double x, double y, double z) {
    const double vector[] = {x, y, z};
    part.setTranslation(vector);
}

void orient(CTrvAssemblyComponentData& part, double x1, double y2, double z3) {
    const double vec1[] = {x1, 0, 0};
    const double vec2[] = {0, y2, 0};
    const double vec3[] = {0, 0, z3};
    part.setOrientation(vec1, vec2, vec3);
}

struct Keys {
    cli::ContentKey content;
    cli::ContentKey texts;
    cli::ContentKey withoutName;
};

// The keys of a root whose only child is changed, and those of that child.
void keysAfter(const Change& change, Keys& root, Keys& child) {
    CTrvAssemblyComponentData part = component("b", {leaf("c", "f")});
    change(part);
    const CTrvAssemblyData data = assembly(component("a", {part}));
    const AssemblyOutline outline = outlineOf(data);
    const auto keys = [&](const cli::OutlineNode& node) {
        return Keys{node.content, node.texts, outline.contentWithoutName(node)};
    };
    root = keys(outline.root());
    child = keys(*outline.childrenOf(outline.root()));
}

class AssemblyOutlineKeys : public ::testing::Test {
protected:
    void SetUp() override {
        keysAfter([](auto&) {}, root_, child_);
    }

    // Which keys of the changed component change, and which of its parent: "content texts rest /
    // content texts rest ".
    std::string changedBy(const Change& change) const {
        Keys root;
        Keys child;
        keysAfter(change, root, child);
        return text(child, child_) + "/ " + text(root, root_);
    }

private:
    static std::string text(const Keys& one, const Keys& other) {
        std::string text;
        if (one.content != other.content) text += "content ";
        if (one.texts != other.texts) text += "texts ";
        if (one.withoutName != other.withoutName) text += "rest ";
        return text;
    }

    Keys root_;
    Keys child_;
};

TEST_F(AssemblyOutlineKeys, DependOnTheTexts) {
    const char* const all = "content texts rest / content texts rest ";
    EXPECT_EQ(changedBy([](auto& part) { part.setComment("x"); }), all);
    EXPECT_EQ(changedBy([](auto& part) { part.setGeometryFileName("x"); }), all);
    EXPECT_EQ(changedBy([](auto& part) { part.setEnabled(false); }), all);
    EXPECT_EQ(changedBy([](auto& part) { part.setName("x"); }),
              "content texts / content texts rest ");
    EXPECT_EQ(changedBy([](auto& part) { part.setComponents({}); }),
              "content texts rest / content texts rest ");
}

TEST_F(AssemblyOutlineKeys, OfTextsIgnoreThePlacement) {
    const char* const placement = "content rest / content rest ";
    EXPECT_EQ(changedBy([](auto& part) { translate(part, 0, 0, 0.5); }), placement);
    EXPECT_EQ(changedBy([](auto& part) { orient(part, 2, 1, 1); }), placement);
    EXPECT_EQ(changedBy([](auto& part) { orient(part, 1, 2, 1); }), placement);
    EXPECT_EQ(changedBy([](auto& part) {
                  translate(part, 0, std::numeric_limits<double>::infinity(), 0);
              }),
              placement);
    EXPECT_EQ(changedBy([](auto& part) {
                  translate(part, 0, std::numeric_limits<double>::quiet_NaN(), 0);
              }),
              placement);
}

TEST_F(AssemblyOutlineKeys, IgnoreVec3AndTheLastDecimals) {
    EXPECT_EQ(changedBy([](auto& part) { orient(part, 1, 1, 2); }), "/ ");
    EXPECT_EQ(changedBy([](auto& part) { translate(part, 1e-7, -1e-7, -0.0); }), "/ ");
}

TEST(AssemblyOutline, HasOneKeyForAllNans) {
    constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
    const auto content = [](double value) {
        CTrvAssemblyComponentData part = component("a");
        translate(part, value, 0, 0);
        return outlineOf(assembly(part)).root().content;
    };
    EXPECT_EQ(content(std::copysign(notANumber, 1)), content(std::copysign(notANumber, -1)));
    EXPECT_NE(content(notANumber), content(0));
}

TEST_F(AssemblyOutlineKeys, DependOnTheOrderOfChildren) {
    const auto children = [](const char* first, const char* second) {
        return outlineOf(assembly(component("a", {component(first), component(second)})))
            .root()
            .texts;
    };
    EXPECT_NE(children("b", "c"), children("c", "b"));
    EXPECT_EQ(children("b", "c"), children("b", "c"));
}

TEST(KeyOf, DependsOnTheTextAndTheOtherKey) {
    EXPECT_EQ(cli::keyOf("a", 1), cli::keyOf("a", 1));
    EXPECT_NE(cli::keyOf("a", 1), cli::keyOf("b", 1));
    EXPECT_NE(cli::keyOf("a", 1), cli::keyOf("a", 2));
    EXPECT_EQ(cli::keyOf("a"), cli::keyOf("a", 0));
}

}  // namespace
}  // namespace trv::testing
