#include <cli/env_lookup.h>
#include <tests/common/scoped_variable.h>
#include <tests/environment/configured_store.h>
#include <trvfiles/environment/message_store_data.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace trv::testing {
namespace {

using cli::Definitions;
using cli::Value;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const cli::Subject limit = {false, "LIMIT"};

std::string textOf(const cli::Origin& origin) {
    return cli::originText(origin).toStdString();
}

std::vector<std::string> entriesOf(const cli::History& history) {
    std::vector<std::string> entries;
    history.forEach(
        true, [&](const cli::Definition& definition) { entries.push_back(definition.entry); },
        [] {});
    return entries;
}

TEST(EnvLookup, IdentifiesPathListsByAQuestionMark) {
    EXPECT_FALSE(cli::subjectOf("ENV").isPath);
    EXPECT_EQ(cli::subjectOf("ENV").name, "ENV");
    EXPECT_TRUE(cli::subjectOf("?ENV").isPath);
    EXPECT_EQ(cli::subjectOf("?ENV").name, "ENV");
    EXPECT_EQ(cli::subjectOf("?ENV").text(), "?ENV");
    EXPECT_EQ(cli::subjectOf("").name, "");
}

TEST(EnvLookup, FindsValuesWithTheirOrigins) {
    ConfiguredStore store;
    store.variable("LIMIT = 12000  ", "a.cfg", 7);
    store.variable("MODE = x");
    store.path("CFG = d;e", "b.cfg", 2);
    Value value = cli::lookUp({false, "limit"});
    EXPECT_TRUE(value.isDefined);
    EXPECT_FALSE(value.isFromEnvironment());
    EXPECT_EQ(value.text, "12000");
    EXPECT_EQ(textOf(value.origin), "a.cfg:7");
    EXPECT_EQ(textOf(cli::lookUp({false, "MODE"}).origin), "set by program");
    value = cli::lookUp({true, "CFG"});
    EXPECT_EQ(value.text, "d;e");
    EXPECT_EQ(textOf(value.origin), "b.cfg:2");
    EXPECT_FALSE(cli::lookUp({false, "CFG"}).isDefined);
}

TEST(EnvLookup, FindsTheOriginOfAValueThatExtendsAnother) {
    ConfiguredStore store;
    store.variable("LIMIT = a", "a.cfg", 1);
    store.variable("LIMIT = + b", "b.cfg", 2);
    EXPECT_EQ(cli::lookUp(limit).text, "a b");
    EXPECT_EQ(textOf(cli::lookUp(limit).origin), "b.cfg:2");
}

TEST(EnvLookup, MarksValuesOfTheProcess) {
    ConfiguredStore store;
    store.variable("LIMIT = 12000");
    const ScopedVariable variable("LIMIT", "5");
    const ScopedVariable list("CFGPATH", "d");
    EXPECT_TRUE(cli::lookUp(limit).isFromEnvironment());
    EXPECT_EQ(cli::lookUp(limit).text, "5");
    EXPECT_EQ(textOf(cli::lookUp(limit).origin), "environment variable LIMIT");
    EXPECT_TRUE(cli::lookUp({true, "CFG"}).isFromEnvironment());
    EXPECT_EQ(textOf(cli::lookUp({true, "CFG"}).origin), "environment variable CFGPATH");
}

TEST(EnvLookup, KnowsTheOriginsOfReplacedReferences) {
    ConfiguredStore store;
    store.variable("LIMIT = a", "a.cfg", 1);
    store.variable("LIMIT = + b", "b.cfg", 2);
    store.path("CFG = d", "c.cfg", 3);
    const std::string value = "a b";
    // The runtime gives no origin for a value that it puts together.
    cli::Lookup lookup = cli::lookupOf({'$', "limit", &value, ""});
    EXPECT_EQ(lookup.subject.text(), "limit");
    EXPECT_EQ(lookup.value.text, "a b");
    EXPECT_EQ(textOf(lookup.value.origin), "b.cfg:2");
    EXPECT_EQ(textOf(cli::lookupOf({'?', "CFG", &value, "from 'c.cfg' line 3"}).value.origin),
              "c.cfg:3");
    EXPECT_EQ(
        textOf(cli::lookupOf({'?', "CFG", &value, "from environment 'CFGPATH'"}).value.origin),
        "environment variable CFGPATH");
    EXPECT_EQ(textOf(cli::lookupOf({'$', "TMP", &value, ""}).value.origin), "work zone");
    lookup = cli::lookupOf({'?', "NOBODY", nullptr, ""});
    EXPECT_FALSE(lookup.value.isDefined);
    EXPECT_EQ(lookup.subject.text(), "?NOBODY");
}

TEST(EnvLookup, ListsEntriesThatNoLookupReaches) {
    ConfiguredStore store;
    store.variable("LIMIT = 1");
    store.variable("OTHER = 1");
    store.variable("Limit = 2");
    store.variable("Limit = 3");
    append_message(store.get(), store.var(), "LIMIT = 4", -1, 0);
    const Definitions definitions = cli::definitionsOf({false, "liMIT"});
    EXPECT_THAT(entriesOf(definitions.inOrder), ElementsAre("LIMIT = 1"));
    EXPECT_THAT(entriesOf(definitions.hidden), ElementsAre("Limit = 2", "Limit = 3", "LIMIT = 4"));
    EXPECT_THAT(entriesOf(cli::definitionsOf({true, "LIMIT"}).inOrder), IsEmpty());
}

TEST(EnvLookup, CountsNoDefinitionOfTheTemporaryDirectory) {
    ConfiguredStore store;
    store.variable("TMP = x");
    const ScopedVariable variable("TRVTMPDIR", "d");
    const cli::Subject temporary = {false, "TMP"};
    EXPECT_TRUE(cli::isTemporaryDirectory(temporary));
    EXPECT_FALSE(cli::isTemporaryDirectory({true, "TMP"}));
    EXPECT_FALSE(cli::isTemporaryDirectory({false, "tmp"}));
    EXPECT_EQ(cli::lookUp(temporary).text, "d");
    EXPECT_EQ(textOf(cli::lookUp(temporary).origin), "environment variable TRVTMPDIR");
    EXPECT_TRUE(cli::lookUp(temporary).isFromEnvironment());
    EXPECT_THAT(entriesOf(cli::definitionsOf(temporary).inOrder), IsEmpty());
    EXPECT_THAT(entriesOf(cli::definitionsOf(temporary).hidden), ElementsAre("TMP = x"));
}

TEST(EnvLookup, ListsNamesInOrderAndOnce) {
    ConfiguredStore store;
    for (const char* text : {"B = 1", "a = 2", "A = 3", "B = 4"})
        store.variable(text);
    append_message(store.get(), store.var(), "no name", -1, 0);
    append_message(store.get(), store.var(), "C = 5", -1, 0);
    EXPECT_THAT(cli::variableNames(false).names, ElementsAre("B", "a", "C"));
    ASSERT_EQ(cli::variableNames(false).otherTexts.size(), 1U);
    EXPECT_EQ(textOf(cli::variableNames(false).otherTexts[0]), "set by program");
}

TEST(EnvLookup, ListsThePathListsApart) {
    ConfiguredStore store;
    store.variable("A = 1");
    store.path("CFG = d");
    store.path("TXT = e");
    EXPECT_THAT(cli::variableNames(true).names, ElementsAre("CFG", "TXT"));
    EXPECT_THAT(cli::variableNames(true).otherTexts, IsEmpty());
}

TEST(EnvLookup, KnowsTheDefinitionThatCounts) {
    ConfiguredStore store;
    store.variable("A = 1", "a.cfg", 1);
    store.variable("A = 2", "a.cfg", 2);
    const std::int32_t text = cli::definitionThatCounts({false, "a"});
    EXPECT_STREQ(store.get()->texts.at(text), "A = 2");
    EXPECT_EQ(cli::definitionThatCounts({true, "A"}), -1);
}

}  // namespace
}  // namespace trv::testing
