#include <tests/common/child_process.h>
#include <tests/common/current_directory.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/support/file_system.h>
#include <trvfiles/support/platform.h>

#include <sys/stat.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>

namespace trv {
namespace {

using testing::CurrentDirectory;
using testing::TemporaryDirectory;

class FileSystem : public ::testing::Test {
protected:
    // A path in the test's directory, with unchanged separators.
    std::string path(const std::string& name) const { return directory_.text() + name; }

    void makeFile(const std::string& name) const { testing::writeBytes(directory_ / name, "x"); }
    void makeDirectories(const std::string& name) const {
        std::filesystem::create_directories(directory_ / name);
    }
    bool isDirectory(const std::string& name) const {
        return std::filesystem::is_directory(directory_ / name);
    }

    // A path of this many characters below the test's directory.
    std::string longPath(std::size_t length) const {
        std::string made = directory_.text();
        while (made.size() + 202 < length)
            made += "/" + std::string(100, 'd');
        return made + "/" + std::string(length - made.size() - 1, 'e');
    }

    TemporaryDirectory directory_;
};

TEST_F(FileSystem, NativePathIsTheFormOfTheSystem) {
    const bool isWindows = platform::backslash_separates();
    EXPECT_EQ(native_path("\\a/b\\\\c"), isWindows ? "\\a/b\\\\c" : "/a/b//c");
    EXPECT_EQ(native_path(""), "");
    EXPECT_EQ(native_path(nullptr), "");
}

TEST_F(FileSystem, AFileAndADirectoryExist) {
    makeFile("f");
    EXPECT_EQ(fileExists(path("/f").c_str()), 1);
    EXPECT_EQ(fileExists(path("\\f").c_str()), 1);
    EXPECT_EQ(fileExists(directory_.text().c_str()), 1);
    EXPECT_EQ(fileExists(path("/g").c_str()), 0);
    EXPECT_EQ(fileExists(path("/g/f").c_str()), 0);
}

TEST_F(FileSystem, NoPathDoesNotExist) {
    EXPECT_EQ(fileExists(""), 0);
    EXPECT_EQ(fileExists(nullptr), 0);
    EXPECT_FALSE(is_directory(""));
    EXPECT_FALSE(is_directory(nullptr));
    EXPECT_FALSE(is_directory_collapsed(""));
    EXPECT_FALSE(is_directory_collapsed(nullptr));
}

TEST_F(FileSystem, APathWithWildcardsExistsWhenAnEntryMatches) {
    makeFile("part.mctx");
    EXPECT_EQ(fileExists(path("/*.mctx").c_str()), 1);
    EXPECT_EQ(fileExists(path("\\PA?T.*").c_str()), 1);
    EXPECT_EQ(fileExists(path("/*.ref").c_str()), 0);
    EXPECT_EQ(fileExists(path("/?").c_str()), 0);
    EXPECT_EQ(fileExists(path("/none/*").c_str()), 0);
}

TEST_F(FileSystem, AFileIsNotADirectory) {
    makeFile("f");
    makeDirectories("d");
    EXPECT_TRUE(is_directory(path("/d").c_str()));
    EXPECT_TRUE(is_directory(path("\\d\\").c_str()));
    EXPECT_FALSE(is_directory(path("/f").c_str()));
    EXPECT_FALSE(is_directory(path("/g").c_str()));
}

TEST_F(FileSystem, TheCollapsingFormsTakeRunsOfSeparators) {
    makeDirectories("d");
    EXPECT_TRUE(is_directory_collapsed(path("/\\//d\\\\").c_str()));
    EXPECT_FALSE(is_directory_collapsed(path("//e").c_str()));
    EXPECT_EQ(make_directory_collapsed(path("//d\\\\/e").c_str()), 0);
    EXPECT_TRUE(isDirectory("d/e"));
    EXPECT_EQ(make_directory_collapsed(path("//d\\\\/e").c_str()), -1);
    EXPECT_EQ(make_directory_collapsed(nullptr), -1);
}

TEST_F(FileSystem, TheCollapsingFormsTake511Characters) {
    if (platform::backslash_separates()) GTEST_SKIP() << "Windows ends a path at 260 characters";
    const std::string longest = longPath(511);
    std::filesystem::create_directories(std::filesystem::path(longest).parent_path());
    EXPECT_EQ(make_directory_collapsed(longest.c_str()), 0);
    EXPECT_TRUE(is_directory_collapsed(longest.c_str()));
    EXPECT_TRUE(is_directory_collapsed((std::string(100, '/') + longest).c_str()));
    const std::string tooLong = longPath(512);
    std::filesystem::create_directories(tooLong);
    EXPECT_TRUE(is_directory(tooLong.c_str()));
    EXPECT_FALSE(is_directory_collapsed(tooLong.c_str()));
    std::filesystem::remove(tooLong);
    EXPECT_EQ(make_directory_collapsed(tooLong.c_str()), -1);
    EXPECT_FALSE(std::filesystem::exists(tooLong));
}

TEST_F(FileSystem, MakesOneDirectory) {
    EXPECT_EQ(make_directory(path("\\d").c_str()), 0);
    EXPECT_TRUE(isDirectory("d"));
    EXPECT_EQ(make_directory(path("/d").c_str()), -1);
    EXPECT_EQ(make_directory(path("/none/d").c_str()), -1);
    EXPECT_EQ(make_directory(""), -1);
    EXPECT_EQ(make_directory(nullptr), -1);
}

TEST_F(FileSystem, TheRootOfTheFileSystemExistsAlready) {
    if (platform::backslash_separates()) GTEST_SKIP() << "A Windows root answers access denied";
    EXPECT_EQ(make_directory("\\"), -1);
}

TEST_F(FileSystem, ADeniedDirectoryCountsAsMade) {
    using std::filesystem::perms;
    makeDirectories("locked");
    std::filesystem::permissions(directory_ / "locked", perms::owner_read | perms::owner_exec);
    const bool isLocked = !std::ofstream(directory_ / "locked/probe").is_open();
    const int result = isLocked ? make_directory(path("/locked/d").c_str()) : 0;
    std::filesystem::permissions(directory_ / "locked", perms::owner_all);
    if (!isLocked) GTEST_SKIP() << "This user may write everywhere";
    EXPECT_EQ(result, 0);
    EXPECT_FALSE(isDirectory("locked/d"));
}

TEST_F(FileSystem, MakesACompletePath) {
    EXPECT_EQ(make_path(path("\\a/b\\c").c_str()), 0);
    EXPECT_TRUE(isDirectory("a/b/c"));
    EXPECT_EQ(make_path(path("/a/b/d//e\\\\").c_str()), 0);
    EXPECT_TRUE(isDirectory("a/b/d/e"));
}

TEST_F(FileSystem, AnExistingPathIsNotChanged) {
    makeDirectories("a/b");
    EXPECT_EQ(make_path(path("/a/b").c_str()), 0);
    EXPECT_EQ(make_path(path("\\a\\b\\").c_str()), 0);
    EXPECT_EQ(std::distance(std::filesystem::recursive_directory_iterator(directory_.path()),
                            std::filesystem::recursive_directory_iterator()),
              2);
}

TEST_F(FileSystem, ARelativePathHasToBeginWithADirectoryThatExists) {
    const CurrentDirectory here(directory_.path());
    EXPECT_EQ(make_path("a\\b"), -1);
    EXPECT_FALSE(isDirectory("a"));
    EXPECT_EQ(make_path(".\\a\\b"), 0);
    EXPECT_TRUE(isDirectory("a/b"));
    EXPECT_EQ(make_path("a\\c\\d"), 0);
    EXPECT_TRUE(isDirectory("a/c/d"));
    EXPECT_EQ(make_path("e"), 0);
    EXPECT_TRUE(isDirectory("e"));
}

TEST_F(FileSystem, AFileInTheWayEndsAPath) {
    makeFile("f");
    EXPECT_EQ(make_path(path("/f").c_str()), -1);
    EXPECT_EQ(make_path(path("/f/d").c_str()), -1);
    EXPECT_EQ(make_path(path("/f/d/e").c_str()), -1);
    EXPECT_EQ(testing::bytesOf(directory_ / "f"), "x");
}

TEST_F(FileSystem, NoPathCannotBeMade) {
    EXPECT_EQ(make_path(""), -1);
    EXPECT_EQ(make_path(nullptr), -1);
}

TEST_F(FileSystem, APathIsMadeUpTo511Characters) {
    if (platform::backslash_separates()) GTEST_SKIP() << "Windows ends a path at 260 characters";
    const std::string longest = longPath(511);
    const std::string tooLong = longPath(512);
    EXPECT_EQ(make_path(tooLong.c_str()), -1);
    EXPECT_TRUE(std::filesystem::is_empty(directory_.path()));
    EXPECT_EQ(make_path((std::string(100, '/') + longest).c_str()), 0);
    EXPECT_TRUE(std::filesystem::is_directory(longest));
}

std::string collapsed(const char* source, std::size_t size) {
    std::string room(size + 1, '~');
    collapse_separators(source, room.data(), size);
    EXPECT_EQ(room.back(), '~');
    return size == 0 ? room : room.c_str();
}

TEST_F(FileSystem, CollapsingTurnsEachRunOfSeparatorsIntoOneBackslash) {
    EXPECT_EQ(collapsed("//a/\\b\\\\/c/", 64), "\\a\\b\\c\\");
    EXPECT_EQ(collapsed("C:\\a", 64), "C:\\a");
    EXPECT_EQ(collapsed("", 64), "");
    EXPECT_EQ(collapsed(nullptr, 64), "");
}

TEST_F(FileSystem, CollapsingIsBoundedByTheSize) {
    EXPECT_EQ(collapsed("a//bcd", 6), "a\\bcd");
    EXPECT_EQ(collapsed("a//bcd", 5), "a\\bc");
    EXPECT_EQ(collapsed("a//bcd", 2), "a");
    EXPECT_EQ(collapsed("a//bcd", 1), "");
    EXPECT_EQ(collapsed("a//bcd", 0), "~");
    collapse_separators("a", nullptr, 5);
}

TEST_F(FileSystem, CollapsingMayBeDoneInPlace) {
    char text[] = "//a///b/c";
    collapse_separators(text, text, sizeof text);
    EXPECT_STREQ(text, "\\a\\b\\c");
}

TEST_F(FileSystem, TheNameOfTheCurrentDirectoryIsItsLastPart) {
    makeDirectories("part");
    const CurrentDirectory here(directory_ / "part");
    char buffer[1024];
    const char* const name = current_directory_name(buffer, sizeof buffer);
    EXPECT_STREQ(name, "part");
    EXPECT_EQ(std::string(buffer).find('/'), std::string::npos);
    EXPECT_EQ(name, buffer + std::string(buffer).size() - 4);
    char standard[128];
    EXPECT_STREQ(current_directory_name(standard), "part");
    EXPECT_STREQ(standard, buffer);
}

TEST_F(FileSystem, TheRootHasAnEmptyName) {
    const CurrentDirectory here(std::filesystem::current_path().root_path());
    char buffer[128];
    EXPECT_STREQ(current_directory_name(buffer, sizeof buffer), "");
}

TEST_F(FileSystem, ACurrentDirectoryThatDoesNotFitHasNoName) {
    const CurrentDirectory here(directory_.path());
    const auto length = static_cast<int>(std::filesystem::current_path().string().size());
    std::string buffer(static_cast<std::size_t>(length) + 2, '~');
    EXPECT_NE(current_directory_name(buffer.data(), length + 1), nullptr);
    EXPECT_EQ(buffer.back(), '~');
    EXPECT_EQ(current_directory_name(buffer.data(), length), nullptr);
    EXPECT_STREQ(buffer.c_str(), "");
    EXPECT_EQ(current_directory_name(buffer.data(), 0), nullptr);
    EXPECT_EQ(current_directory_name(nullptr, 128), nullptr);
    EXPECT_EQ(current_directory_name(nullptr), nullptr);
}

TEST_F(FileSystem, The128ByteFormRefusesALongerDirectory) {
    const std::string part(100, 'd');
    makeDirectories(part + "/" + part);
    const CurrentDirectory here(directory_ / (part + "/" + part));
    char buffer[128];
    EXPECT_EQ(current_directory_name(buffer), nullptr);
    EXPECT_STREQ(buffer, "");
}

TEST_F(FileSystem, ACurrentDirectoryThatIsGoneHasNoName) {
    if (!testing::can_fork) GTEST_SKIP() << "a directory in use cannot be removed here";
    makeDirectories("gone");
    EXPECT_TRUE(testing::passesInChild([&] {
        std::filesystem::current_path(directory_ / "gone");
        std::filesystem::remove(directory_ / "gone");
        char buffer[128] = "~";
        EXPECT_EQ(current_directory_name(buffer), nullptr);
        EXPECT_STREQ(buffer, "");
    }));
}

TEST_F(FileSystem, TheSameDirectoryHasOneIdentity) {
    makeDirectories("d/e");
    makeDirectories("f");
    const std::string identity = directory_identity(path("/d").c_str());
    EXPECT_EQ(directory_identity(path("\\d\\e\\..\\").c_str()), identity);
    EXPECT_NE(directory_identity(path("/f").c_str()), identity);
}

TEST_F(FileSystem, AnIdentityIsThreeGroupsOfEightDigits) {
    const std::string identity = directory_identity(directory_.text().c_str());
    ASSERT_EQ(identity.size(), 26U);
    for (std::size_t i = 0; i < identity.size(); ++i) {
        const bool isJoint = i == 8 || i == 17;
        const std::string allowed = isJoint ? "-" : "0123456789ABCDEF";
        EXPECT_NE(allowed.find(identity[i]), std::string::npos) << identity;
    }
}

TEST_F(FileSystem, AnIdentityHoldsTheDeviceAndBothHalvesOfTheInode) {
    if (platform::backslash_separates()) GTEST_SKIP() << "Windows has no inodes";
    struct stat status = {};
    ASSERT_EQ(::stat(directory_.text().c_str(), &status), 0);
    const auto inode = static_cast<unsigned long long>(status.st_ino);
    char expected[27];
    std::snprintf(expected, sizeof expected, "%08llX-%08llX-%08llX",
                  static_cast<unsigned long long>(status.st_dev) & 0xFFFFFFFFU, inode >> 32U,
                  inode & 0xFFFFFFFFU);
    EXPECT_STREQ(directory_identity(directory_.text().c_str()), expected);
}

TEST_F(FileSystem, AFileHasAnEmptyIdentityAndAMissingNameNone) {
    makeFile("f");
    EXPECT_STREQ(directory_identity(path("/f").c_str()), "");
    EXPECT_EQ(directory_identity(path("/g").c_str()), nullptr);
    EXPECT_EQ(directory_identity(""), nullptr);
    EXPECT_EQ(directory_identity(nullptr), nullptr);
}

}  // namespace
}  // namespace trv
