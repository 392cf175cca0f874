#include <tests/catalogue/link_graphs.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/catalogue/context_graph.h>

#include <QDir>
#include <QString>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace fs = std::filesystem;
using namespace trv::testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;
using trv::ContextDirectory;
using trv::ContextEntry;

namespace {

class ContextGraph : public ::testing::Test {
protected:
    std::vector<ContextDirectory> listed() const {
        return trv::listContextDirectories(QDir(QString::fromStdString(start())));
    }

    /// The paths under which directories are listed, without that of the start.
    std::vector<std::string> paths() const {
        std::vector<std::string> paths;
        for (const ContextDirectory& directory : listed())
            paths.push_back(directory.path.toStdString().substr(start().size()));
        return paths;
    }

    std::string start() const { return directory_.path().generic_string(); }
    void makeDirectory(const std::string& name) { fs::create_directories(directory_ / name); }

    TemporaryDirectory directory_;
};

}  // namespace

TEST_F(ContextGraph, BeginsAtTheStart) {
    EXPECT_THAT(paths(), ElementsAre(""));
    EXPECT_THAT(listed()[0].entries, IsEmpty());
}

TEST_F(ContextGraph, HoldsNoMissingDirectory) {
    const std::vector<ContextDirectory> directories =
        trv::listContextDirectories(QDir(QString::fromStdString(start() + "/missing")));
    ASSERT_EQ(directories.size(), 1U);
    EXPECT_THAT(directories[0].entries, IsEmpty());
}

TEST_F(ContextGraph, ListsEntriesInOrderWithTheirTargets) {
    makeDirectory("b");
    makeDirectory("A/a");
    makeDirectory("C");
    writeBytes(directory_ / "C/C.mctx", "x");
    const std::vector<ContextDirectory> directories = listed();
    ASSERT_EQ(directories.size(), 4U);
    const std::vector<ContextEntry>& entries = directories[0].entries;
    ASSERT_EQ(entries.size(), 3U);
    EXPECT_EQ(entries[0].name, QStringLiteral("A"));
    EXPECT_EQ(entries[1].name, QStringLiteral("b"));
    EXPECT_EQ(entries[2].name, QStringLiteral("C"));
    const auto pathOf = [&](const ContextEntry& entry) {
        return directories.at(static_cast<std::size_t>(entry.target)).path.toStdString();
    };
    EXPECT_EQ(pathOf(entries[0]), start() + "/A");
    EXPECT_EQ(pathOf(entries[1]), start() + "/b");
    EXPECT_EQ(entries[2].target, ContextEntry::context);
}

TEST_F(ContextGraph, HoldsNothingBelowAContext) {
    makeDirectory("A/B");
    writeBytes(directory_ / "A/A.mctx", "x");
    EXPECT_THAT(paths(), ElementsAre(""));
}

TEST_F(ContextGraph, HoldsEachDirectoryOnce) {
    if (!linksCanBeMade()) GTEST_SKIP() << "links cannot be made here";
    linkEachToAll(directory_.path(), 5);
    fs::create_directory_symlink(directory_.path(), directory_ / "d0/top");
    fs::create_directory_symlink(".", directory_ / "d0/itself");
    EXPECT_THAT(paths(), UnorderedElementsAre("", "/d0", "/d1", "/d2", "/d3", "/d4"));
}

// The links are first in the order of names, and their paths are longer than those of their
// targets.
TEST_F(ContextGraph, ListsADirectoryUnderThePathWithMinLinks) {
    if (!linksCanBeMade()) GTEST_SKIP() << "links cannot be made here";
    makeDirectory("z/z/z");
    fs::create_directory_symlink(directory_ / "z/z", directory_ / "a");
    fs::create_directory_symlink(directory_ / "z/z/z", directory_ / "z/a");
    const TemporaryDirectory elsewhere;
    fs::create_directories(elsewhere / "x/y");
    fs::create_directory_symlink(elsewhere.path(), directory_ / "b");
    fs::create_directory_symlink(elsewhere / "x", elsewhere / "a");
    EXPECT_THAT(paths(), UnorderedElementsAre("", "/z", "/z/z", "/z/z/z", "/b", "/b/x", "/b/x/y"));
}

TEST_F(ContextGraph, KnowsADirectoryByEachOfItsNames) {
    if (!linksCanBeMade()) GTEST_SKIP() << "links cannot be made here";
    makeDirectory("a");
    writeBytes(directory_ / "a/k.mctx", "x");
    fs::create_directory_symlink(directory_ / "a", directory_ / "k");
    fs::create_directory_symlink(directory_ / "a", directory_ / "l");
    const std::vector<ContextEntry> entries = listed().at(0).entries;
    ASSERT_EQ(entries.size(), 3U);
    EXPECT_EQ(entries[0].target, 1);
    EXPECT_EQ(entries[1].target, ContextEntry::context);
    EXPECT_EQ(entries[2].target, 1);
}

TEST(ContextGraphPaths, AreJoinedWithOneSlash) {
    const QString name = QStringLiteral("A");
    EXPECT_EQ(trv::entryPath(QStringLiteral("/x"), name), QStringLiteral("/x/A"));
    EXPECT_EQ(trv::entryPath(QStringLiteral("/"), name), QStringLiteral("/A"));
    EXPECT_EQ(trv::entryPath(QStringLiteral("C:/"), name), QStringLiteral("C:/A"));
    EXPECT_EQ(trv::entryPath(QStringLiteral(".."), name), QStringLiteral("../A"));
    EXPECT_EQ(trv::contextPath(QStringLiteral("x"), name), QStringLiteral("x/A.mctx"));
}

TEST(ContextGraphPaths, LeaveOutTheDotOfTheCurrentDirectory) {
    EXPECT_EQ(trv::entryPath(QStringLiteral("."), QStringLiteral("A")), QStringLiteral("A"));
}
