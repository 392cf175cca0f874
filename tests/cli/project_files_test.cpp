#include <cli/project_files.h>
#include <tests/common/child_process.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <system_error>

namespace trv::cli {
namespace {

class ProjectFiles : public ::testing::Test {
protected:
    void make(const char* name) const {
        std::filesystem::create_directories((directory_ / name).parent_path());
        testing::writeBytes(directory_ / name, "x");
    }

    QString path(const char* name) const {
        return QString::fromStdString((directory_ / name).generic_string());
    }

    // The names that an argument means, without the directory, one after the other.
    std::string found(const char* argument, bool isRecursive) const {
        const std::string base = directory_.path().generic_string();
        std::string names;
        for (const FoundFile& file : findFiles({path(argument)}, isRecursive)) {
            std::string name = file.name.toStdString();
            if (name.compare(0, base.size(), base) == 0) name.erase(0, base.size());
            names += name + (file.isFromDirectory ? " " : "! ");
        }
        return names;
    }

    testing::TemporaryDirectory directory_;
};

TEST_F(ProjectFiles, AreTheArgumentsThatAreNoDirectories) {
    make("a");
    EXPECT_EQ(found("a", true), "/a! ");
    EXPECT_EQ(found("missing", false), "/missing! ");
    EXPECT_TRUE(isDirectory(path("")));
    EXPECT_FALSE(isDirectory(path("a")));
    EXPECT_FALSE(isDirectory(QString()));
}

TEST_F(ProjectFiles, AreThoseInADirectoryInTheOrderOfTheirNames) {
    for (const char* name : {"p/b", "p/a", "p/q/c", "p/.hidden", "p/.git/config", "p/Z"})
        make(name);
    EXPECT_EQ(found("p", false), "/p/Z /p/a /p/b ");
    EXPECT_EQ(found("p/", false), "/p/Z /p/a /p/b ");
    EXPECT_EQ(found("p", true), "/p/Z /p/a /p/b /p/q/c ");
    EXPECT_EQ(found("p/q", true), "/p/q/c ");
}

TEST_F(ProjectFiles, KeepTheOrderOfTheArguments) {
    make("p/a");
    make("b");
    const std::vector<FoundFile> files = findFiles({path("p"), path("b"), path("p/a")}, false);
    ASSERT_EQ(files.size(), 3U);
    EXPECT_EQ(files[0].name, path("p/a"));
    EXPECT_EQ(files[1].name, path("b"));
    EXPECT_EQ(files[2].name, path("p/a"));
    EXPECT_TRUE(files[0].isFromDirectory);
    EXPECT_FALSE(files[2].isFromDirectory);
}

TEST_F(ProjectFiles, AreNotSearchedThroughLinksToDirectories) {
    make("p/q/a");
    std::error_code error;
    std::filesystem::create_directory_symlink("..", directory_ / "p/q/up", error);
    if (error) GTEST_SKIP() << "links cannot be made here";
    std::filesystem::create_symlink("a", directory_ / "p/q/b");
    std::filesystem::create_symlink("nowhere", directory_ / "p/q/c");
    EXPECT_EQ(found("p", true), "/p/q/a /p/q/b ");
    // A link that is named is followed.
    EXPECT_EQ(found("p/q/up", true), "/p/q/up/q/a /p/q/up/q/b ");
}

TEST_F(ProjectFiles, SayWhichDirectoryCannotBeListed) {
    if (!testing::can_fork) GTEST_SKIP() << "rights are given up in a child process";
    make("p/a");
    make("p/secret/b");
    std::filesystem::permissions(directory_.path(), std::filesystem::perms(0755));
    std::filesystem::permissions(directory_ / "p/secret", std::filesystem::perms::none);
    EXPECT_TRUE(testing::passesInChild([&] {
        ASSERT_TRUE(testing::becomeOrdinaryUser());
        const std::vector<FoundFile> files = findFiles({path("p")}, true);
        ASSERT_EQ(files.size(), 2U);
        EXPECT_EQ(files[1].name, path("p/secret"));
        EXPECT_EQ(files[1].listingError.toStdString(), "Permission denied");
    }));
}

}  // namespace
}  // namespace trv::cli
