// Zone files where an open one cannot be removed.

#include <tests/common/channel_log.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/environment/zone_number.h>
#include <trvfiles/support/diagnostics.h>

#include <windows.h>

#include <gtest/gtest.h>

#include <string>

namespace trv {
namespace {

std::wstring reported_file;
int removed_files = 0;

// Windows removes no file that is open without sharing that.
void removeReportedFile(const char*) {
    if (::DeleteFileW(reported_file.c_str()) != 0) ++removed_files;
}

class ZoneNumberOnWindows : public ::testing::Test {
protected:
    ZoneNumberOnWindows() {
        reported_file = (directory_ / "workzone.num").wstring();
        removed_files = 0;
        set_fatal_handler(removeReportedFile);
    }
    std::string path() const { return (directory_ / "workzone.num").string(); }
    void write(const char* text) const { testing::writeBytes(directory_ / "workzone.num", text); }

    const testing::ChannelLog log_;
    testing::TemporaryDirectory directory_;
};

TEST_F(ZoneNumberOnWindows, IsReportedUnreadableAfterItsFileIsClosed) {
    write("");
    EXPECT_EQ(read_zone_number(path().c_str()), std::nullopt);
    EXPECT_EQ(removed_files, 1);
    write("");
    EXPECT_EQ(allocate_zone_number(path().c_str()), std::nullopt);
    EXPECT_EQ(removed_files, 2);
}

TEST_F(ZoneNumberOnWindows, LeavesNoFileOpen) {
    write("0000000f\n");
    EXPECT_EQ(allocate_zone_number(path().c_str()), "00000010");
    EXPECT_NE(::DeleteFileW(reported_file.c_str()), 0);
    EXPECT_EQ(create_zone_number(path().c_str(), "00000010"), "00000010");
    EXPECT_EQ(testing::bytesOf(directory_ / "workzone.num"), "00000010\r\n");
    EXPECT_EQ(create_zone_number(path().c_str(), "00000011"), "00000010");
    EXPECT_NE(::DeleteFileW(reported_file.c_str()), 0);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(directory_.path()), {}), 0);
}

}  // namespace
}  // namespace trv
