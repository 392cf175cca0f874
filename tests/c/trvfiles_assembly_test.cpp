#include <tests/c/c_objects.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/facade/CQvFilesIO.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace trv::testing {
namespace {

using ::testing::ElementsAre;

constexpr const char* sample = TRV_SAMPLE_PROJECT "/project/bracket.xml";

class CAssembly : public ::testing::Test {
protected:
    void readSample() const {
        ASSERT_EQ(trvfiles_assembly_read(assembly_, sample, fault_), TRVFILES_SUCCESS);
    }
    static bool areEqual(trvfiles_assembly one, trvfiles_assembly other) {
        std::int32_t isEqual = -1;
        EXPECT_EQ(trvfiles_assembly_equal(one, other, &isEqual, 0), TRVFILES_SUCCESS);
        return isEqual == 1;
    }

    TemporaryDirectory directory_;
    std::string path_ = (directory_ / "\xC3\xA9-\xE4\xB8\xAD.xml").u8string();
    FaultHandle fault_;
    Assembly assembly_;
    Texts bytes_;
};

TEST_F(CAssembly, IsReadAsItWasWritten) {
    readSample();
    const double dimension[3] = {1, 2, 3};
    ASSERT_EQ(trvfiles_assembly_set_dimension(assembly_, dimension, 0), TRVFILES_SUCCESS);
    ASSERT_EQ(trvfiles_assembly_write(assembly_, path_.c_str(), fault_), TRVFILES_SUCCESS);
    const Assembly read;
    ASSERT_EQ(trvfiles_assembly_read(read, path_.c_str(), fault_), TRVFILES_SUCCESS);
    EXPECT_TRUE(areEqual(assembly_, read));
    double readDimension[3] = {};
    ASSERT_EQ(trvfiles_assembly_get_dimension(read, readDimension, 0), TRVFILES_SUCCESS);
    EXPECT_THAT(readDimension, ElementsAre(1, 2, 3));
}

TEST_F(CAssembly, HasTheBytesOfItsFileInMemory) {
    readSample();
    ASSERT_EQ(trvfiles_assembly_write(assembly_, path_.c_str(), 0), TRVFILES_SUCCESS);
    ASSERT_EQ(trvfiles_assembly_write_memory(assembly_, bytes_, 0), TRVFILES_SUCCESS);
    const std::string bytes = bytes_.one();
    EXPECT_EQ(bytes, textOf(std::filesystem::u8path(path_)));
    const Assembly read;
    ASSERT_EQ(trvfiles_assembly_read_memory(read, bytes.data(), bytes.size(), 0), TRVFILES_SUCCESS);
    EXPECT_TRUE(areEqual(assembly_, read));
}

TEST_F(CAssembly, ReportsThePlaceOfAFailure) {
    readSample();
    constexpr std::string_view open = "<ComponentInfo version=\"1\">\n<Attributs>";
    EXPECT_EQ(trvfiles_assembly_read_memory(assembly_, open.data(), open.size(), fault_),
              TRVFILES_CONTENT_ERROR);
    EXPECT_EQ(fault_.values().line, 2);
    constexpr std::string_view other = "<Other/>";
    EXPECT_EQ(trvfiles_assembly_read_memory(assembly_, other.data(), other.size(), fault_),
              TRVFILES_STRUCTURE_ERROR);
    EXPECT_NE(fault_.reason(), "");
    EXPECT_EQ(trvfiles_assembly_read(assembly_, "no such file", fault_), TRVFILES_OPEN_ERROR);
    EXPECT_EQ(assembly_.names().size(), 19U);
}

TEST_F(CAssembly, IsNotWrittenIfAComponentIsEmpty) {
    EXPECT_EQ(trvfiles_assembly_write(assembly_, path_.c_str(), fault_), TRVFILES_CONTENT_ERROR);
    EXPECT_NE(fault_.reason(), "");
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::u8path(path_)));
    ASSERT_EQ(trvfiles_expand("kept", 0, bytes_, 0), TRVFILES_SUCCESS);
    EXPECT_EQ(trvfiles_assembly_write_memory(assembly_, bytes_, fault_), TRVFILES_CONTENT_ERROR);
    EXPECT_EQ(bytes_.one(), "kept");
    assembly_.setText(0, TRVFILES_COMPONENT_GEOMETRY, "a.stl");
    EXPECT_EQ(trvfiles_assembly_write(assembly_, directory_.text().c_str(), fault_),
              TRVFILES_OPEN_ERROR);
}

TEST_F(CAssembly, ReportsAFullDisk) {
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no device that is full";
    readSample();
    EXPECT_EQ(trvfiles_assembly_write(assembly_, "/dev/full", fault_), TRVFILES_SHORT_WRITE);
    EXPECT_EQ(fault_.values().system_error, 28);
}

TEST_F(CAssembly, IsCopied) {
    readSample();
    Handle copy;
    ASSERT_EQ(trvfiles_assembly_copy(assembly_, copy.place(), 0), TRVFILES_SUCCESS);
    EXPECT_TRUE(areEqual(assembly_, copy));
    assembly_.setText(3, TRVFILES_COMPONENT_NAME, "another");
    EXPECT_FALSE(areEqual(assembly_, copy));
    EXPECT_TRUE(areEqual(copy, copy));
}

TEST_F(CAssembly, CountsGeometryFilesAndComponents) {
    readSample();
    std::size_t count = 0;
    ASSERT_EQ(trvfiles_assembly_file_count(assembly_, &count, 0), TRVFILES_SUCCESS);
    EXPECT_EQ(count, 14U);
    ASSERT_EQ(trvfiles_component_count(assembly_, &count, 0), TRVFILES_SUCCESS);
    EXPECT_EQ(count, 19U);
}

// The same numbers as those of the C++ interface, bit by bit.
TEST_F(CAssembly, IsFlattenedAsInTheLibrary) {
    readSample();
    Handle placements;
    ASSERT_EQ(trvfiles_assembly_flatten(assembly_, nullptr, placements.place(), 0),
              TRVFILES_SUCCESS);
    auto table = sized<trvfiles_placement_table>();
    ASSERT_EQ(trvfiles_placements_get(placements, &table, 0), TRVFILES_SUCCESS);

    CTrvAssemblyData data;
    ASSERT_EQ(CQvFilesIO("").readTrvAssembly(sample, data), eFileIOSuccess);
    const std::vector<CComponentInfo> placed = data.getComponentFileList();
    ASSERT_EQ(table.count, placed.size());
    for (std::size_t i = 0; i < table.count; ++i) {
        const double* rows[4];
        placed[i].getOrientation(rows[0], rows[1], rows[2]);
        placed[i].getTranslation(rows[3]);
        for (std::size_t row = 0; row < 4; ++row) {
            const double* world = table.world + 16 * i + 4 * row;
            EXPECT_THAT(std::vector<double>(world, world + 4),
                        ElementsAre(rows[row][0], rows[row][1], rows[row][2], row == 3 ? 1 : 0));
        }
        EXPECT_EQ(std::string(table.text + table.geometry[i], table.text + table.geometry[i + 1]),
                  placed[i].getFileName());
        EXPECT_EQ(assembly_.text(table.component[i], TRVFILES_COMPONENT_GEOMETRY),
                  placed[i].getFileName());
    }
    EXPECT_EQ(table.geometry[table.count], table.text_length);
}

TEST_F(CAssembly, IsFlattenedInTheFrameOfAParent) {
    assembly_.setText(0, TRVFILES_COMPONENT_GEOMETRY, "a.stl");
    const double translation[3] = {1, 2, 3};
    ASSERT_EQ(trvfiles_component_set_placement(assembly_, 0, translation, nullptr, 0),
              TRVFILES_SUCCESS);
    // A quarter turn about z, then a translation.
    const double parent[16] = {0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 10, 20, 30, 1};
    Handle placements;
    ASSERT_EQ(trvfiles_assembly_flatten(assembly_, parent, placements.place(), 0),
              TRVFILES_SUCCESS);
    auto table = sized<trvfiles_placement_table>();
    ASSERT_EQ(trvfiles_placements_get(placements, &table, 0), TRVFILES_SUCCESS);
    ASSERT_EQ(table.count, 1U);
    EXPECT_THAT(std::vector<double>(table.world, table.world + 16),
                ElementsAre(0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 8, 21, 33, 1));
}

TEST_F(CAssembly, IsFlattenedToNothingIfItsRootIsDisabled) {
    readSample();
    ASSERT_EQ(trvfiles_component_set_enabled(assembly_, 0, 0, 0), TRVFILES_SUCCESS);
    Handle placements;
    ASSERT_EQ(trvfiles_assembly_flatten(assembly_, nullptr, placements.place(), 0),
              TRVFILES_SUCCESS);
    auto table = sized<trvfiles_placement_table>();
    ASSERT_EQ(trvfiles_placements_get(placements, &table, 0), TRVFILES_SUCCESS);
    EXPECT_EQ(table.count, 0U);
    EXPECT_EQ(table.geometry[0], 0U);
}

// A result is a copy: it stays after the assembly is released.
TEST_F(CAssembly, MayBeReleasedBeforeItsPlacements) {
    trvfiles_assembly assembly = 0;
    Handle placements;
    ASSERT_EQ(trvfiles_assembly_create(&assembly, 0), TRVFILES_SUCCESS);
    ASSERT_EQ(trvfiles_component_set_text(assembly, 0, TRVFILES_COMPONENT_GEOMETRY, "a.stl", 0),
              TRVFILES_SUCCESS);
    ASSERT_EQ(trvfiles_assembly_flatten(assembly, nullptr, placements.place(), 0),
              TRVFILES_SUCCESS);
    ASSERT_EQ(trvfiles_release(assembly, 0), TRVFILES_SUCCESS);
    auto table = sized<trvfiles_placement_table>();
    ASSERT_EQ(trvfiles_placements_get(placements, &table, 0), TRVFILES_SUCCESS);
    EXPECT_STREQ(table.text, "a.stl");
}

}  // namespace
}  // namespace trv::testing
