#include <cli/env_history.h>
#include <tests/environment/configured_store.h>
#include <trvfiles/environment/message_store_data.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace trv::testing {
namespace {

using cli::Definition;
using cli::History;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class EnvHistory : public ::testing::Test {
protected:
    /// Of the variable that was set first.
    History history() const {
        History made;
        made.add(store_.get()->sections[0].text(0));
        return made;
    }

    std::vector<Definition> definitions() const {
        std::vector<Definition> list;
        history().forEach(
            true, [&](const Definition& definition) { list.push_back(definition); },
            [] { ADD_FAILURE() << "something is left out"; });
        return list;
    }

    // The entries, and "..." for what is left out.
    std::vector<std::string> shown(bool all) const {
        std::vector<std::string> list;
        history().forEach(
            all, [&](const Definition& definition) { list.push_back(definition.entry); },
            [&] { list.emplace_back("..."); });
        return list;
    }

    void define(int count) const {
        for (int i = 1; i <= count; ++i)
            store_.variable("A = " + std::to_string(i));
    }

    mutable ConfiguredStore store_;
};

TEST_F(EnvHistory, ListsDefinitionsFromTheOldest) {
    store_.variable("LIMIT = 1  ", "a.cfg", 1);
    store_.variable("LIMIT = 2 + +", "b.cfg", 22);
    store_.variable("LIMIT = 3++");
    const std::vector<Definition> list = definitions();
    ASSERT_EQ(list.size(), 3U);
    EXPECT_EQ(list[0].entry, "LIMIT = 1");
    EXPECT_EQ(list[0].origin.kind, cli::Origin::Kind::file);
    EXPECT_EQ(list[0].origin.file, "a.cfg");
    EXPECT_EQ(list[0].origin.line, 1);
    EXPECT_FALSE(list[0].extends);
    EXPECT_EQ(list[1].entry, "LIMIT = 2 + +");
    EXPECT_EQ(list[1].origin.file, "b.cfg");
    EXPECT_EQ(list[1].origin.line, 22);
    EXPECT_TRUE(list[1].extends);
    EXPECT_EQ(list[1].extended, "1  ");
    EXPECT_EQ(list[2].entry, "LIMIT = 3++");
    EXPECT_EQ(list[2].origin.kind, cli::Origin::Kind::program);
    EXPECT_FALSE(list[2].extends);
}

TEST_F(EnvHistory, ReportsTheValueSoFarThroughSeveralDefinitions) {
    for (const char* text : {"LIMIT = a", "LIMIT = + b", "LIMIT = (+)"})
        store_.variable(text);
    const std::vector<Definition> list = definitions();
    ASSERT_EQ(list.size(), 3U);
    EXPECT_EQ(list[2].entry, "LIMIT = (+)");
    EXPECT_EQ(list[2].extended, "a b");
}

TEST_F(EnvHistory, AsksTheRuntimeForReferencesWrittenByHand) {
    for (const char* text : {"LIMIT = +(00000000)", "LIMIT = + b", "LIMIT = + c"})
        store_.variable(text);
    const std::vector<Definition> list = definitions();
    ASSERT_EQ(list.size(), 3U);
    EXPECT_FALSE(list[0].extends);
    EXPECT_EQ(list[1].extended, "$(TRVNULL)(00000000)");
    EXPECT_EQ(list[2].extended, "$(TRVNULL)(00000000) b");
}

TEST_F(EnvHistory, ReportsValuesBeyondTheLimitsOfTheRuntime) {
    store_.variable("A = x");
    for (int i = 0; i < 10002; ++i)
        store_.variable("A = +");
    const std::vector<Definition> list = definitions();
    ASSERT_EQ(list.size(), 10003U);
    EXPECT_TRUE(list[10001].extends);
    EXPECT_FALSE(list[10001].isBeyondLimits);
    EXPECT_EQ(list[10001].extended, "x");
    EXPECT_TRUE(list[10002].extends);
    EXPECT_TRUE(list[10002].isBeyondLimits);
    EXPECT_EQ(list[10002].extended, "");
}

TEST_F(EnvHistory, IsShownInFullWhenItIsShort) {
    define(11);
    EXPECT_EQ(history().size(), 11U);
    EXPECT_EQ(history().leftOut(false), 0U);
    EXPECT_THAT(shown(false), ElementsAre("A = 1", "A = 2", "A = 3", "A = 4", "A = 5", "A = 6",
                                          "A = 7", "A = 8", "A = 9", "A = 10", "A = 11"));
}

TEST_F(EnvHistory, IsShownByItsEndsWhenItIsLong) {
    define(12);
    EXPECT_EQ(history().leftOut(false), 2U);
    EXPECT_THAT(shown(false), ElementsAre("A = 1", "A = 2", "A = 3", "A = 4", "A = 5", "...",
                                          "A = 8", "A = 9", "A = 10", "A = 11", "A = 12"));
    EXPECT_EQ(history().leftOut(true), 0U);
    EXPECT_EQ(shown(true).size(), 12U);
}

TEST_F(EnvHistory, KnowsTheValueSoFarAfterWhatIsLeftOut) {
    store_.variable("A = 0");
    for (int i = 1; i < 20; ++i)
        store_.variable("A = + " + std::to_string(i));
    std::vector<std::string> extended;
    history().forEach(
        false, [&](const Definition& definition) { extended.push_back(definition.extended); },
        [] {});
    ASSERT_EQ(extended.size(), 10U);
    EXPECT_EQ(extended[4], "0 1 2 3");
    EXPECT_EQ(extended[5], "0 1 2 3 4 5 6 7 8 9 10 11 12 13 14");
}

TEST_F(EnvHistory, JoinsSeveralEntries) {
    store_.variable("A = 1");
    store_.variable("A = 2");
    append_message(store_.get(), store_.var(), "a = +(00000000)", -1, 0);
    History made = history();
    made.add(store_.get()->sections[0].text(1));
    EXPECT_EQ(made.size(), 3U);
    std::vector<std::string> extended;
    made.forEach(
        true, [&](const Definition& definition) { extended.push_back(definition.entry); }, [] {});
    EXPECT_THAT(extended, ElementsAre("A = 1", "A = 2", "a = +"));
}

TEST(EnvHistoryOfNothing, IsEmpty) {
    const ConfiguredStore store;
    History().forEach(
        false, [](const Definition&) { ADD_FAILURE(); }, [] { ADD_FAILURE(); });
    EXPECT_EQ(History().size(), 0U);
    EXPECT_EQ(History().leftOut(false), 0U);
}

}  // namespace
}  // namespace trv::testing
