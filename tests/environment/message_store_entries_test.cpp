#include <tests/common/channel_log.h>
#include <tests/environment/store_access.h>
#include <trvfiles/environment/message_store.h>
#include <trvfiles/environment/name_hash.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <unordered_map>
#include <utility>

namespace trv {
namespace {

using testing::byProgram;
using testing::ChannelLog;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::messagesOf;
using testing::originOf;
using testing::recordOf;
using testing::Store;
using testing::valueOf;

class StoreEntries : public ::testing::Test {
protected:
    StoreEntries() {
        add_section(store, "var");
        home = register_file_name(store, "home.cfg");
        site = register_file_name(store, "site.cfg");
    }

    std::string value(const char* name, bool exact = true) const {
        return valueOf(store, 0, name, exact);
    }

    Store store;
    std::int32_t home = 0;
    std::int32_t site = 0;
};

TEST_F(StoreEntries, AreFoundByTheirTrimmedNamesAndGiveTheirTrimmedValues) {
    append_message(store, 0, " \tNAME \t= \t a value ", home, 1);
    append_message(store, 0, "PACKED=x", home, 2);
    append_message(store, 0, "EMPTY =", home, 3);
    append_message(store, 0, "BLANK = \t ", home, 4);
    append_message(store, 0, "A==b", home, 5);
    append_message(store, 0, "=of no name", home, 6);
    append_message(store, 0, "TWO WORDS = 2", home, 7);
    EXPECT_EQ(value("NAME"), "a value ");
    EXPECT_EQ(value("PACKED"), "x");
    EXPECT_EQ(value("EMPTY"), "");
    EXPECT_EQ(value("BLANK"), "");
    EXPECT_EQ(value("A"), "=b");
    EXPECT_EQ(value(""), "of no name");
    EXPECT_EQ(value("TWO WORDS"), "2");
}

// Two names that share a hash. They differ from process to process. With a hash of 32 bits some
// 80,000 names are needed to find them.
std::pair<std::string, std::string> namesOfOneHash(std::uint32_t (*hash)(std::string_view)) {
    std::unordered_map<std::uint32_t, std::string> names;
    for (int number = 0;; ++number) {
        const std::string name = "TOOL_" + std::to_string(number);
        const auto [known, isNew] = names.emplace(hash(name), name);
        if (!isNew) return {known->second, name};
    }
}

TEST_F(StoreEntries, AreDistinguishedThoughTheirNamesHaveOneHash) {
    const auto [first, second] = namesOfOneHash(hash_name);
    append_message(store, 0, (first + " = first").c_str(), home, 1);
    EXPECT_EQ(value(second.c_str()), "<none>");
    EXPECT_EQ(set_parameter(store, 0, (second + " = second").c_str(), home, 2), 0);
    EXPECT_EQ(message_count(store, 0), 2);
    EXPECT_EQ(value(first.c_str()), "first");
    EXPECT_EQ(value(second.c_str()), "second");
    EXPECT_EQ(remove_parameter(store, 0, second.c_str()), 0);
    EXPECT_EQ(value(first.c_str()), "first");
    EXPECT_EQ(value(second.c_str()), "<none>");
}

TEST_F(StoreEntries, AreDistinguishedInAnyCaseThoughTheirNamesHaveOneHash) {
    const auto [square, round] = namesOfOneHash(hash_name_ignoring_case);
    const std::string lowerSquare = "tool_" + square.substr(5);
    const std::string lowerRound = "tool_" + round.substr(5);
    append_message(store, 0, (square + " = square").c_str(), home, 3);
    EXPECT_EQ(value(lowerRound.c_str(), false), "<none>");
    EXPECT_EQ(value(lowerSquare.c_str(), false), "square");
    append_message(store, 0, (round + " = round").c_str(), home, 4);
    EXPECT_EQ(value(lowerRound.c_str(), false), "round");
    EXPECT_EQ(value(lowerSquare.c_str(), false), "square");
}

TEST_F(StoreEntries, AreInTheSectionOfTheirNameThoughAnotherHasItsHash) {
    const auto [firstName, secondName] = namesOfOneHash(hash_name);
    const std::uint16_t first = add_section(store, firstName.c_str());
    EXPECT_EQ(find_section(store, secondName.c_str()), -1);
    const std::uint16_t second = add_section(store, secondName.c_str());
    EXPECT_EQ(find_section(store, firstName.c_str()), first);
    EXPECT_EQ(find_section(store, secondName.c_str()), second);
    EXPECT_NE(register_file_name(store, firstName.c_str()),
              register_file_name(store, secondName.c_str()));
}

TEST_F(StoreEntries, TakeCodes1To32ForBlanksAndNothingElse) {
    append_message(store, 0, "\x01\x1F\nA\r\x1A = \x01\x1Fx", home, 1);
    append_message(store, 0,
                   "\xA0"
                   "B = \xA0y",
                   home, 2);
    EXPECT_EQ(value("A"), "x");
    EXPECT_EQ(value("B"), "<none>");
    EXPECT_EQ(value("\xA0"
                    "B"),
              "\xA0y");
}

TEST_F(StoreEntries, AreFoundByNamesOfTheSameLengthOnly) {
    append_message(store, 0, "NAME = 1", home, 1);
    EXPECT_EQ(value("NAM"), "<none>");
    EXPECT_EQ(value("NAMES"), "<none>");
    EXPECT_EQ(value(" NAME"), "<none>");
    EXPECT_EQ(value("NAME "), "<none>");
    EXPECT_EQ(value(""), "<none>");
}

TEST_F(StoreEntries, AreFoundWithOrWithoutRegardToCase) {
    append_message(store, 0, "Path_1\xE4 = x", home, 1);
    EXPECT_EQ(value("Path_1\xE4"), "x");
    EXPECT_EQ(value("PATH_1\xE4"), "<none>");
    EXPECT_EQ(value("PATH_1\xE4", false), "x");
    EXPECT_EQ(value("path_1\xE4", false), "x");
    EXPECT_EQ(value("path_1\xC4", false), "<none>");
}

TEST_F(StoreEntries, OfOneNameAreFoundFirstComeFirst) {
    append_message(store, 0, "A = 1", home, 1);
    append_message(store, 0, "A = 2", home, 2);
    EXPECT_EQ(value("A"), "1");
    EXPECT_EQ(set_parameter(store, 0, "A = 3", site, 1), 0);
    EXPECT_THAT(messagesOf(store, 0), ElementsAre("A = 3", "A = 2"));
    EXPECT_EQ(value("A"), "3");
}

TEST_F(StoreEntries, DifferingInCaseAreFoundFirstComeFirstToo) {
    append_message(store, 0, "Path = 1", home, 1);
    append_message(store, 0, "PATH = 2", home, 2);
    EXPECT_EQ(value("PATH"), "2");
    EXPECT_EQ(value("PATH", false), "1");
    EXPECT_EQ(value("path"), "<none>");
    EXPECT_EQ(value("path", false), "1");
}

TEST_F(StoreEntries, AreSetByExactNames) {
    append_message(store, 0, "PATH = y", home, 1);
    EXPECT_EQ(set_variable(store, 0, "path = x"), 0);
    EXPECT_THAT(messagesOf(store, 0), ElementsAre("PATH = y", "path = x"));
    EXPECT_EQ(value("path", false), "y");
    EXPECT_EQ(value("path"), "x");
}

TEST_F(StoreEntries, AreSetWithoutTheirLeadingBlanksOnly) {
    EXPECT_EQ(set_parameter(store, 0, " \t A  =  1  ", home, 1), 0);
    EXPECT_STREQ(get_message(store, 0, 0), "A  =  1  ");
    EXPECT_EQ(set_parameter(store, 0, "  A=2", home, 2), 0);
    EXPECT_THAT(messagesOf(store, 0), ElementsAre("A=2"));
}

TEST_F(StoreEntries, MayHaveTheEmptyName) {
    EXPECT_EQ(set_variable(store, 0, "=v"), 0);
    EXPECT_EQ(set_variable(store, 0, " = w"), 0);
    EXPECT_THAT(messagesOf(store, 0), ElementsAre("= w"));
}

TEST_F(StoreEntries, PassOverMessagesWithoutASign) {
    append_message(store, 0, "A", home, 1);
    append_message(store, 0, "A = 1", home, 2);
    EXPECT_EQ(value("A"), "1");
    set_variable(store, 0, "A = 2");
    EXPECT_THAT(messagesOf(store, 0), ElementsAre("A", "A = 2"));
}

TEST_F(StoreEntries, WithoutASignFromAFileAreAWarning) {
    const ChannelLog log;
    EXPECT_EQ(set_parameter(store, 0, "  no sign %s ", home, 12), 0);
    EXPECT_THAT(log.errors(),
                ElementsAre("load_messages: [file 'home.cfg' line 12] Warning - incorrect format "
                            "(missing '='): [var] no sign %s \n"));
    EXPECT_EQ(message_count(store, 0), 0);
}

TEST_F(StoreEntries, WithoutASignByProgramAreAnError) {
    const ChannelLog log;
    EXPECT_EQ(set_parameter(store, 0, "  no sign", byProgram, 0), -1);
    EXPECT_EQ(set_variable(store, 0, nullptr), -1);
    EXPECT_THAT(log.errors(),
                ElementsAre("set_parameter : The program is trying to modify a non-parameter "
                            "message: [var] no sign\n",
                            "set_parameter : The program is trying to modify a non-parameter "
                            "message: [var] \n"));
    EXPECT_EQ(message_count(store, 0), 0);
}

TEST_F(StoreEntries, ReferToWhatTheyReplace) {
    append_message(store, 0, "A = 1", home, 1);
    set_parameter(store, 0, "A = +;x", site, 1);
    // Two names of 9 bytes take 12 each, then comes the record of 12.
    EXPECT_STREQ(get_message(store, 0, 0), "A = +(00000024);x");
    EXPECT_EQ(value("A"), "1;x");
    EXPECT_EQ(recordOf(get_message(store, 0, 0)).previous, 0x24);
}

TEST_F(StoreEntries, WithADoubledPlusReadAsWithOne) {
    append_message(store, 0, "A = a++b++", home, 1);
    EXPECT_EQ(value("A"), "a+b+");
    EXPECT_STREQ(get_message(store, 0, 0), "A = a++b++");
}

TEST_F(StoreEntries, TakeOnlyASinglePlusForAReference) {
    append_message(store, 0, "A = 1", home, 1);
    set_parameter(store, 0, "A = ++,+++,+", site, 1);
    EXPECT_STREQ(get_message(store, 0, 0), "A = ++,+++(00000024),+(00000024)");
    EXPECT_EQ(value("A"), "+,+1,1");
}

TEST_F(StoreEntries, KeepAPlusInTheirNames) {
    set_parameter(store, 0, "A+B = 1", home, 1);
    set_parameter(store, 0, "A+B = +,2", site, 1);
    EXPECT_STREQ(get_message(store, 0, 0), "A+B = +(00000024),2");
    EXPECT_EQ(value("A+B"), "1,2");
}

TEST_F(StoreEntries, WithoutASignReferEverywhere) {
    append_message(store, 0, "old", home, 1);
    replace_message(store, 0, 0, "+new+", site, 1);
    EXPECT_STREQ(get_message(store, 0, 0), "+(00000024)new+(00000024)");
}

TEST_F(StoreEntries, ThatReplaceNothingKeepTheirPlus) {
    set_parameter(store, 0, "A = +;x", home, 1);
    EXPECT_STREQ(get_message(store, 0, 0), "A = +;x");
    EXPECT_EQ(value("A"), "+;x");
}

TEST_F(StoreEntries, ThatAreRemovedAreNotFound) {
    append_message(store, 0, "A = 1", home, 1);
    EXPECT_EQ(remove_parameter(store, 0, "A"), 0);
    EXPECT_EQ(value("A"), "<none>");
    EXPECT_EQ(value("a", false), "<none>");
    EXPECT_STREQ(get_message(store, 0, 0), "");
    EXPECT_EQ(message_count(store, 0), 1);
}

TEST_F(StoreEntries, AreRemovedByExactNames) {
    append_message(store, 0, "A = 1", home, 1);
    append_message(store, 0, "B", home, 2);
    EXPECT_EQ(remove_parameter(store, 0, "a"), -2);
    EXPECT_EQ(remove_parameter(store, 0, "B"), -2);
    EXPECT_EQ(remove_parameter(store, 0, " A"), -2);
    EXPECT_EQ(value("A"), "1");
}

TEST_F(StoreEntries, OfOneNameAreRemovedOnlyOnce) {
    append_message(store, 0, "A = 1", home, 1);
    append_message(store, 0, "A = 2", home, 2);
    EXPECT_EQ(remove_parameter(store, 0, "A"), 0);
    EXPECT_EQ(value("A"), "2");
    EXPECT_EQ(remove_parameter(store, 0, "A"), 0);
    EXPECT_EQ(value("A"), "2");
    EXPECT_EQ(value("a", false), "2");
}

TEST_F(StoreEntries, AreRemovedWithTheirHistory) {
    append_message(store, 0, "A = 1", home, 1);
    const char* first = get_message(store, 0, 0);
    set_parameter(store, 0, "A = 2", site, 1);
    const char* second = get_message(store, 0, 0);
    EXPECT_EQ(recordOf(first).flags & deleted_text, 0);
    remove_parameter(store, 0, "A");
    EXPECT_EQ(recordOf(first).flags & deleted_text, deleted_text);
    EXPECT_EQ(recordOf(second).flags & deleted_text, deleted_text);
}

TEST_F(StoreEntries, ThatAreSetAgainKeepTheirPlaceAndStillReferToTheDeletedText) {
    append_message(store, 0, "A = 1", home, 1);
    append_message(store, 0, "B = 2", home, 2);
    remove_parameter(store, 0, "A");
    set_parameter(store, 0, "A = +,3", site, 1);
    EXPECT_THAT(messagesOf(store, 0), ElementsAre("A = +(00000024),3", "B = 2"));
    EXPECT_EQ(value("A"), "1,3");
    EXPECT_EQ(value("a", false), "1,3");
    EXPECT_EQ(recordOf(get_message(store, 0, 0)).flags & deleted_text, 0);
}

TEST_F(StoreEntries, FollowTheNamesOfReplacedMessages) {
    append_message(store, 0, "A = 1", home, 1);
    append_message(store, 0, "B = 2", home, 2);
    append_message(store, 0, "B = 3", home, 3);
    replace_message(store, 0, 0, "B = 0", site, 1);
    EXPECT_EQ(value("A"), "<none>");
    EXPECT_EQ(value("B"), "0");
    set_message(store, 0, 0, "no entry");
    EXPECT_EQ(value("B"), "2");
    set_message(store, 0, 1, "C = 1");
    EXPECT_EQ(value("B"), "3");
    EXPECT_EQ(value("c", false), "1");
    set_message(store, 0, 0, "c = 0");
    EXPECT_EQ(value("C", false), "0");
    EXPECT_EQ(value("C"), "1");
}

TEST_F(StoreEntries, GiveTheirRecords) {
    append_message(store, 0, "A = 1", home, 5);
    append_message(store, 0, "B = ++", site, 6);
    const text_record* record = nullptr;
    EXPECT_STREQ(find_parameter(store, 0, "a", false, &record), "1");
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->file, home);
    EXPECT_EQ(record->line, 5);
    EXPECT_STREQ(find_parameter(store, 0, "B", true, &record), "+");
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->file, site);
    EXPECT_EQ(record->line, 6);
    EXPECT_EQ(find_parameter(store, 0, "C", true, &record), nullptr);
    EXPECT_EQ(record, nullptr);
}

TEST_F(StoreEntries, WithoutAPlusGiveTheStoredTextItself) {
    append_message(store, 0, "A = 1", home, 1);
    EXPECT_EQ(find_parameter(store, 0, "A", true), get_message(store, 0, 0) + 4);
}

TEST_F(StoreEntries, WithAPlusShareOneBuffer) {
    append_message(store, 0, "A = 1++", home, 1);
    append_message(store, 0, "B = a+b", home, 2);
    const char* first = find_parameter(store, 0, "A", true);
    const char* second = find_parameter(store, 0, "B", true);
    EXPECT_EQ(first, second);
    EXPECT_STREQ(second, "a+b");
    EXPECT_EQ(originOf(store, second), "<none>");
}

TEST_F(StoreEntries, StayRightThroughTwentyThousandOfThem) {
    for (int round = 0; round < 2; ++round) {
        for (int entry = 0; entry < 20000; ++entry) {
            const std::string text =
                "Name" + std::to_string(entry) + " = " + std::to_string(entry + round);
            ASSERT_EQ(set_parameter(store, 0, text.c_str(), home, entry), 0);
        }
    }
    EXPECT_EQ(message_count(store, 0), 20000);
    for (int entry = 0; entry < 20000; ++entry) {
        const std::string name = "NAME" + std::to_string(entry);
        ASSERT_EQ(value(name.c_str(), false), std::to_string(entry + 1));
        ASSERT_EQ(value(name.c_str()), "<none>");
    }
    EXPECT_THAT(value("Name20000"), "<none>");
}

TEST_F(StoreEntries, GetTheMarkOfARemovedOneAndNoOther) {
    set_record_flag(false);
    append_message(store, 0, "A = 1", home, 1);
    set_record_flag(true);
    const char* const text = get_message(store, 0, 0);
    EXPECT_EQ(recordOf(text).flags, 0);
    EXPECT_EQ(remove_parameter(store, 0, "A"), 0);
    EXPECT_EQ(recordOf(text).flags, 2);
    EXPECT_EQ(remove_parameter(store, 0, "A"), 0);
    EXPECT_EQ(recordOf(text).flags, 2);
}

}  // namespace
}  // namespace trv
