#include <tests/c/c_objects.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>

namespace trv::testing {
namespace {

using ::testing::ElementsAre;

constexpr const char* sample = TRV_SAMPLE_PROJECT "/project/bracket.xml";

trvfiles_component_table tableOf(const Handle& components) {
    auto table = sized<trvfiles_component_table>();
    EXPECT_EQ(trvfiles_components_get(components, &table, 0), TRVFILES_SUCCESS);
    return table;
}

std::string textAt(const trvfiles_component_table& table, const std::size_t* offsets,
                   std::size_t index) {
    return std::string(table.text + offsets[index], table.text + offsets[index + 1]);
}

class ComponentTables : public ::testing::Test {
protected:
    FaultHandle fault_;
    Assembly assembly_;
    Handle components_;
};

TEST_F(ComponentTables, HaveAllFieldsOfAllComponents) {
    ASSERT_EQ(trvfiles_assembly_read(assembly_, sample, 0), TRVFILES_SUCCESS);
    ASSERT_EQ(trvfiles_assembly_components(assembly_, components_.place(), 0), TRVFILES_SUCCESS);
    const trvfiles_component_table table = tableOf(components_);
    ASSERT_EQ(table.count, 19U);
    for (std::size_t i = 0; i < table.count; ++i) {
        SCOPED_TRACE(i);
        const trvfiles_component component = assembly_.component(i);
        EXPECT_EQ(table.parent[i], component.parent);
        EXPECT_EQ(table.subtree_size[i], component.subtree_size);
        EXPECT_EQ(table.enabled[i], component.enabled);
        EXPECT_EQ(std::vector<double>(table.translation + 3 * i, table.translation + 3 * i + 3),
                  std::vector<double>(component.translation, component.translation + 3));
        EXPECT_EQ(std::vector<double>(table.orientation + 9 * i, table.orientation + 9 * i + 9),
                  std::vector<double>(component.orientation, component.orientation + 9));
        EXPECT_EQ(textAt(table, table.name, i), assembly_.text(i, TRVFILES_COMPONENT_NAME));
        EXPECT_EQ(textAt(table, table.comment, i), assembly_.text(i, TRVFILES_COMPONENT_COMMENT));
        EXPECT_EQ(textAt(table, table.geometry, i), assembly_.text(i, TRVFILES_COMPONENT_GEOMETRY));
    }
    EXPECT_EQ(table.geometry[19], table.text_length);
}

TEST_F(ComponentTables, HaveThePlacementsInTheWorld) {
    const std::size_t child = assembly_.add(0, 0, "child");
    const double outer[3] = {10, 20, 30};
    const double inner[3] = {1, 2, 3};
    // A quarter turn about z.
    const double turned[9] = {0, 1, 0, -1, 0, 0, 0, 0, 1};
    trvfiles_component_set_placement(assembly_, 0, outer, turned, 0);
    trvfiles_component_set_placement(assembly_, child, inner, nullptr, 0);
    trvfiles_component_set_enabled(assembly_, child, 0, 0);
    ASSERT_EQ(trvfiles_assembly_components(assembly_, components_.place(), 0), TRVFILES_SUCCESS);
    const trvfiles_component_table table = tableOf(components_);
    EXPECT_THAT(std::vector<double>(table.world, table.world + 32),
                ElementsAre(0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 10, 20, 30, 1,  //
                            0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 8, 21, 33, 1));
}

TEST_F(ComponentTables, MakeTheSameAssembly) {
    ASSERT_EQ(trvfiles_assembly_read(assembly_, sample, 0), TRVFILES_SUCCESS);
    ASSERT_EQ(trvfiles_assembly_components(assembly_, components_.place(), 0), TRVFILES_SUCCESS);
    const trvfiles_component_table table = tableOf(components_);
    Assembly made;
    double dimension[3] = {};
    trvfiles_assembly_get_dimension(assembly_, dimension, 0);
    trvfiles_assembly_set_dimension(made, dimension, 0);
    ASSERT_EQ(trvfiles_assembly_set_components(made, &table, fault_), TRVFILES_SUCCESS);
    std::int32_t isEqual = 0;
    ASSERT_EQ(trvfiles_assembly_equal(assembly_, made, &isEqual, 0), TRVFILES_SUCCESS);
    EXPECT_EQ(isEqual, 1);
    EXPECT_EQ(made.names(), assembly_.names());
}

TEST_F(ComponentTables, MayHaveParentsOnly) {
    // 0 (1 (2), 3)
    const std::size_t parents[] = {TRVFILES_NO_INDEX, 0, 1, 0};
    auto table = sized<trvfiles_component_table>();
    table.count = 4;
    table.parent = parents;
    ASSERT_EQ(trvfiles_assembly_set_components(assembly_, &table, fault_), TRVFILES_SUCCESS);
    EXPECT_THAT(assembly_.names(), ElementsAre("", ".", "..", "."));
    EXPECT_EQ(assembly_.component(3).enabled, 1);
    EXPECT_THAT(assembly_.component(3).orientation, ElementsAre(1, 0, 0, 0, 1, 0, 0, 0, 1));
}

class RefusedTables : public ComponentTables {
protected:
    RefusedTables() {
        assembly_.setText(0, TRVFILES_COMPONENT_NAME, "kept");
        table_.count = 3;
        table_.parent = parents_;
        table_.name = offsets_;
        table_.text = "abc";
        table_.text_length = 3;
    }

    void expectRefused(const char* reason, std::int32_t status = TRVFILES_BAD_ARGUMENT) {
        EXPECT_EQ(trvfiles_assembly_set_components(assembly_, &table_, fault_), status);
        EXPECT_EQ(fault_.reason(), reason);
        EXPECT_THAT(assembly_.names(), ElementsAre("kept"));
    }

    std::size_t parents_[3] = {TRVFILES_NO_INDEX, 0, 1};
    std::size_t offsets_[4] = {0, 1, 2, 3};
    trvfiles_component_table table_ = sized<trvfiles_component_table>();
};

TEST_F(RefusedTables, HaveNoTree) {
    table_.count = 0;
    expectRefused("a tree has no root");
    table_.count = 3;
    table_.parent = nullptr;
    expectRefused("an argument is NULL");
    table_.parent = parents_;
    parents_[0] = 0;
    expectRefused("the first component has a parent");
    parents_[0] = TRVFILES_NO_INDEX;
    for (const std::size_t parent : {std::size_t{2}, std::size_t{3}, TRVFILES_NO_INDEX}) {
        parents_[2] = parent;
        expectRefused("a component is not in document order");
    }
}

// 0 (1, 2), and then a child of 1.
TEST_F(RefusedTables, AreNotInDocumentOrder) {
    const std::size_t parents[] = {TRVFILES_NO_INDEX, 0, 0, 1};
    table_.count = 4;
    table_.parent = parents;
    table_.name = nullptr;
    expectRefused("a component is not in document order");
}

TEST_F(RefusedTables, HaveOffsetsOutsideOfTheText) {
    offsets_[3] = 4;
    expectRefused("an offset is outside of the texts");
    offsets_[3] = 1;
    expectRefused("an offset is outside of the texts");
    offsets_[3] = 3;
    table_.text = nullptr;
    expectRefused("an argument is NULL");
}

TEST_F(RefusedTables, HaveTextsThatAreNone) {
    table_.text =
        "a\xFF"
        "c";
    expectRefused("a text is not UTF-8", TRVFILES_BAD_TEXT);
    table_.text = "a\0c";
    expectRefused("a text contains a zero byte", TRVFILES_BAD_TEXT);
}

// Deeper than a stack of calls.
TEST_F(ComponentTables, HaveNoMaximumDepth) {
    constexpr std::size_t depth = 100000;
    std::vector<std::size_t> parents(depth, TRVFILES_NO_INDEX);
    for (std::size_t i = 1; i < depth; ++i)
        parents[i] = i - 1;
    auto table = sized<trvfiles_component_table>();
    table.count = depth;
    table.parent = parents.data();
    ASSERT_EQ(trvfiles_assembly_set_components(assembly_, &table, fault_), TRVFILES_SUCCESS);
    EXPECT_EQ(assembly_.component(depth - 1).depth, depth - 1);
    ASSERT_EQ(trvfiles_assembly_components(assembly_, components_.place(), 0), TRVFILES_SUCCESS);
    EXPECT_EQ(tableOf(components_).parent[depth - 1], depth - 2);
}

// The list of components is made by the first call that needs it, which several threads may be.
TEST_F(ComponentTables, AreMadeByThreadsAtTheSameTime) {
    for (int round = 0; round < 20; ++round) {
        Assembly assembly;
        ASSERT_EQ(trvfiles_assembly_read(assembly, sample, 0), TRVFILES_SUCCESS);
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([&assembly] {
                Handle components;
                EXPECT_EQ(trvfiles_assembly_components(assembly, components.place(), 0),
                          TRVFILES_SUCCESS);
                EXPECT_EQ(tableOf(components).count, 19U);
                EXPECT_EQ(assembly.component(18).subtree_size, 1U);
            });
        }
        for (std::thread& thread : threads)
            thread.join();
    }
}

}  // namespace
}  // namespace trv::testing
