#include <tests/common/channel_log.h>
#include <tests/common/child_process.h>
#include <tests/common/file_bytes.h>
#include <tests/common/system.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/environment/zone_number.h>
#include <trvfiles/support/diagnostics.h>
#include <trvfiles/support/platform.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace trv {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::textOf;
using testing::writeBytes;

class ZoneNumber : public ::testing::Test {
protected:
    std::string path() const { return (directory_ / "workzone.num").generic_string(); }

    void write(std::string_view text) const { writeBytes(directory_ / "workzone.num", text); }

    std::string text() const { return textOf(directory_ / "workzone.num"); }

    std::vector<std::string> files() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(directory_.path()))
            names.push_back(entry.path().filename().string());
        return names;
    }

    /// The number that follows what a counter file holds.
    std::string numberAfter(std::string_view counter) const {
        write(counter);
        return allocate_zone_number(path().c_str()).value_or("<none>");
    }

    testing::TemporaryDirectory directory_;
    testing::ChannelLog log_;
};

TEST_F(ZoneNumber, IsReadAsItStandsWithoutTrailingBlanks) {
    write("1a  \t\r\n");
    EXPECT_EQ(read_zone_number(path().c_str()), "1a");
    write("  not a number");
    EXPECT_EQ(read_zone_number(path().c_str()), "  not a number");
    write("first\nsecond\n");
    EXPECT_EQ(read_zone_number(path().c_str()), "first");
    write(" \t \n");
    EXPECT_EQ(read_zone_number(path().c_str()), "");
}

TEST_F(ZoneNumber, IsReadUpTo80Characters) {
    write(std::string(80, '1') + "\n");
    EXPECT_EQ(read_zone_number(path().c_str()), std::string(80, '1'));
    write(std::string(81, '1') + "\n");
    EXPECT_EQ(read_zone_number(path().c_str()), std::string(80, '1'));
}

TEST_F(ZoneNumber, ReportsAFileThatCannotBeRead) {
    EXPECT_EQ(read_zone_number(path().c_str()), std::nullopt);
    write("");
    EXPECT_EQ(read_zone_number(path().c_str()), std::nullopt);
    EXPECT_THAT(log_.fatals(), ElementsAre("Error opening file '" + path() + "' for read access\n",
                                           "Error reading file '" + path() + "'\n"));
}

TEST_F(ZoneNumber, IsTheNextOneOfTheCounter) {
    EXPECT_EQ(numberAfter("0000000f\n"), "00000010");
    EXPECT_EQ(text(), "00000010\n");
    EXPECT_EQ(allocate_zone_number(path().c_str()), "00000011");
    EXPECT_EQ(text(), "00000011\n");
    EXPECT_THAT(log_.fatals(), IsEmpty());
}

TEST_F(ZoneNumber, TakesACounterAsAHexadecimalScanDoes) {
    EXPECT_EQ(numberAfter("0x1f"), "00000020");
    EXPECT_EQ(numberAfter("0X1F\n"), "00000020");
    EXPECT_EQ(numberAfter(" \t1f\n"), "00000020");
    EXPECT_EQ(numberAfter("face off\n"), "0000facf");
    EXPECT_EQ(numberAfter("+9\n"), "0000000a");
    // The first and the last digit of each range, and the characters beside them.
    EXPECT_EQ(numberAfter("0000000A\n"), "0000000b");
    EXPECT_EQ(numberAfter("0000000F\n"), "00000010");
    EXPECT_EQ(numberAfter("0000000a\n"), "0000000b");
    EXPECT_EQ(numberAfter("00000000\n"), "00000001");
    for (const char* other : {"1:2", "1/2", "1@2", "1G2", "1`2", "1g2"})
        EXPECT_EQ(numberAfter(other), "00000002") << other;
    EXPECT_EQ(numberAfter("-2\n"), "ffffffff");
    EXPECT_EQ(numberAfter("00000000000000000000000000001\n"), "00000002");
}

TEST_F(ZoneNumber, StartsAnewAfterTheLargestCounter) {
    EXPECT_EQ(numberAfter("fffffffe\n"), "ffffffff");
    EXPECT_EQ(numberAfter("ffffffff\n"), "00000000");
    EXPECT_EQ(numberAfter("100000000\n"), "00000000");
    EXPECT_EQ(numberAfter(std::string(80, 'f')), "00000000");
    EXPECT_EQ(numberAfter("-fffffffff\n"), "00000000");
    EXPECT_EQ(numberAfter("-ffffffff\n"), "00000002");
}

TEST_F(ZoneNumber, TakesACounterThatIsNoNumberForZero) {
    EXPECT_EQ(numberAfter("xyz\n"), "00000001");
    EXPECT_EQ(numberAfter("\n"), "00000001");
    EXPECT_EQ(numberAfter("0x\n"), "00000001");
    EXPECT_EQ(numberAfter("- 1\n"), "00000001");
}

TEST_F(ZoneNumber, IsWrittenOverTheCounterWithoutCuttingIt) {
    EXPECT_EQ(numberAfter("7 and a longer line\nand another\n"), "00000008");
    const bool windows = platform::backslash_separates();  // a line ends with two bytes there
    EXPECT_EQ(text(), windows ? "00000008\nnger line\nand another\n"
                              : "00000008\nonger line\nand another\n");
    EXPECT_EQ(numberAfter("7\n"), "00000008");
    EXPECT_EQ(text(), "00000008\n");
}

TEST_F(ZoneNumber, ReportsACounterThatCannotBeOpenedOrRead) {
    EXPECT_EQ(allocate_zone_number(path().c_str()), std::nullopt);
    EXPECT_FALSE(std::filesystem::exists(directory_ / "workzone.num"));
    EXPECT_EQ(allocate_zone_number(directory_.text().c_str()), std::nullopt);
    EXPECT_EQ(numberAfter(""), "<none>");
    EXPECT_THAT(log_.fatals(), ElementsAre("Error opening '" + path() + "' file\n",
                                           "Error opening '" + directory_.text() + "' file\n",
                                           "Error reading '" + path() + "' file\n"));
}

TEST_F(ZoneNumber, IsWrittenForANewZone) {
    EXPECT_EQ(create_zone_number(path().c_str(), "00000010"), "00000010");
    EXPECT_EQ(text(), "00000010\n");
    EXPECT_THAT(files(), ElementsAre("workzone.num"));
}

TEST_F(ZoneNumber, IsThatOfAnotherProcessThatWasFaster) {
    write("00000009\n");
    EXPECT_EQ(create_zone_number(path().c_str(), "00000010"), "00000009");
    EXPECT_EQ(text(), "00000009\n");
    EXPECT_THAT(files(), ElementsAre("workzone.num"));
    EXPECT_THAT(log_.fatals(), IsEmpty());
}

TEST_F(ZoneNumber, ReportsAFileThatCannotBeCreated) {
    const std::string missing = directory_.text() + "/missing/workzone.num";
    EXPECT_EQ(create_zone_number(missing.c_str(), "00000010"), std::nullopt);
    EXPECT_THAT(log_.fatals(), ElementsAre("Error creating '" + missing + "' file\n"));
}

TEST_F(ZoneNumber, ReportsACounterThatCannotGrow) {
    if (!testing::can_fork) GTEST_SKIP() << "needs a process that may not let files grow";
    write("f");
    EXPECT_TRUE(testing::passesInChild([&] {
        ASSERT_TRUE(testing::limitFileSize(4));
        EXPECT_EQ(allocate_zone_number(path().c_str()), std::nullopt);
        EXPECT_THAT(log_.fatals(), ElementsAre("Error opening '" + path() + "' file\n"));
    }));
}

TEST_F(ZoneNumber, LeavesNoHalfFileOfANewZone) {
    if (!testing::can_fork) GTEST_SKIP() << "needs a process that may not let files grow";
    EXPECT_TRUE(testing::passesInChild([&] {
        ASSERT_TRUE(testing::limitFileSize(4));
        EXPECT_EQ(create_zone_number(path().c_str(), "00000010"), std::nullopt);
        EXPECT_THAT(log_.fatals(), ElementsAre("Error creating '" + path() + "' file\n"));
        EXPECT_THAT(files(), IsEmpty());
    }));
}

TEST_F(ZoneNumber, ReportsNothingWhileAFileIsOpen) {
    static std::ptrdiff_t open = 0;
    std::ptrdiff_t expected = testing::openDescriptors();
    if (expected < 0) GTEST_SKIP() << "open descriptors cannot be counted here";
    const auto count = [](const char*) { open = testing::openDescriptors(); };
    const auto expectNoneOpen = [&](const char* what) {
        EXPECT_EQ(open, expected) << what;
        open = 0;
    };
    set_fatal_handler(count);
    read_zone_number(path().c_str());
    expectNoneOpen("a missing number");
    allocate_zone_number(path().c_str());
    expectNoneOpen("a missing counter");
    write("");
    read_zone_number(path().c_str());
    expectNoneOpen("an empty number");
    allocate_zone_number(path().c_str());
    expectNoneOpen("an empty counter");
    create_zone_number((path() + "/inside").c_str(), "00000010");
    expectNoneOpen("a file that cannot be created");
    EXPECT_TRUE(testing::passesInChild([&] {
        expected = testing::openDescriptors();
        write("f");
        ASSERT_TRUE(testing::limitFileSize(4));
        allocate_zone_number(path().c_str());
        expectNoneOpen("a counter that cannot grow");
        std::filesystem::remove(directory_ / "workzone.num");
        create_zone_number(path().c_str(), "00000010");
        expectNoneOpen("a number that does not fit");
    }));
}

}  // namespace
}  // namespace trv
