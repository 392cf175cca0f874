#include <tests/c/c_objects.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace trv::testing {
namespace {

using ::testing::ElementsAre;

class CAxis : public ::testing::Test {
protected:
    CAxis() : axis_(sized<trvfiles_axis>()) {
        for (const int diagonal : {0, 5, 10, 15})
            axis_.matrix[diagonal] = 1;
        axis_.matrix[12] = 12.5;
    }

    TemporaryDirectory directory_;
    // A name with characters of several scripts.
    std::string path_ = (directory_ / "\xC3\xA9-\xE4\xB8\xAD.dat").u8string();
    FaultHandle fault_;
    Texts bytes_;
    trvfiles_axis axis_;
};

TEST_F(CAxis, IsReadAsItWasWritten) {
    axis_.tag_count = 3;
    axis_.tags[0] = 2;
    axis_.tags[2] = 54;
    ASSERT_EQ(trvfiles_axis_write(path_.c_str(), &axis_, fault_), TRVFILES_SUCCESS);
    auto read = sized<trvfiles_axis>();
    ASSERT_EQ(trvfiles_axis_read(path_.c_str(), &read, fault_), TRVFILES_SUCCESS);
    EXPECT_THAT(read.matrix, ElementsAre(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 12.5, 0, 0, 1));
    EXPECT_EQ(read.tag_count, 3);
    EXPECT_THAT(read.tags, ElementsAre(2, 0, 54));
}

TEST_F(CAxis, HasTheBytesOfItsFileInMemory) {
    ASSERT_EQ(trvfiles_axis_write(path_.c_str(), &axis_, 0), TRVFILES_SUCCESS);
    ASSERT_EQ(trvfiles_axis_write_memory(&axis_, bytes_, 0), TRVFILES_SUCCESS);
    const std::string bytes = bytes_.one();
    EXPECT_EQ(textOf(std::filesystem::u8path(path_)), bytes);
    auto read = sized<trvfiles_axis>();
    ASSERT_EQ(trvfiles_axis_read_memory(bytes.data(), bytes.size(), &read, 0), TRVFILES_SUCCESS);
    EXPECT_EQ(read.matrix[12], 12.5);
    EXPECT_EQ(read.tag_count, 0);
    EXPECT_THAT(read.tags, ElementsAre(0, 0, 0));
}

TEST_F(CAxis, IsUnchangedAfterAFailure) {
    const trvfiles_axis before = axis_;
    EXPECT_EQ(trvfiles_axis_read(path_.c_str(), &axis_, fault_), TRVFILES_OPEN_ERROR);
    EXPECT_EQ(trvfiles_axis_read_memory("1\n1 0 0 0\nx", 11, &axis_, fault_),
              TRVFILES_CONTENT_ERROR);
    EXPECT_EQ(fault_.values().line, 3);
    EXPECT_EQ(fault_.reason(), "four numbers are expected");
    EXPECT_EQ(axis_.matrix[12], before.matrix[12]);
    EXPECT_EQ(axis_.size, before.size);
}

TEST_F(CAxis, IsWrittenWithNoTagsOrThree) {
    for (const std::int32_t count : {-1, 1, 2, 4}) {
        axis_.tag_count = count;
        EXPECT_EQ(trvfiles_axis_write_memory(&axis_, bytes_, fault_), TRVFILES_BAD_ARGUMENT);
        EXPECT_EQ(fault_.reason(), "the number of tags is neither 0 nor 3");
    }
    axis_.tag_count = 3;
    axis_.tags[1] = -1;
    EXPECT_EQ(trvfiles_axis_write(path_.c_str(), &axis_, fault_), TRVFILES_BAD_ARGUMENT);
    EXPECT_EQ(fault_.reason(), "a tag is negative");
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::u8path(path_)));
}

TEST_F(CAxis, IsNotWrittenToADirectory) {
    EXPECT_EQ(trvfiles_axis_write(directory_.text().c_str(), &axis_, fault_), TRVFILES_OPEN_ERROR);
    EXPECT_EQ(trvfiles_axis_write(":/resource", &axis_, fault_), TRVFILES_OPEN_ERROR);
    EXPECT_EQ(trvfiles_axis_write("\xFF", &axis_, fault_), TRVFILES_BAD_TEXT);
    EXPECT_EQ(fault_.reason(), "a text is not UTF-8");
}

TEST_F(CAxis, ReportsAFullDisk) {
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no device that is full";
    EXPECT_EQ(trvfiles_axis_write("/dev/full", &axis_, fault_), TRVFILES_SHORT_WRITE);
    EXPECT_EQ(fault_.values().system_error, 28);
}

}  // namespace
}  // namespace trv::testing
