#include <tests/c/c_objects.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace trv::testing {
namespace {

using ::testing::ElementsAre;

class CComponent : public ::testing::Test {
protected:
    // root: a (a1, a2), b
    CComponent() {
        assembly_.setText(0, TRVFILES_COMPONENT_NAME, "root");
        assembly_.add(0, 0, "a");
        assembly_.add(1, 0, "a1");
        assembly_.add(1, 1, "a2");
        assembly_.add(0, 1, "b");
    }

    FaultHandle fault_;
    Assembly assembly_;
};

TEST_F(CComponent, IsNumberedInDocumentOrder) {
    EXPECT_THAT(assembly_.names(), ElementsAre("root", ".a", "..a1", "..a2", ".b"));
    const trvfiles_component root = assembly_.component(0);
    EXPECT_EQ(root.parent, TRVFILES_NO_INDEX);
    EXPECT_EQ(root.subtree_size, 5U);
    EXPECT_EQ(root.child_count, 2U);
    const trvfiles_component last = assembly_.component(4);
    EXPECT_EQ(last.parent, 0U);
    EXPECT_EQ(last.subtree_size, 1U);
    EXPECT_EQ(last.depth, 1U);
    EXPECT_EQ(assembly_.component(1).subtree_size, 3U);
}

TEST_F(CComponent, IsAddedBetweenOthers) {
    EXPECT_EQ(assembly_.add(0, 1, "between"), 4U);
    EXPECT_EQ(assembly_.add(1, 1, "a15"), 3U);
    EXPECT_THAT(assembly_.names(),
                ElementsAre("root", ".a", "..a1", "..a15", "..a2", ".between", ".b"));
}

// More children than the list has room for: the children before move in memory.
TEST_F(CComponent, IsAddedAtTheEndManyTimes) {
    for (int i = 0; i < 100; ++i) {
        const std::size_t child = assembly_.add(0, static_cast<std::size_t>(2 + i), "c");
        EXPECT_EQ(child, static_cast<std::size_t>(5 + 2 * i));
        EXPECT_EQ(assembly_.add(child, 0, "below"), child + 1);
    }
    const std::vector<std::string> names = assembly_.names();
    ASSERT_EQ(names.size(), 205U);
    EXPECT_EQ(names[2], "..a1");
    EXPECT_EQ(names[203], ".c");
    EXPECT_EQ(names[204], "..below");
    EXPECT_EQ(assembly_.component(0).subtree_size, 205U);
    EXPECT_EQ(assembly_.component(5).subtree_size, 2U);
}

TEST_F(CComponent, IsAddedAsACopyWithAllBelow) {
    std::size_t index = 0;
    ASSERT_EQ(trvfiles_component_add(assembly_, 4, 0, assembly_, 1, &index, fault_),
              TRVFILES_SUCCESS);
    EXPECT_EQ(index, 5U);
    ASSERT_EQ(trvfiles_component_add(assembly_, 0, 0, assembly_, 0, nullptr, 0), TRVFILES_SUCCESS);
    EXPECT_THAT(assembly_.names(),
                ElementsAre("root", ".root", "..a", "...a1", "...a2", "..b", "...a", "....a1",
                            "....a2", ".a", "..a1", "..a2", ".b", "..a", "...a1", "...a2"));
}

TEST_F(CComponent, IsRemovedWithAllBelow) {
    ASSERT_EQ(trvfiles_component_remove(assembly_, 1, fault_), TRVFILES_SUCCESS);
    EXPECT_THAT(assembly_.names(), ElementsAre("root", ".b"));
    ASSERT_EQ(trvfiles_component_remove(assembly_, 1, fault_), TRVFILES_SUCCESS);
    EXPECT_EQ(trvfiles_component_remove(assembly_, 0, fault_), TRVFILES_BAD_ARGUMENT);
    EXPECT_EQ(fault_.reason(), "the root cannot be removed");
    EXPECT_THAT(assembly_.names(), ElementsAre("root"));
}

TEST_F(CComponent, IsRefusedIfItsIndexIsTooHigh) {
    const Texts text;
    auto component = sized<trvfiles_component>();
    std::uint32_t bits = 0;
    for (const std::size_t index : {std::size_t{5}, SIZE_MAX}) {
        EXPECT_EQ(trvfiles_component_get(assembly_, index, &component, fault_),
                  TRVFILES_BAD_ARGUMENT);
        EXPECT_EQ(fault_.reason(), "the component does not exist");
        EXPECT_EQ(trvfiles_component_get_text(assembly_, index, 0, text, 0), TRVFILES_BAD_ARGUMENT);
        EXPECT_EQ(trvfiles_component_set_text(assembly_, index, 0, "", 0), TRVFILES_BAD_ARGUMENT);
        EXPECT_EQ(trvfiles_component_set_enabled(assembly_, index, 0, 0), TRVFILES_BAD_ARGUMENT);
        EXPECT_EQ(trvfiles_component_set_placement(assembly_, index, nullptr, nullptr, 0),
                  TRVFILES_BAD_ARGUMENT);
        EXPECT_EQ(trvfiles_component_add(assembly_, index, 0, 0, 0, nullptr, 0),
                  TRVFILES_BAD_ARGUMENT);
        EXPECT_EQ(trvfiles_component_add(assembly_, 0, 0, assembly_, index, nullptr, 0),
                  TRVFILES_BAD_ARGUMENT);
        EXPECT_EQ(trvfiles_component_remove(assembly_, index, 0), TRVFILES_BAD_ARGUMENT);
        EXPECT_EQ(trvfiles_component_compare(assembly_, index, assembly_, 0, &bits, 0),
                  TRVFILES_BAD_ARGUMENT);
        EXPECT_EQ(trvfiles_component_compare(assembly_, 0, assembly_, index, &bits, 0),
                  TRVFILES_BAD_ARGUMENT);
    }
    EXPECT_EQ(trvfiles_component_add(assembly_, 0, 3, 0, 0, nullptr, fault_),
              TRVFILES_BAD_ARGUMENT);
    EXPECT_EQ(fault_.reason(), "the position is after the last child");
    for (const std::int32_t field : {-1, 3}) {
        EXPECT_EQ(trvfiles_component_get_text(assembly_, 0, field, text, 0), TRVFILES_BAD_ARGUMENT);
        EXPECT_EQ(trvfiles_component_set_text(assembly_, 0, field, "", 0), TRVFILES_BAD_ARGUMENT);
    }
    EXPECT_EQ(assembly_.names().size(), 5U);
}

TEST_F(CComponent, KeepsItsFields) {
    const double translation[3] = {1, 2, 3};
    const double orientation[9] = {0, 1, 0, -1, 0, 0, 0, 0, 4};
    ASSERT_EQ(trvfiles_component_set_placement(assembly_, 2, translation, orientation, 0),
              TRVFILES_SUCCESS);
    ASSERT_EQ(trvfiles_component_set_placement(assembly_, 2, nullptr, nullptr, 0),
              TRVFILES_SUCCESS);
    ASSERT_EQ(trvfiles_component_set_enabled(assembly_, 2, 0, 0), TRVFILES_SUCCESS);
    assembly_.setText(2, TRVFILES_COMPONENT_NAME, "Spannbock \xC3\xA9");
    assembly_.setText(2, TRVFILES_COMPONENT_COMMENT, "\xE4\xB8\xAD");
    assembly_.setText(2, TRVFILES_COMPONENT_GEOMETRY, "g.stl");
    const trvfiles_component component = assembly_.component(2);
    EXPECT_EQ(component.enabled, 0);
    EXPECT_THAT(component.translation, ElementsAre(1, 2, 3));
    EXPECT_THAT(component.orientation, ElementsAre(0, 1, 0, -1, 0, 0, 0, 0, 4));
    EXPECT_EQ(assembly_.text(2, TRVFILES_COMPONENT_NAME), "Spannbock \xC3\xA9");
    EXPECT_EQ(assembly_.text(2, TRVFILES_COMPONENT_COMMENT), "\xE4\xB8\xAD");
    EXPECT_EQ(assembly_.text(2, TRVFILES_COMPONENT_GEOMETRY), "g.stl");
    EXPECT_EQ(trvfiles_component_set_text(assembly_, 2, 0, "\xE9", fault_), TRVFILES_BAD_TEXT);
    EXPECT_EQ(assembly_.text(2, TRVFILES_COMPONENT_NAME), "Spannbock \xC3\xA9");
}

std::uint32_t differences(trvfiles_assembly one, std::size_t index, std::size_t other) {
    std::uint32_t bits = 0xFFFF;
    EXPECT_EQ(trvfiles_component_compare(one, index, one, other, &bits, 0), TRVFILES_SUCCESS);
    return bits;
}

TEST_F(CComponent, IsCompared) {
    EXPECT_EQ(differences(assembly_, 2, 3), TRVFILES_DIFFERENT_NAME);
    assembly_.setText(2, TRVFILES_COMPONENT_NAME, "a2");
    EXPECT_EQ(differences(assembly_, 2, 3), 0U);
    assembly_.setText(2, TRVFILES_COMPONENT_COMMENT, "c");
    EXPECT_EQ(differences(assembly_, 2, 3), TRVFILES_DIFFERENT_COMMENT);
    assembly_.setText(3, TRVFILES_COMPONENT_COMMENT, "c");
    assembly_.setText(3, TRVFILES_COMPONENT_GEOMETRY, "g");
    EXPECT_EQ(differences(assembly_, 2, 3), TRVFILES_DIFFERENT_GEOMETRY);
    assembly_.setText(2, TRVFILES_COMPONENT_GEOMETRY, "g");
    trvfiles_component_set_enabled(assembly_, 3, 0, 0);
    EXPECT_EQ(differences(assembly_, 2, 3), TRVFILES_DIFFERENT_ENABLED);
    trvfiles_component_set_enabled(assembly_, 2, 0, 0);
    constexpr std::uint32_t vectors[] = {TRVFILES_DIFFERENT_VEC1, TRVFILES_DIFFERENT_VEC2,
                                         TRVFILES_DIFFERENT_VEC3};
    for (std::size_t i = 0; i < 3; ++i) {
        double orientation[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
        orientation[3 * i] += 0.5;
        trvfiles_component_set_placement(assembly_, 3, nullptr, orientation, 0);
        EXPECT_EQ(differences(assembly_, 2, 3), vectors[i]);
    }
    const double identity[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    const double translation[3] = {0, 0, 1};
    trvfiles_component_set_placement(assembly_, 3, translation, identity, 0);
    EXPECT_EQ(differences(assembly_, 3, 2), TRVFILES_DIFFERENT_TRANSLATION);
}

}  // namespace
}  // namespace trv::testing
