#include <tests/common/channel_log.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/environment/zone_number.h>
#include <trvfiles/support/platform.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

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

    /// The number that follows what a counter file holds.
    std::string numberAfter(std::string_view counter) const {
        write(counter);
        return draw_zone_number(path().c_str()).value_or("<none>");
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
    EXPECT_EQ(draw_zone_number(path().c_str()), "00000011");
    EXPECT_EQ(text(), "00000011\n");
    EXPECT_THAT(log_.fatals(), IsEmpty());
}

TEST_F(ZoneNumber, TakesACounterAsAHexadecimalScanDoes) {
    EXPECT_EQ(numberAfter("0x1f"), "00000020");
    EXPECT_EQ(numberAfter("0X1F\n"), "00000020");
    EXPECT_EQ(numberAfter(" \t1f\n"), "00000020");
    EXPECT_EQ(numberAfter("face off\n"), "0000facf");
    EXPECT_EQ(numberAfter("+9\n"), "0000000a");
    EXPECT_EQ(numberAfter("-2\n"), "ffffffff");
    EXPECT_EQ(numberAfter("00000000000000000000000000001\n"), "00000002");
}

TEST_F(ZoneNumber, StartsAnewAfterTheLargestCounter) {
    EXPECT_EQ(numberAfter("fffffffe\n"), "ffffffff");
    EXPECT_EQ(numberAfter("ffffffff\n"), "00000000");
    EXPECT_EQ(numberAfter("100000000\n"), "00000000");
    EXPECT_EQ(numberAfter(std::string(80, 'f')), "00000000");
    EXPECT_EQ(numberAfter("-fffffffff\n"), "00000000");
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
    EXPECT_EQ(draw_zone_number(path().c_str()), std::nullopt);
    EXPECT_FALSE(std::filesystem::exists(directory_ / "workzone.num"));
    EXPECT_EQ(draw_zone_number(directory_.text().c_str()), std::nullopt);
    EXPECT_EQ(numberAfter(""), "<none>");
    EXPECT_THAT(log_.fatals(), ElementsAre("Error opening '" + path() + "' file\n",
                                           "Error opening '" + directory_.text() + "' file\n",
                                           "Error reading '" + path() + "' file\n"));
}

TEST_F(ZoneNumber, IsWrittenForANewZone) {
    EXPECT_TRUE(write_zone_number(path().c_str(), "00000010"));
    EXPECT_EQ(text(), "00000010\n");
}

TEST_F(ZoneNumber, ReportsAFileThatCannotBeCreated) {
    const std::string missing = directory_.text() + "/missing/workzone.num";
    EXPECT_FALSE(write_zone_number(missing.c_str(), "00000010"));
    EXPECT_THAT(log_.fatals(), ElementsAre("Error creating '" + missing + "' file\n"));
}

TEST_F(ZoneNumber, ReportsADeviceThatIsFull) {
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "needs a device that is always full";
    std::filesystem::create_symlink("/dev/full", directory_ / "workzone.num");
    EXPECT_FALSE(write_zone_number(path().c_str(), "00000010"));
    EXPECT_FALSE(
        std::filesystem::exists(std::filesystem::symlink_status(directory_ / "workzone.num")))
        << "no half number is left";
    std::filesystem::create_symlink("/dev/full", directory_ / "workzone.num");
    EXPECT_EQ(draw_zone_number(path().c_str()), std::nullopt);
    EXPECT_THAT(log_.fatals(), ElementsAre("Error creating '" + path() + "' file\n",
                                           "Error opening '" + path() + "' file\n"));
}

}  // namespace
}  // namespace trv
