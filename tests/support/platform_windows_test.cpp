// Behaviour of files, names and the environment on Windows only.

#include <tests/common/death_test.h>
#include <tests/common/file_bytes.h>
#include <tests/common/held_file_windows.h>
#include <tests/common/scoped_variable.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/support/platform.h>

#include <direct.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cctype>
#include <cerrno>
#include <string>

namespace trv::platform {
namespace {

using testing::bytesOf;
using testing::HeldFile;
using testing::writeBytes;

class PlatformWindows : public testing::ChildProcessTest {
protected:
    std::string path(const std::string& name) const { return (directory_ / name).string(); }

    static std::string contents(std::FILE* file) {
        std::string text;
        for (int c = std::getc(file); c != EOF; c = std::getc(file))
            text += static_cast<char>(c);
        return text;
    }
    std::string read(const std::string& name, file_mode mode) const {
        const file_handle file = open_for_read(path(name), mode);
        return file == nullptr ? "<none>" : contents(file.get());
    }

    testing::TemporaryDirectory directory_;
};

TEST_F(PlatformWindows, EndsLinesOfTextWithCrLfInEveryWayOfWriting) {
    std::fputs("a\nb\n", open_for_write(path("f"), file_mode::text).get());
    EXPECT_EQ(bytesOf(directory_ / "f"), "a\r\nb\r\n");
    std::fputs("c\n", open_for_append(path("f").c_str(), file_mode::text).get());
    EXPECT_EQ(bytesOf(directory_ / "f"), "a\r\nb\r\nc\r\n");
    EXPECT_EQ(read("f", file_mode::text), "a\nb\nc\n");
    EXPECT_EQ(read("f", file_mode::binary), "a\r\nb\r\nc\r\n");
}

TEST_F(PlatformWindows, KeepsALoneCrOfAText) {
    writeBytes(directory_ / "f", "a\rb\n\r\n\r\r\n");
    EXPECT_EQ(read("f", file_mode::text), "a\rb\n\n\r\n");
}

TEST_F(PlatformWindows, EndsATextAtCtrlZ) {
    writeBytes(directory_ / "f",
               "a\r\nb\x1A"
               "c\r\n");
    EXPECT_EQ(read("f", file_mode::text), "a\nb");
    EXPECT_EQ(read("f", file_mode::binary),
              "a\r\nb\x1A"
              "c\r\n");
}

TEST_F(PlatformWindows, LooksUpVariablesInAnyCase) {
    const testing::ScopedVariable guard("TRVFILES_TEST", nullptr);
    EXPECT_TRUE(set_environment("TrvFiles_Test", "one"));
    EXPECT_STREQ(get_environment("TRVFILES_TEST"), "one");
    EXPECT_STREQ(get_environment("trvfiles_test"), "one");
    EXPECT_TRUE(set_environment("TRVFILES_test", "two"));
    EXPECT_STREQ(get_environment("TrvFiles_Test"), "two");
    EXPECT_TRUE(set_environment("trvfiles_test", ""));
    EXPECT_EQ(get_environment("TRVFILES_TEST"), nullptr);
}

TEST_F(PlatformWindows, FindsFilesInAnyCase) {
    writeBytes(directory_ / "Name.Txt", "text");
    EXPECT_EQ(read("nAME.tXT", file_mode::binary), "text");
    EXPECT_TRUE(path_exists(path("NAME.TXT").c_str()));
}

TEST_F(PlatformWindows, DoesNotOpenWhatAnotherHandleDoesNotShare) {
    writeBytes(directory_ / "f", "text");
    const HeldFile held(directory_ / "f", FILE_SHARE_READ);
    EXPECT_EQ(read("f", file_mode::binary), "text");
    errno = 0;
    EXPECT_EQ(open_for_write(path("f"), file_mode::binary), nullptr);
    EXPECT_EQ(errno, EACCES);
    EXPECT_EQ(open_for_write(directory_ / "f", file_mode::binary), nullptr);
    EXPECT_EQ(open_for_append(path("f").c_str(), file_mode::binary), nullptr);
    EXPECT_EQ(remove_file(path("f").c_str()), EACCES);
    EXPECT_EQ(bytesOf(directory_ / "f"), "text");
}

TEST_F(PlatformWindows, RemovesFilesByTheirWideNames) {
    const std::filesystem::path file = directory_.path() / L"\u00E4\u65E5\U0001F527";
    EXPECT_EQ(remove_file(file), ENOENT);
    EXPECT_EQ(remove_file(std::filesystem::path()), ENOENT);
    EXPECT_EQ(remove_file(directory_.path()), EACCES);
    std::fputs("x", open_for_write(file, file_mode::binary).get());
    {
        const HeldFile held(file, FILE_SHARE_READ | FILE_SHARE_WRITE);
        EXPECT_EQ(remove_file(file), EACCES);
    }
    ::SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(remove_file(file), EACCES);
    ::SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_EQ(contents(open_for_read(file, file_mode::binary).get()), "x");
    EXPECT_EQ(remove_file(file), 0);
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(PlatformWindows, ClosesWhatItHasOpened) {
    writeBytes(directory_ / "f", "text");
    open_for_read(path("f"), file_mode::text).reset();
    file_identity identity = {};
    EXPECT_TRUE(read_identity(path("f").c_str(), identity));
    EXPECT_NE(::DeleteFileW((directory_ / "f").c_str()), 0);
    EXPECT_EQ(directory_entries(directory_.text().c_str()).size(), 0U);
    EXPECT_NE(::RemoveDirectoryW(directory_.path().c_str()), 0);
}

TEST_F(PlatformWindows, KnowsDrives) {
    EXPECT_TRUE(directory_exists("C:\\"));
    EXPECT_TRUE(directory_exists("C:/"));
    EXPECT_TRUE(path_exists("c:\\"));
    EXPECT_FALSE(directory_exists("1:\\"));
    EXPECT_THAT(directory_entries("C:\\"), ::testing::Contains("windows"));
    EXPECT_THAT(directory_entries("C:/windows"), ::testing::Contains("system32"));
    EXPECT_EQ(native_path("C:\\a/b"), "C:\\a/b");
}

TEST_F(PlatformWindows, ADriveWithoutASeparatorMeansItsCurrentDirectory) {
    const auto list = [this] {
        writeBytes(directory_ / "f", "x");
        ASSERT_EQ(::_chdir(directory_.text().c_str()), 0);
        const std::string drive = directory_.text().substr(0, 2);
        EXPECT_THAT(directory_entries(drive.c_str()), ::testing::ElementsAre("f"));
        EXPECT_EQ(current_directory(), directory_.path().string());
        ASSERT_EQ(::_chdir("\\"), 0);
    };
    TRV_EXPECT_IN_CHILD(list);
}

TEST_F(PlatformWindows, IdentifiesADirectoryHoweverItIsSpelled) {
    std::filesystem::create_directory(directory_ / "Sub");
    file_identity identity = {};
    ASSERT_TRUE(read_identity(path("Sub").c_str(), identity));
    EXPECT_TRUE(identity.is_directory);
    const std::string slashes = directory_.text();
    for (const std::string& spelling :
         {path("SUB"), slashes + "/sub/", slashes + "/Sub/../Sub", "\\\\?\\" + path("Sub")}) {
        file_identity same = {};
        ASSERT_TRUE(read_identity(spelling.c_str(), same)) << spelling;
        EXPECT_EQ(same.volume, identity.volume) << spelling;
        EXPECT_EQ(same.index_high, identity.index_high) << spelling;
        EXPECT_EQ(same.index_low, identity.index_low) << spelling;
    }
    file_identity other = {};
    ASSERT_TRUE(read_identity(slashes.c_str(), other));
    EXPECT_TRUE(other.index_low != identity.index_low || other.index_high != identity.index_high);
}

TEST_F(PlatformWindows, FindsNothingOnAMissingServer) {
    EXPECT_FALSE(path_exists("\\\\trvfiles-no-server\\share\\f"));
    EXPECT_FALSE(directory_exists("//trvfiles-no-server/share"));
    EXPECT_EQ(open_for_read("\\\\trvfiles-no-server\\share\\f", file_mode::text), nullptr);
    EXPECT_TRUE(directory_entries("\\\\trvfiles-no-server\\share").empty());
}

TEST_F(PlatformWindows, PassesTheBytesOfPreparedStreamsAsTheyAre) {
    const auto print = [this] {
        ASSERT_NE(std::freopen(path("out").c_str(), "w", stdout), nullptr);
        std::puts("translated");
        std::fflush(stdout);
        prepare_console();
        std::fputs("a\nb\r\n", stdout);
        std::fflush(stdout);
        EXPECT_EQ(bytesOf(directory_ / "out"), "translated\r\na\nb\r\n");
    };
    TRV_EXPECT_IN_CHILD(print);
}

}  // namespace
}  // namespace trv::platform
