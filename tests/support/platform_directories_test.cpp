#include <tests/common/current_directory.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/support/platform.h>
#include <trvfiles/support/platform_directories.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>
#include <system_error>

namespace trv::platform {
namespace {

namespace fs = std::filesystem;
using testing::CurrentDirectory;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;
using testing::writeBytes;

class PlatformDirectories : public ::testing::Test {
protected:
    /// By name in UTF-8, whether it is a link.
    static std::map<std::string, bool> found(const fs::path& directory) {
        std::map<std::string, bool> names;
        for (const subdirectory& entry : subdirectories(directory))
            names.emplace(fs::path(entry.name).u8string(), entry.is_link);
        return names;
    }

    /// Whether the link could be made: not every user may do so on every system.
    bool link(const std::string& name, const fs::path& target) {
        std::error_code error;
        fs::create_directory_symlink(target, directory_ / name, error);
        return !error;
    }

    testing::TemporaryDirectory directory_;
};

TEST_F(PlatformDirectories, KnowDirectoriesFromFiles) {
    writeBytes(directory_ / "f", "x");
    EXPECT_EQ(kind_of(directory_ / "f"), file_kind::other);
    EXPECT_EQ(kind_of(directory_.path()), file_kind::directory);
    EXPECT_EQ(kind_of(directory_ / "missing"), file_kind::none);
    EXPECT_EQ(kind_of(directory_ / "f" / "x"), file_kind::none);
    EXPECT_EQ(kind_of({}), file_kind::none);
}

TEST_F(PlatformDirectories, HoldOtherOnes) {
    writeBytes(directory_ / "f", "x");
    fs::create_directories(directory_ / "d/below");
    fs::create_directory(directory_.path() / fs::u8path("\xC3\xA4"));
    EXPECT_THAT(found(directory_.path()), ElementsAre(Pair("d", false), Pair("\xC3\xA4", false)));
    EXPECT_THAT(found(directory_ / "d/below"), IsEmpty());
    const CurrentDirectory here(directory_.path());
    EXPECT_THAT(found("d"), ElementsAre(Pair("below", false)));
    EXPECT_THAT(found("./d/"), ElementsAre(Pair("below", false)));
}

TEST_F(PlatformDirectories, HoldNothingIfTheyCannotBeRead) {
    writeBytes(directory_ / "f", "x");
    EXPECT_THAT(found(directory_ / "f"), IsEmpty());
    EXPECT_THAT(found(directory_ / "missing"), IsEmpty());
}

TEST_F(PlatformDirectories, AreHiddenByADotOnPosix) {
    fs::create_directory(directory_ / ".d");
    fs::create_directory(directory_ / "..e");
    if (backslash_separates()) {
        EXPECT_THAT(found(directory_.path()), ElementsAre(Pair("..e", false), Pair(".d", false)));
    } else {
        EXPECT_THAT(found(directory_.path()), IsEmpty());
    }
}

TEST_F(PlatformDirectories, HaveNamesOfAnyBytesOnPosix) {
    if (backslash_separates()) GTEST_SKIP() << "names are UTF-16";
    fs::create_directory(directory_.path() / "\xE4\\");
    EXPECT_THAT(found(directory_.path()), ElementsAre(Pair("\xE4\\", false)));
}

TEST_F(PlatformDirectories, CountTheLinksToDirectories) {
    fs::create_directory(directory_ / "d");
    writeBytes(directory_ / "f", "x");
    if (!link("l", directory_ / "d")) GTEST_SKIP() << "links cannot be made here";
    fs::create_symlink(directory_ / "f", directory_ / "to-f");
    link("nowhere", directory_ / "missing");
    link("itself", "itself");
    EXPECT_THAT(found(directory_.path()), ElementsAre(Pair("d", false), Pair("l", true)));
    EXPECT_EQ(kind_of(directory_ / "l"), file_kind::directory);
    EXPECT_EQ(kind_of(directory_ / "to-f"), file_kind::other);
    EXPECT_EQ(kind_of(directory_ / "nowhere"), file_kind::none);
    EXPECT_EQ(kind_of(directory_ / "itself"), file_kind::none);
}

TEST_F(PlatformDirectories, HaveOneCanonicalPath) {
    fs::create_directories(directory_ / "d/e");
    const fs::path canonical = canonical_path(directory_ / "d/e");
    if (backslash_separates()) {
        // The form without a limit of length, which the standard library cannot read.
        EXPECT_EQ(canonical.string().substr(0, 4), R"(\\?\)");
    } else {
        EXPECT_TRUE(canonical.is_absolute());
        EXPECT_TRUE(fs::equivalent(canonical, directory_ / "d/e"));
    }
    EXPECT_EQ(canonical_path(directory_ / "d/../d/./e"), canonical);
    EXPECT_EQ(canonical_path(directory_ / "d") / "e", canonical);
    const CurrentDirectory here(directory_ / "d");
    EXPECT_EQ(canonical_path("e"), canonical);
    if (!link("l", directory_ / "d")) return;
    EXPECT_EQ(canonical_path(directory_ / "l/e"), canonical);
}

TEST_F(PlatformDirectories, HaveNoCanonicalPathIfTheyAreMissing) {
    EXPECT_EQ(canonical_path(directory_ / "missing"), fs::path());
    EXPECT_EQ(canonical_path({}), fs::path());
    if (!link("nowhere", directory_ / "missing")) return;
    EXPECT_EQ(canonical_path(directory_ / "nowhere"), fs::path());
}

}  // namespace
}  // namespace trv::platform
