#include <tests/assembly/sample_components.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/assembly/component_body.h>
#include <trvfiles/support/platform.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

using Component = CTrvAssemblyComponentData;
using trv::ComponentBody;
using namespace trv::testing;

namespace {

constexpr std::size_t levels = 100000;

/// Each test runs on the caller's stack and on one of 512 KiB, which any recursion would overflow.
class DeepTree : public ::testing::TestWithParam<bool> {
protected:
    template <class Work>
    void run(const Work& work) {
        constexpr std::size_t small = std::size_t{512} * 1024;
        if (GetParam())
            trv::platform::call_on_stack(small, work);
        else
            work();
    }
};

INSTANTIATE_TEST_SUITE_P(Stacks, DeepTree, ::testing::Bool(), [](const auto& stack) {
    return std::string(stack.param ? "OnASmallStack" : "OnTheMainStack");
});

Component deep() {
    return chain(levels, named("bottom", leaf("deep.stl")));
}

/// Two children on each level: a leaf, and the next level before or after it.
Component comb(bool leafFirst) {
    Component bottom = leaf("deep.stl");
    for (std::size_t i = 0; i < levels; ++i) {
        Components children(2);
        children[leafFirst ? 0 : 1] = leaf("side.stl");
        children[leafFirst ? 1 : 0] = std::move(bottom);
        bottom = group(std::move(children));
    }
    return bottom;
}

std::size_t depthOf(const Component& component) {
    std::size_t depth = 0;
    const ComponentBody* level = &ComponentBody::of(component);
    for (; !level->components.empty(); ++depth)
        level = &level->components[0];
    return depth;
}

}  // namespace

TEST_P(DeepTree, IsBuiltAndDestroyed) {
    run([] { EXPECT_EQ(depthOf(deep()), levels); });
}

TEST_P(DeepTree, IsCopiedToItsBottom) {
    run([] {
        Component source = deep();
        const Component copy = source;
        source = Component();
        EXPECT_EQ(depthOf(copy), levels);
        Component assigned = deep();
        assigned = copy;
        EXPECT_EQ(depthOf(assigned), levels);
        EXPECT_EQ(assigned.getComponentNumber(), 1U);
    });
}

TEST_P(DeepTree, IsComparedToItsBottom) {
    run([] {
        const Component one = deep();
        EXPECT_TRUE(one == deep());
        EXPECT_FALSE(one != deep());
        EXPECT_FALSE(one == chain(levels, named("other", leaf("deep.stl"))));
        EXPECT_FALSE(one == chain(levels, leaf("")));
        EXPECT_FALSE(one == chain(levels + 1, named("bottom", leaf("deep.stl"))));
    });
}

TEST_P(DeepTree, IsCountedToItsBottom) {
    run([] {
        EXPECT_EQ(deep().getComponentNumber(), 1U);
        EXPECT_EQ(comb(true).getComponentNumber(), levels + 1);
        EXPECT_EQ(comb(false).getComponentNumber(), levels + 1);
    });
}

TEST_P(DeepTree, IsFlattenedToItsBottom) {
    run([] {
        std::vector<CComponentInfo> list;
        deep().getComponentFileList({}, list);
        ASSERT_EQ(list.size(), 1U);
        const double* translation = nullptr;
        list[0].getTranslation(translation);
        EXPECT_EQ(translation[0], static_cast<double>(levels));
    });
}

TEST_P(DeepTree, IsFlattenedInOrderWithBranchesOnEveryLevel) {
    run([] {
        std::vector<CComponentInfo> list;
        comb(true).getComponentFileList({}, list);
        ASSERT_EQ(list.size(), levels + 1);
        EXPECT_EQ(list.front().getFileName(), "side.stl");
        EXPECT_EQ(list.back().getFileName(), "deep.stl");
        list.clear();
        comb(false).getComponentFileList({}, list);
        ASSERT_EQ(list.size(), levels + 1);
        EXPECT_EQ(list.front().getFileName(), "deep.stl");
        EXPECT_EQ(list.back().getFileName(), "side.stl");
    });
}

TEST_P(DeepTree, MayBeTruncated) {
    run([] {
        Component component = deep();
        component.setComponents({});
        EXPECT_EQ(depthOf(component), 0U);
        component = deep();
        component.setComponents(component.getComponents());
        EXPECT_EQ(depthOf(component), levels);
    });
}

TEST_P(DeepTree, IsAssignedToItself) {
    run([] {
        Component component = deep();
        const Component& same = component;
        component = same;
        EXPECT_EQ(depthOf(component), levels);
    });
}

TEST_P(DeepTree, IsFreedWithBranchesOnEveryLevel) {
    run([] {
        for (const bool leafFirst : {true, false}) {
            Component component = comb(leafFirst);
            Components both(2, component);
            component.setComponents(std::move(both));
            EXPECT_EQ(component.getComponentNumber(), 2 * (levels + 1));
        }
    });
}

TEST_P(DeepTree, IsMoved) {
    run([] {
        Component source = deep();
        Component target = std::move(source);
        EXPECT_EQ(depthOf(target), levels);
        source = chain(3, leaf("f"));
        target = std::move(source);
        EXPECT_EQ(depthOf(target), 3U);
    });
}

TEST_P(DeepTree, IsVisitedAndEdited) {
    run([] {
        Component component = deep();
        std::size_t deepest = 0;
        component.node().visit([&](CTrvAssemblyNode& node, std::size_t level) {
            node.setEnabled(false);
            deepest = level;
            return CTrvAssemblyNode::Visit::proceed;
        });
        EXPECT_EQ(deepest, levels);
        bool isEnabled = false;
        const Component& constant = component;
        constant.node().visit([&](const CTrvAssemblyNode& node, std::size_t) {
            isEnabled = isEnabled || node.isEnabled();
            return CTrvAssemblyNode::Visit::proceed;
        });
        EXPECT_FALSE(isEnabled);
        component.node().assign(component.node().getChild(0).toComponent());
        EXPECT_EQ(depthOf(component), levels - 1);
        component.node().insertChild(0, deep());
        EXPECT_TRUE(component.node().removeChild(1));
        EXPECT_EQ(depthOf(component), levels + 1);
        EXPECT_TRUE(component.node().removeChild(0));
    });
}

TEST_P(DeepTree, MayBeInAnAssembly) {
    run([] {
        CTrvAssemblyData assembly;
        assembly.setRootComponent(deep());
        assembly.setRootComponent(assembly.getRootComponent());
        EXPECT_EQ(depthOf(assembly.getRootComponent()), levels);
        CTrvAssemblyData copy = assembly;
        EXPECT_TRUE(copy == assembly);
        EXPECT_EQ(copy.getComponentNumber(), 1U);
        EXPECT_EQ(copy.getComponentFileList().size(), 1U);
        copy.setRootComponent(chain(levels - 1, leaf("deep.stl")));
        EXPECT_EQ(depthOf(copy.getRootComponent()), levels - 1);
        EXPECT_TRUE(copy != assembly);
        assembly = std::move(copy);
        EXPECT_EQ(depthOf(assembly.getRootComponent()), levels - 1);
    });
}

TEST(WideTree, IsHandledAsADeepOne) {
    Components children(levels, leaf("f"));
    Component wide = group(std::move(children));
    const Component copy = wide;
    EXPECT_TRUE(copy == wide);
    EXPECT_EQ(copy.getComponentNumber(), levels);
    std::vector<CComponentInfo> list;
    copy.getComponentFileList({}, list);
    EXPECT_EQ(list.size(), levels);
    wide.setComponents({});
    EXPECT_FALSE(copy == wide);
}
