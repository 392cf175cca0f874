#include <cli/env_expansion.h>
#include <tests/environment/configured_store.h>
#include <trvfiles/environment/variable_expansion.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace trv::testing {
namespace {

using cli::Expansion;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class EnvExpansion : public ::testing::Test {
protected:
    Expansion expand(const char* text, bool asPath = false) {
        lookups_.clear();
        undefined_ = {};
        return cli::expand(text, asPath, [&](const lookup_event& lookup) {
            lookups_.push_back(event_text(lookup));
            undefined_.add(lookup);
        });
    }

    ConfiguredStore store_;
    // Of the last expansion.
    std::vector<std::string> lookups_;
    cli::UndefinedReferences undefined_;
};

TEST_F(EnvExpansion, ListsTheLookupsInTheirOrder) {
    store_.variable("A = <$B>", "a.cfg", 1);
    store_.variable("B = b", "a.cfg", 2);
    store_.path("L = d", "a.cfg", 3);
    const Expansion expansion = expand("$A//?L $$");
    EXPECT_EQ(expansion.code, EXP_OK);
    EXPECT_EQ(expansion.text, "<b>//d $");
    EXPECT_THAT(lookups_,
                ElementsAre("A = '<$B>' from 'a.cfg' line 1", "B = 'b' from 'a.cfg' line 2",
                            "L = 'd' from 'a.cfg' line 3"));
}

TEST_F(EnvExpansion, NormalisesSeparatorsOnRequest) {
    EXPECT_EQ(expand("a//./b").text, "a//./b");
    EXPECT_EQ(expand("a//./b", true).text, "a\\b");
}

TEST_F(EnvExpansion, LeavesOutHowAPlusIsReplaced) {
    store_.variable("A = 1");
    store_.variable("A = + 2 +");
    store_.variable("A = + 3");
    store_.variable("E = 0");
    store_.variable("E = +(00000002)");
    EXPECT_EQ(expand("$A").text, "1 2 1 3");
    ASSERT_EQ(lookups_.size(), 1U);
    EXPECT_EQ(lookups_[0].substr(0, 13), "A = '1 2 1 3'");
}

TEST_F(EnvExpansion, NamesWhatIsUndefinedOnce) {
    EXPECT_EQ(expand("$A ?A $A ${a b}").code, EXP_UNDEFINED);
    EXPECT_THAT(undefined_.inOrder(), ElementsAre("$A", "?A", "$a b"));
    store_.variable("A = 1");
    EXPECT_EQ(expand("$A").code, EXP_OK);
    EXPECT_THAT(undefined_.inOrder(), IsEmpty());
}

TEST_F(EnvExpansion, GivesErrorsAsTheyAre) {
    store_.variable("A = $B");
    store_.variable("B = $A");
    EXPECT_EQ(expand("${A").code, EXP_SYNTAX_ERROR);
    EXPECT_EQ(expand("$A").code, EXP_NAME_TOO_LONG);
}

TEST(EnvCodeText, HasWordsForEveryStatus) {
    const auto text = [](int code) { return cli::codeText(code).toStdString(); };
    EXPECT_EQ(cli::codeName(0).toStdString(), "EXP_OK");
    EXPECT_EQ(cli::codeName(-43).toStdString(), "EXP_UNDEFINED");
    EXPECT_EQ(cli::codeName(-99).toStdString(), "error");
    EXPECT_EQ(text(-21), "EXP_NOT_FOUND (-21): there is no such file");
    EXPECT_EQ(text(-31), "EXP_SYNTAX_ERROR (-31): a bracket after a $ or ? is not closed");
    EXPECT_EQ(text(-32), "EXP_BUFFER_TOO_SMALL (-32): the list or the path found is too long");
    EXPECT_EQ(text(-41), "error (-41): memory ran out");
    EXPECT_EQ(text(-42),
              "EXP_NAME_TOO_LONG (-42): a value refers to itself, or the text or its expansion is "
              "too long");
    EXPECT_EQ(text(-43), "EXP_UNDEFINED (-43): something that it refers to is not defined");
    EXPECT_EQ(text(-44),
              "EXP_INVALID_ARGUMENT (-44): no file name follows the list of directories");
    EXPECT_EQ(text(-99), "error -99");
}

}  // namespace
}  // namespace trv::testing
