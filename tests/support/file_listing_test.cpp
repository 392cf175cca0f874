#include <tests/common/current_directory.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/support/dynamic_storage.h>
#include <trvfiles/support/file_system.h>
#include <trvfiles/support/platform.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace trv {
namespace {

using testing::CurrentDirectory;
using testing::TemporaryDirectory;

using Names = std::vector<std::string>;

std::string storage() {
    char text[64];
    storage_report(text, sizeof text);
    return text;
}

// Returns the entries, and checks that the listing is freed completely.
Names listed(const std::string& pattern) {
    const std::string before = storage();
    file_listing* const listing = list_matching(pattern.c_str());
    EXPECT_NE(listing, nullptr);
    Names names;
    while (const char* name = listing_next(listing))
        names.emplace_back(name);
    EXPECT_EQ(listing_next(listing), nullptr);
    EXPECT_EQ(listing_count(listing), static_cast<int>(names.size()));
    listing_free(listing);
    EXPECT_EQ(storage(), before);
    return names;
}

class FileListing : public ::testing::Test {
protected:
    void makeFiles(const Names& names) const {
        for (const std::string& name : names)
            testing::writeBytes(directory_ / name, "x");
    }
    std::string in(const std::string& name) const { return directory_.text() + name; }

    TemporaryDirectory directory_;
};

TEST_F(FileListing, PutsTheDirectoryAsTypedBeforeEachEntry) {
    makeFiles({"x.t", "y.t", "z.u"});
    EXPECT_EQ(listed(in("/*.t")), (Names{in("/x.t"), in("/y.t")}));
    EXPECT_EQ(listed(in("\\*.t")), (Names{in("\\x.t"), in("\\y.t")}));
    EXPECT_EQ(listed(in("/\\//z*")), (Names{in("/\\//z.u")}));
}

TEST_F(FileListing, WithoutADirectoryListsBareNamesOfTheCurrentOne) {
    makeFiles({"x.t", "y.t"});
    const CurrentDirectory here(directory_.path());
    EXPECT_EQ(listed("*.t"), (Names{"x.t", "y.t"}));
    EXPECT_EQ(listed(".\\x*"), (Names{".\\x.t"}));
}

TEST_F(FileListing, TreatsADriveAsADirectory) {
    if (platform::backslash_separates()) GTEST_SKIP() << "No file can be named like a drive";
    std::filesystem::create_directory(directory_ / "a:");
    makeFiles({"1:b", "{:b", "ab", "b"});
    std::filesystem::create_directory(directory_ / "1:");
    makeFiles({"a:/b1", "a:/c1"});
    const CurrentDirectory here(directory_.path());
    EXPECT_EQ(listed("a:b*"), (Names{"a:b1"}));
    EXPECT_EQ(listed("1:b*"), (Names{"1:b"}));
    EXPECT_EQ(listed("{:b*"), (Names{"{:b"}));
    EXPECT_EQ(listed("ab"), (Names{"ab"}));
    EXPECT_EQ(listed("b"), (Names{"b"}));
}

TEST_F(FileListing, ListsDirectoriesAndHiddenNamesButNeverDots) {
    makeFiles({".hidden", "file"});
    std::filesystem::create_directory(directory_ / "sub");
    EXPECT_EQ(listed(in("/*")), (Names{in("/.hidden"), in("/file"), in("/sub")}));
    EXPECT_EQ(listed(in("/.*")), (Names{in("/.hidden")}));
}

TEST_F(FileListing, StarDotStarNeedsADot) {
    makeFiles({"file", "a.b", ".c"});
    EXPECT_EQ(listed(in("/*.*")), (Names{in("/.c"), in("/a.b")}));
}

TEST_F(FileListing, MatchesInEitherCaseAndSortsByByte) {
    makeFiles({"b.T", "A.t", "_.T", "a1.t"});
    EXPECT_EQ(listed(in("/*.t")), (Names{in("/A.t"), in("/_.T"), in("/a1.t"), in("/b.T")}));
    EXPECT_EQ(listed(in("/a?.T")), (Names{in("/a1.t")}));
}

TEST_F(FileListing, SortsBytesFrom128OnLast) {
    if (platform::backslash_separates()) GTEST_SKIP() << "Names go through a code page";
    makeFiles({"\xC3\xA9", "z"});
    EXPECT_EQ(listed(in("/*")), (Names{in("/z"), in("/\xC3\xA9")}));
}

TEST_F(FileListing, HoldsMoreEntriesThanItGrowsByAtATime) {
    Names expected;
    for (int i = 100; i < 251; ++i) {
        makeFiles({std::to_string(i)});
        expected.push_back(in("/" + std::to_string(i)));
    }
    EXPECT_EQ(listed(in("/*")), expected);
}

TEST_F(FileListing, LiesInTemporaryBlocks) {
    makeFiles({"x"});
    ASSERT_EQ(storage(), "data base memory : 0/0");
    file_listing* const listing = list_matching(in("/*").c_str());
    EXPECT_EQ(storage().find("data base memory : 0/"), 0U);
    EXPECT_NE(storage(), "data base memory : 0/0");
    listing_free(listing);
}

TEST_F(FileListing, APatternWithoutWildcardsMatchesItsName) {
    makeFiles({"x.t"});
    EXPECT_EQ(listed(in("/X.T")), (Names{in("/x.t")}));
    EXPECT_EQ(listed(in("/y.t")), Names());
}

TEST_F(FileListing, IsEmptyIfNothingCanBeRead) {
    makeFiles({"file"});
    EXPECT_EQ(listed(in("/none/*")), Names());
    EXPECT_EQ(listed(in("/file/*")), Names());
    EXPECT_EQ(listed(in("/")), Names());
    EXPECT_EQ(listed(""), Names());
    file_listing* const listing = list_matching(nullptr);
    EXPECT_EQ(listing_count(listing), 0);
    listing_free(listing);
}

TEST_F(FileListing, AcceptsPatternsOf511Characters) {
    makeFiles({"x"});
    const std::string stars(511 - in("/").size(), '*');
    EXPECT_EQ(listed(in("/" + stars)), (Names{in("/x")}));
    EXPECT_EQ(listed(in("/" + stars + "*")), Names());
}

TEST_F(FileListing, ANullListingHasNothing) {
    EXPECT_EQ(listing_count(nullptr), 0);
    EXPECT_EQ(listing_next(nullptr), nullptr);
    listing_free(nullptr);
}

}  // namespace
}  // namespace trv
