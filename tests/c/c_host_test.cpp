#include <tests/c/c_host.h>
#include <trvfiles/c/trvfiles.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

TEST(CHost, ReadsAnAssembly) {
    EXPECT_EQ(c_host_placements(TRV_SAMPLE_PROJECT "/project/bracket.xml"), 10);
    EXPECT_EQ(c_host_placements(TRV_SAMPLE_PROJECT "/project/missing.xml"), -2);
}

// A host that was compiled with this version keeps these layouts.
TEST(CHost, StructuresKeepTheirLayout) {
    std::size_t sizes[8] = {};
    ASSERT_EQ(c_host_struct_sizes(sizes, 8), 7U);
    EXPECT_THAT(sizes, ::testing::ElementsAre(64, 120, 152, 48, 56, 144, 104, 0));
    EXPECT_EQ(offsetof(trvfiles_fault_values, note_count), 40U);
    EXPECT_EQ(offsetof(trvfiles_note, subject), 24U);
    EXPECT_EQ(offsetof(trvfiles_note, expected_length), 112U);
    EXPECT_EQ(offsetof(trvfiles_axis, tags), 140U);
    EXPECT_EQ(offsetof(trvfiles_context_numbers, clamping_proximity), 40U);
    EXPECT_EQ(offsetof(trvfiles_placement_table, text_length), 48U);
    EXPECT_EQ(offsetof(trvfiles_component, translation), 48U);
    EXPECT_EQ(offsetof(trvfiles_component_table, text_length), 96U);
}

TEST(CHost, StatusesAreThoseOfTheLibrary) {
    EXPECT_EQ(TRVFILES_SUCCESS, 1);
    EXPECT_EQ(TRVFILES_OPEN_ERROR, 2);
    EXPECT_EQ(TRVFILES_SHORT_WRITE, 3);
    EXPECT_EQ(TRVFILES_CONTENT_ERROR, 4);
    EXPECT_EQ(TRVFILES_STRUCTURE_ERROR, 5);
    EXPECT_EQ(TRVFILES_BAD_HANDLE, 100);
    EXPECT_EQ(TRVFILES_INTERNAL_ERROR, 106);
    EXPECT_EQ(TRVFILES_NOT_FOUND, -21);
    EXPECT_EQ(TRVFILES_NO_FILE_NAME, -44);
}

}  // namespace
