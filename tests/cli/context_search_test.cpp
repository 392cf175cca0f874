#include <cli/context_search.h>
#include <tests/cli/env_sample.h>
#include <tests/cli/project_directory.h>
#include <trvfiles/support/platform.h>

#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

namespace trv::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ContextSearch : public ProjectDirectory {
protected:
    // Without the path of the directory, with "/".
    std::vector<std::string> below() const { return names(cli::contextsBelow(path(""))); }
    std::vector<std::string> inside() const { return names(cli::contextsIn(path(""))); }

private:
    std::vector<std::string> names(const QStringList& paths) const {
        std::vector<std::string> found;
        for (const QString& each : paths)
            found.push_back(replaced(each.toStdString().substr(text("").size()), "\\", "/"));
        return found;
    }
};

TEST_F(ContextSearch, FindsFilesOfAllNames) {
    for (const char* name : {"b.mctx", "a.mctx", "B/B.mctx", "B/x.mctx", "B/sub/y.mctx", "a/z.mctx",
                             "a/z.mctx.bak", ".hidden/h.mctx", ".h.mctx", "c.txt"})
        file(name, "");
    std::filesystem::create_directories(directory_ / "d.mctx");
    EXPECT_THAT(inside(), ElementsAre(".h.mctx", "a.mctx", "b.mctx"));
    std::vector<std::string> expected = {".h.mctx",  "a.mctx",   "b.mctx",      "a/z.mctx",
                                         "B/B.mctx", "B/x.mctx", "B/sub/y.mctx"};
    // A name hides no directory on Windows.
    if (platform::backslash_separates()) expected.insert(expected.begin() + 3, ".hidden/h.mctx");
    EXPECT_EQ(below(), expected);
}

TEST_F(ContextSearch, SearchesALinkedDirectoryOnce) {
    file("a/a.mctx", "");
    std::error_code error;
    std::filesystem::create_directory_symlink("..", directory_ / "a/up", error);
    if (error) GTEST_SKIP() << "links cannot be made here";
    std::filesystem::create_directory_symlink("a", directory_ / "b", error);
    EXPECT_THAT(below(), ElementsAre("a/a.mctx"));
}

TEST_F(ContextSearch, LeavesOutWhatNoPathNames) {
    if (platform::backslash_separates()) GTEST_SKIP() << "there are no such names here";
    file("a\\b.mctx", "");
    file("\xff.mctx", "");
    file("c\\d/e.mctx", "");
    EXPECT_THAT(inside(), IsEmpty());
    EXPECT_THAT(below(), IsEmpty());
}

TEST_F(ContextSearch, FindsNothingInAMissingDirectory) {
    EXPECT_TRUE(cli::contextsBelow(path("none")).isEmpty());
}

}  // namespace
}  // namespace trv::testing
