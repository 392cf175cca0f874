#include <cli/env_directories.h>
#include <tests/common/scoped_variable.h>
#include <tests/environment/configured_store.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace trv::testing {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::IsEmpty;

// Each directory with its origin: "d <- a.cfg:1".
std::vector<std::string> directories(const char* list) {
    const cli::Subject subject = {true, list};
    std::vector<std::string> texts;
    for (const cli::ListedDirectory& directory :
         cli::directoriesOf(subject, cli::lookUp(subject))) {
        texts.push_back(directory.path + " <- " + cli::originText(directory.origin).toStdString());
    }
    return texts;
}

TEST(EnvDirectories, AreThoseOfTheDefinitionThatNamesThem) {
    ConfiguredStore store;
    store.path("CFG = a; b ", "a.cfg", 1);
    store.path("CFG = c/d;+", "b.cfg", 2);
    store.path("CFG = +,$X/e", "c.cfg", 3);
    store.variable("X = x", "d.cfg", 4);
    EXPECT_THAT(directories("CFG"),
                ElementsAre("c\\d <- b.cfg:2", "a <- a.cfg:1", "b <- a.cfg:1", "x\\e <- c.cfg:3"));
}

TEST(EnvDirectories, AreOnlyThoseOfTheLastValue) {
    ConfiguredStore store;
    store.path("CFG = a", "a.cfg", 1);
    store.path("CFG = b", "b.cfg", 2);
    store.path("CFG = +;+", "c.cfg", 3);
    EXPECT_THAT(directories("CFG"), ElementsAre("b <- b.cfg:2", "b <- b.cfg:2"));
}

TEST(EnvDirectories, FollowReferencesToOtherLists) {
    ConfiguredStore store;
    store.path("CFG = a;?ENV;?ENV/sub;z", "a.cfg", 1);
    store.path("ENV = b;?TXT", "b.cfg", 2);
    store.path("TXT = c", "c.cfg", 3);
    EXPECT_THAT(directories("CFG"),
                ElementsAre("a <- a.cfg:1", "b <- b.cfg:2", "c <- c.cfg:3", "b <- a.cfg:1",
                            "c\\sub <- a.cfg:1", "z <- a.cfg:1"));
}

TEST(EnvDirectories, BelongToTheDefinitionInWhichTheyBegin) {
    ConfiguredStore store;
    store.path("CFG = a", "a.cfg", 1);
    store.path("CFG = +/sub;b/+", "b.cfg", 2);
    EXPECT_THAT(directories("CFG"), ElementsAre("a\\sub <- a.cfg:1", "b\\a <- b.cfg:2"));
}

TEST(EnvDirectories, MayBeOfTheProcess) {
    ConfiguredStore store;
    store.path("CFG = a", "a.cfg", 1);
    const ScopedVariable list("CFGPATH", "b;?TXT");
    store.path("TXT = c", "c.cfg", 3);
    EXPECT_THAT(directories("CFG"),
                ElementsAre("b <- environment variable CFGPATH", "c <- c.cfg:3"));
}

// A bracket that encloses a separator belongs to no single element.
TEST(EnvDirectories, BelongToTheValueIfTheyCannotBeToldApart) {
    ConfiguredStore store;
    store.path("CFG = a", "a.cfg", 1);
    store.path("CFG = +;${x;y}/b;c", "b.cfg", 2);
    store.variable("x;y = d", "c.cfg", 3);
    EXPECT_THAT(directories("CFG"), ElementsAre("a <- b.cfg:2", "d\\b <- b.cfg:2", "c <- b.cfg:2"));
}

TEST(EnvDirectories, BelongToTheValueOfALongList) {
    ConfiguredStore store;
    store.path("CFG = a", "a.cfg", 1);
    for (int i = 0; i < 20; ++i)
        store.path("CFG = +;" + std::string(500, 'x'), "b.cfg", 2);
    EXPECT_EQ(directories("CFG").size(), 21U);
    EXPECT_THAT(directories("CFG"), Each(EndsWith(" <- b.cfg:2")));
}

// 16384 elements, from two references in each of 14 lists.
TEST(EnvDirectories, BelongToTheValueOfAListWithTooManyReferences) {
    ConfiguredStore store;
    store.path("A0 = x", "a.cfg", 1);
    for (int i = 1; i <= 14; ++i) {
        const std::string inner = "?A" + std::to_string(i - 1);
        store.path("A" + std::to_string(i) + " = " + inner + ";" + inner, "b.cfg", i);
    }
    const std::vector<std::string> found = directories("A14");
    EXPECT_EQ(found.size(), 16384U);
    EXPECT_THAT(found, Each(EndsWith(" <- b.cfg:14")));
    EXPECT_THAT(directories("A11"), Each(EndsWith(" <- a.cfg:1")));
}

TEST(EnvDirectories, AreNoneIfTheListCannotBeExpanded) {
    ConfiguredStore store;
    store.path("CFG = a;${X", "a.cfg", 1);
    store.path("TXT = ;, ;", "a.cfg", 2);
    EXPECT_THAT(directories("CFG"), IsEmpty());
    EXPECT_THAT(directories("TXT"), IsEmpty());
}

TEST(EnvDirectories, AreLookedForInTheFileSystem) {
    ConfiguredStore store;
    store.path("CFG = .;nowhere", "a.cfg", 1);
    const cli::Subject subject = {true, "CFG"};
    const std::vector<cli::ListedDirectory> found =
        cli::directoriesOf(subject, cli::lookUp(subject));
    ASSERT_EQ(found.size(), 2U);
    EXPECT_TRUE(found[0].exists);
    EXPECT_FALSE(found[1].exists);
}

}  // namespace
}  // namespace trv::testing
