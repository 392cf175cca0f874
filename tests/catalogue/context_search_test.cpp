#include <tests/catalogue/link_graphs.h>
#include <tests/common/growth.h>
#include <tests/common/scoped_variable.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/catalogue/CMachineContextUtils.h>
#include <trvfiles/catalogue/context_graph.h>
#include <trvfiles/catalogue/context_search.h>
#include <trvfiles/support/platform.h>

#include <QString>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace fs = std::filesystem;
using namespace trv::testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

/// The paths that the catalogue returns.
std::vector<std::string> listed(const fs::path& directory) {
    std::vector<std::string> paths;
    for (const std::wstring& path :
         CMachineContextUtils::sGetFavoriteMachineContext(directory.generic_wstring())) {
        paths.push_back(QString::fromStdWString(path).toStdString());
    }
    return paths;
}

/// The start, `count` directories in it with a context each, and one without a context that they
/// all link to.
std::vector<trv::ContextDirectory> directoriesThatLinkToOne(int count) {
    std::vector<trv::ContextDirectory> directories(static_cast<std::size_t>(count) + 2);
    const QString start = QStringLiteral("/s");
    directories[0].path = start;
    directories[1].path = QStringLiteral("/empty");
    for (int i = 0; i < count; ++i) {
        const QString name = QString::number(i);
        const int place = i + 2;
        directories[0].entries.push_back({name, place});
        trv::ContextDirectory& directory = directories[static_cast<std::size_t>(place)];
        directory.path = trv::entryPath(start, name);
        directory.entries = {{QStringLiteral("empty"), 1},
                             {QStringLiteral("k"), trv::ContextEntry::context}};
    }
    return directories;
}

class ContextSearch : public ::testing::Test {
protected:
    void SetUp() override {
        if (!linksCanBeMade()) GTEST_SKIP() << "links cannot be made here";
    }

    void add(const std::string& name) {
        fs::create_directories((directory_ / name).parent_path());
        writeBytes(directory_ / name, "x");
    }

    /// The contexts below the directory, with paths relative to it.
    std::vector<std::string> found() const {
        std::vector<std::string> names;
        const std::string start = directory_.path().generic_u8string() + "/";
        for (const std::string& path : listed(directory_.path()))
            names.push_back(path.substr(start.size()));
        return names;
    }

    TemporaryDirectory directory_;
};

}  // namespace

TEST_F(ContextSearch, FindsWhatThePlainWalkFinds) {
    // Tens of thousands of files are created, in memory if the system has a directory for that.
    const char* memory = fs::is_directory("/dev/shm") ? "/dev/shm" : std::getenv("TMPDIR");
    const ScopedVariable temporary("TMPDIR", memory);
    int contexts = 0;
    for (unsigned seed = 0; seed < 3000; ++seed) {
        const RandomLinkGraph graph(seed);
        const std::vector<std::string> expected = PlainWalk(graph.start()).found();
        contexts += static_cast<int>(expected.size());
        ASSERT_EQ(listed(graph.start()), expected) << "seed " << seed;
    }
    // Without results the comparison would be meaningless.
    EXPECT_GT(contexts, 3000);
}

// The plain walk would take more than 20! paths.
TEST_F(ContextSearch, EndsIfDirectoriesLinkToAllOthersWithoutAContext) {
    linkEachToAll(directory_.path(), 20);
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(ContextSearch, EndsIfDirectoriesLinkToAllOthersAndToOneWithoutAContext) {
    linkEachToAll(directory_.path(), 20);
    for (int i = 0; i < 20; ++i)
        fs::create_directory(directory_ / ("d" + std::to_string(i) + "/empty"));
    add("k/k.mctx");
    EXPECT_THAT(found(), ElementsAre("k/k.mctx"));
}

TEST_F(ContextSearch, EndsIfAContextIsBelowADirectoryThatIsBeingWalked) {
    linkEachToAll(directory_ / "all", 20);
    for (int i = 0; i < 20; ++i) {
        fs::create_directory_symlink(directory_.path(),
                                     directory_ / ("all/d" + std::to_string(i) + "/up"));
    }
    add("k/k.mctx");
    EXPECT_THAT(found(), ElementsAre("k/k.mctx"));
}

TEST_F(ContextSearch, EndsIfTheOnlyLinkLeadsToTheFirstDirectory) {
    linkEachToAll(directory_ / "all", 20);
    fs::create_directory(directory_ / "gate");
    for (int i = 0; i < 20; ++i) {
        fs::create_directory_symlink(directory_ / "gate",
                                     directory_ / ("all/d" + std::to_string(i) + "/gate"));
    }
    add("gate/k/k.mctx");
    fs::create_directory_symlink(directory_ / "all", directory_ / "gate/to-all");
    EXPECT_THAT(listed(directory_ / "gate"),
                ElementsAre((directory_ / "gate/k/k.mctx").generic_string()));
}

TEST_F(ContextSearch, FindsAContextBelowDirectoriesThatLinkToAllOthers) {
    linkEachToAll(directory_.path(), 3);
    add("d2/k/k.mctx");
    EXPECT_THAT(found(), ElementsAre("d0/l1/l2/k/k.mctx", "d0/l2/k/k.mctx", "d1/l0/l2/k/k.mctx",
                                     "d1/l2/k/k.mctx", "d2/k/k.mctx"));
}

TEST_F(ContextSearch, TreatsADirectoryAsALeafUnderTheNameOfItsContextOnly) {
    add("a/k.mctx");
    add("a/b/b.mctx");
    fs::create_directory_symlink(directory_ / "a", directory_ / "k");
    fs::create_directory_symlink(directory_ / "a", directory_ / "z");
    EXPECT_THAT(found(), ElementsAre("a/b/b.mctx", "k/k.mctx", "z/b/b.mctx"));
}

TEST_F(ContextSearch, FindsEachContextOnceIfItsDirectoriesLinkToTheirParents) {
    std::string path;
    for (const char* name : {"a", "b", "c", "d"}) {
        path += std::string(name) + "/";
        fs::create_directory(directory_ / path);
        fs::create_directory_symlink(directory_.path(), directory_ / (path + "up"));
        fs::create_directory_symlink(directory_ / path, directory_ / (path + "self"));
    }
    add("a/b/c/d/k/k.mctx");
    add("a/z/z.mctx");
    EXPECT_THAT(found(), ElementsAre("a/b/c/d/k/k.mctx", "a/z/z.mctx"));
}

// Linux opens no path with more than 40 links, Windows none with more than 63.
TEST_F(ContextSearch, LeavesOutPathsThatTheSystemDoesNotOpen) {
    for (int i = 0; i <= 70; ++i)
        fs::create_directory(directory_ / ("d" + std::to_string(1000 + i)));
    for (int i = 0; i < 70; ++i) {
        fs::create_directory_symlink(directory_ / ("d" + std::to_string(1001 + i)),
                                     directory_ / ("d" + std::to_string(1000 + i) + "/on"));
    }
    add("d1070/k/k.mctx");
    const std::vector<std::string> contexts = found();
    EXPECT_EQ(listed(directory_.path()), PlainWalk(directory_.path()).found());
    for (const std::string& context : contexts)
        EXPECT_TRUE(fs::exists(directory_ / context)) << context;
    EXPECT_EQ(contexts.back(), "d1070/k/k.mctx");
}

TEST(ContextSearchTime, GrowsWithTheNumberOfDirectories) {
    if (trv::platform::backslash_separates()) GTEST_SKIP() << "no processor time to compare";
    // 16 times the directories: linear work takes 16 times as long, quadratic work 256 times.
    const double maxGrowth = 90;
    EXPECT_LT(growth(500, 8000,
                     [](int count) {
                         const auto directories = directoriesThatLinkToOne(count);
                         std::size_t contexts = 0;
                         const double time = processorTime(
                             [&] { contexts = trv::findContexts(directories).size(); });
                         EXPECT_EQ(contexts, static_cast<std::size_t>(count));
                         return time;
                     }),
              maxGrowth);
}
