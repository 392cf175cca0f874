// Drives and servers in path searches and listings.

#include <tests/common/death_test.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/environment/path_search.h>
#include <trvfiles/environment/variable_expansion.h>
#include <trvfiles/support/file_system.h>

#include <direct.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace trv {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using testing::TemporaryDirectory;
using testing::writeBytes;

std::vector<std::string> listed(const std::string& pattern) {
    std::vector<std::string> names;
    file_listing* listing = list_matching(pattern.c_str());
    while (const char* name = listing_next(listing))
        names.emplace_back(name);
    listing_free(listing);
    return names;
}

std::string resolved(const std::string& name) {
    char text[512];
    std::strcpy(text, name.c_str());
    const int code = resolve_path(text, sizeof text);
    return code == EXP_OK ? text : std::to_string(code);
}

class PathsOfWindows : public testing::ChildProcessTest {
protected:
    std::string path(const std::string& name) const { return (directory_ / name).string(); }
    TemporaryDirectory directory_;
};

TEST_F(PathsOfWindows, ListADriveAsItIsTyped) {
    EXPECT_THAT(listed("C:\\win*"), Contains("C:\\windows"));
    EXPECT_THAT(listed("c:/WIN*"), Contains("c:/windows"));
    EXPECT_EQ(fileExists("C:\\w?ndows"), 1);
    const auto list = [this] {
        writeBytes(directory_ / "One.TXT", "x");
        ASSERT_EQ(::_chdir(directory_.text().c_str()), 0);
        const std::string drive = directory_.text().substr(0, 2);
        EXPECT_THAT(listed(drive + "one.*"), ElementsAre(drive + "One.TXT"));
        ASSERT_EQ(::_chdir("\\"), 0);
    };
    TRV_EXPECT_IN_CHILD(list);
}

TEST_F(PathsOfWindows, AreMadeBelowADrive) {
    EXPECT_EQ(make_path((directory_.text() + "/a//b\\c").c_str()), 0);
    EXPECT_TRUE(std::filesystem::is_directory(directory_ / "a" / "b" / "c"));
    EXPECT_EQ(make_path(path("A\\B").c_str()), 0);
    EXPECT_EQ(make_path("C:\\"), 0);
    EXPECT_EQ(make_path("1:\\a"), -1);
}

TEST_F(PathsOfWindows, AreFoundWithADrive) {
    writeBytes(directory_ / "f.cfg", "x");
    EXPECT_EQ(resolved(directory_.text() + "/./f.cfg"), path("f.cfg"));
    EXPECT_EQ(resolved(path("none.cfg")), "-21");
    char field[300] = {};
    const std::string list = "C:\\windows;" + path("");
    std::memset(field, ' ', sizeof field);
    std::memcpy(field, "F.CFG", 5);
    std::int32_t code = -1;
    search_list(list.c_str(), field, &code, static_cast<std::int32_t>(list.size()), sizeof field);
    EXPECT_EQ(code, EXP_OK);
    EXPECT_THAT(std::string(field, sizeof field), ::testing::StartsWith(path("F.CFG") + "  "));
}

TEST_F(PathsOfWindows, LoseTheSecondSeparatorOfAServer) {
    char collapsed[32];
    collapse_separators("\\\\server\\share//f", collapsed, sizeof collapsed);
    EXPECT_STREQ(collapsed, "\\server\\share\\f");
    EXPECT_EQ(normalize_separators("//server/share/./f"), "\\server\\share\\f");
    EXPECT_EQ(fileExists("\\\\trvfiles-no-server\\share\\*"), 0);
    EXPECT_EQ(is_directory("\\\\trvfiles-no-server\\share"), false);
}

TEST_F(PathsOfWindows, NameOneDirectoryInSeveralWays) {
    const std::string identity = directory_identity(directory_.text().c_str());
    EXPECT_TRUE(::testing::Matches(::testing::MatchesRegex("\\w+-\\w+-\\w+"))(identity));
    EXPECT_EQ(identity.size(), 26U);
    EXPECT_EQ(directory_identity(directory_.path().string().c_str()), identity);
    EXPECT_NE(directory_identity("C:\\"), identity);
    writeBytes(directory_ / "f", "x");
    EXPECT_STREQ(directory_identity(path("f").c_str()), "");
    EXPECT_EQ(directory_identity(path("none").c_str()), nullptr);
}

TEST_F(PathsOfWindows, EndAtTheCurrentDirectorysName) {
    const auto name = [this] {
        std::filesystem::create_directory(directory_ / "sub");
        ASSERT_EQ(::_chdir(path("sub").c_str()), 0);
        char buffer[512];
        EXPECT_STREQ(current_directory_name(buffer, sizeof buffer), "sub");
        EXPECT_EQ(buffer, path("sub"));
        ASSERT_EQ(::_chdir("C:\\"), 0);
        EXPECT_STREQ(current_directory_name(buffer, sizeof buffer), "");
        EXPECT_STREQ(buffer, "C:\\");
    };
    TRV_EXPECT_IN_CHILD(name);
}

}  // namespace
}  // namespace trv
