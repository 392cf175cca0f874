#include <tests/environment/store_access.h>
#include <trvfiles/environment/message_store.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>
#include <vector>

namespace trv {
namespace {

using testing::byProgram;
using ::testing::ElementsAre;
using testing::messagesOf;
using testing::originOf;
using testing::recordOf;
using testing::Store;
using testing::valueOf;

constexpr const char* noText = nullptr;

TEST(MessageStore, IsEmptyAtFirst) {
    const Store store;
    EXPECT_EQ(section_count(store), 0);
    EXPECT_EQ(find_section(store, "var"), -1);
    EXPECT_EQ(message_count(store, 0), -2);
}

TEST(MessageStore, NumbersSectionsInTheOrderTheyAreAdded) {
    const Store store;
    EXPECT_EQ(add_section(store, "var"), 0);
    EXPECT_EQ(add_section(store, "path"), 1);
    EXPECT_EQ(section_count(store), 2);
    EXPECT_STREQ(section_name(store, 0), "var");
    EXPECT_STREQ(section_name(store, 1), "path");
}

TEST(MessageStore, FindsSectionsByTheirExactName) {
    const Store store;
    add_section(store, "var");
    add_section(store, "");
    EXPECT_EQ(find_section(store, "var"), 0);
    EXPECT_EQ(find_section(store, "VAR"), -1);
    EXPECT_EQ(find_section(store, "va"), -1);
    EXPECT_EQ(find_section(store, " var"), -1);
    EXPECT_EQ(find_section(store, ""), 1);
}

TEST(MessageStore, AddsASecondSectionOfANameThatNoLookupSees) {
    const Store store;
    EXPECT_EQ(add_section(store, "var"), 0);
    EXPECT_EQ(add_section(store, "var"), 1);
    EXPECT_EQ(find_section(store, "var"), 0);
    EXPECT_EQ(find_or_add_section(store, "var"), 0);
}

TEST(MessageStore, FindsSectionsInAnyOrder) {
    const Store store;
    for (const char* name : {"a", "b", "b", "ab", "a"})
        add_section(store, name);
    const std::vector<std::string> asked = {"b", "b", "a", "c", "a", "ab", "", "ab", "b", "a"};
    std::vector<int> found;
    for (const std::string& name : asked)
        found.push_back(find_section(store, name.c_str()));
    EXPECT_THAT(found, ElementsAre(1, 1, 0, -1, 0, 3, -1, 3, 1, 0));
}

TEST(MessageStore, FindsASectionBeforeItAddsOne) {
    const Store store;
    EXPECT_EQ(find_or_add_section(store, "a"), 0);
    EXPECT_EQ(find_or_add_section(store, "b"), 1);
    EXPECT_EQ(find_or_add_section(store, "a"), 0);
    EXPECT_EQ(section_count(store), 2);
}

TEST(MessageStore, TakesSectionNamesOf99CharactersAndRefuses100) {
    const Store store;
    const std::string longest(99, 'n');
    const std::string tooLong(100, 'n');
    EXPECT_EQ(add_section(store, tooLong.c_str()), 65535);
    EXPECT_EQ(find_or_add_section(store, tooLong.c_str()), -1);
    EXPECT_EQ(section_count(store), 0);
    EXPECT_EQ(add_section(store, longest.c_str()), 0);
    EXPECT_EQ(section_name(store, 0), longest);
    EXPECT_EQ(find_section(store, longest.c_str()), 0);
    EXPECT_EQ(find_section(store, tooLong.c_str()), -1);
}

TEST(MessageStore, AddsASectionUnderTheNameOfAnother) {
    const Store store;
    add_section(store, "first");
    for (int section = 1; section < 100; ++section)
        ASSERT_EQ(add_section(store, section_name(store, section - 1)), section);
    EXPECT_STREQ(section_name(store, 99), "first");
}

TEST(MessageStore, RefusesThe32768thSection) {
    const Store store;
    for (int section = 0; section < 32767; ++section)
        ASSERT_EQ(add_section(store, std::to_string(section).c_str()), section);
    EXPECT_EQ(add_section(store, "one more"), 65535);
    EXPECT_EQ(find_or_add_section(store, "one more"), -1);
    EXPECT_EQ(section_count(store), 32767);
    EXPECT_EQ(find_section(store, "one more"), -1);
    EXPECT_EQ(find_or_add_section(store, "32766"), 32766);
    EXPECT_EQ(append_message(store, 32766, "A = 1", byProgram, 0), 0);
    EXPECT_EQ(valueOf(store, 32766, "A"), "1");
}

TEST(MessageStore, RefusesThe32768thMessage) {
    const Store store;
    add_section(store, "s");
    for (int number = 0; number < 32767; ++number)
        ASSERT_EQ(append_message(store, 0, "text", byProgram, 0), 0);
    EXPECT_EQ(append_message(store, 0, "one more", byProgram, 0), -1);
    EXPECT_EQ(set_message(store, 0, 32767, "one more"), -1);
    EXPECT_EQ(set_variable(store, 0, "one = more"), -1);
    EXPECT_EQ(message_count(store, 0), 32767);
    EXPECT_EQ(set_message(store, 0, 32766, "last"), 0);
    EXPECT_STREQ(get_message(store, 0, 32766), "last");
}

TEST(MessageStore, NumbersMessagesFromZeroInEachSection) {
    const Store store;
    add_section(store, "a");
    add_section(store, "b");
    EXPECT_EQ(append_message(store, 0, "first", byProgram, 0), 0);
    EXPECT_EQ(append_message(store, 1, "other", byProgram, 0), 0);
    EXPECT_EQ(append_message(store, 0, "second", byProgram, 0), 0);
    EXPECT_THAT(messagesOf(store, 0), ElementsAre("first", "second"));
    EXPECT_THAT(messagesOf(store, 1), ElementsAre("other"));
    EXPECT_EQ(message_count(store, 0), 2);
}

TEST(MessageStore, GivesNothingForABadSectionOrNumber) {
    const Store store;
    add_section(store, "a");
    append_message(store, 0, "text", byProgram, 0);
    EXPECT_EQ(get_message(store, 0, 1), noText);
    EXPECT_EQ(get_message(store, 0, -1), noText);
    EXPECT_EQ(get_message(store, 0, INT_MIN), noText);
    EXPECT_EQ(get_message(store, 0, 65536), noText);
    for (const int section : {1, -1, 65536, 65535, INT_MAX, INT_MIN}) {
        EXPECT_EQ(get_message(store, section, 0), noText);
        EXPECT_EQ(message_count(store, section), -2);
        EXPECT_STREQ(section_name(store, section), "");
        EXPECT_EQ(append_message(store, section, "A = 1", byProgram, 0), -1);
        EXPECT_EQ(replace_message(store, section, 0, "A = 1", byProgram, 0), -1);
        EXPECT_EQ(set_message(store, section, 0, "A = 1"), -1);
        EXPECT_EQ(set_parameter(store, section, "A = 1", byProgram, 0), -1);
        EXPECT_EQ(set_variable(store, section, "A = 1"), -1);
        EXPECT_EQ(remove_parameter(store, section, "A"), -1);
        EXPECT_EQ(find_parameter(store, section, "A", true), noText);
    }
    EXPECT_THAT(messagesOf(store, 0), ElementsAre("text"));
}

TEST(MessageStore, TreatsANullStoreAsAnEmptyOne) {
    char buffer[8] = "old";
    const text_record before = {};
    const text_record* record = &before;
    destroy_store(nullptr);
    EXPECT_EQ(find_section(nullptr, "a"), -1);
    EXPECT_EQ(add_section(nullptr, "a"), 65535);
    EXPECT_EQ(find_or_add_section(nullptr, "a"), -1);
    EXPECT_STREQ(section_name(nullptr, 0), "");
    EXPECT_EQ(message_count(nullptr, 0), -1);
    EXPECT_EQ(section_count(nullptr), -1);
    EXPECT_EQ(get_message(nullptr, 0, 0), noText);
    EXPECT_EQ(register_file_name(nullptr, "a"), -1);
    EXPECT_EQ(append_message(nullptr, 0, "A = 1", byProgram, 0), -1);
    EXPECT_EQ(replace_message(nullptr, 0, 0, "A = 1", byProgram, 0), -1);
    EXPECT_EQ(set_message(nullptr, 0, 0, "A = 1"), -1);
    EXPECT_EQ(set_parameter(nullptr, 0, "A = 1", byProgram, 0), -1);
    EXPECT_EQ(set_variable(nullptr, 0, "A = 1"), -1);
    EXPECT_EQ(remove_parameter(nullptr, 0, "A"), -1);
    EXPECT_EQ(find_parameter(nullptr, 0, "A", false, &record), noText);
    EXPECT_EQ(record, nullptr);
    EXPECT_EQ(describe_origin(buffer, sizeof buffer, nullptr, "A"), -1);
    EXPECT_STREQ(buffer, "");
    convert_newlines(nullptr);
}

TEST(MessageStore, RefusesNullNamesAndTreatsNullTextsAsEmptyOnes) {
    const Store store;
    EXPECT_EQ(add_section(store, nullptr), 65535);
    EXPECT_EQ(find_or_add_section(store, nullptr), -1);
    EXPECT_EQ(find_section(store, nullptr), -1);
    EXPECT_EQ(section_count(store), 0);
    EXPECT_EQ(register_file_name(store, nullptr), -1);
    add_section(store, "s");
    EXPECT_EQ(append_message(store, 0, nullptr, byProgram, 0), 0);
    EXPECT_EQ(replace_message(store, 0, 0, nullptr, byProgram, 0), 0);
    EXPECT_EQ(set_message(store, 0, 1, nullptr), 0);
    EXPECT_THAT(messagesOf(store, 0), ElementsAre("", ""));
    EXPECT_EQ(find_parameter(store, 0, nullptr, true), noText);
    EXPECT_EQ(remove_parameter(store, 0, nullptr), -2);
    set_variable(store, 0, "= of no name");
    EXPECT_STREQ(find_parameter(store, 0, nullptr, true), "of no name");
    EXPECT_EQ(remove_parameter(store, 0, nullptr), 0);
}

TEST(MessageStore, SetsMissingMessagesToUndefinedMessage) {
    const Store store;
    add_section(store, "s");
    EXPECT_EQ(set_message(store, 0, 3, "three"), 0);
    EXPECT_THAT(messagesOf(store, 0), ElementsAre("undefined message", "undefined message",
                                                  "undefined message", "three"));
}

TEST(MessageStore, SetsAMessageInItsPlaceOrAfterTheLast) {
    const Store store;
    add_section(store, "s");
    EXPECT_EQ(set_message(store, 0, 0, "zero"), 0);
    EXPECT_EQ(set_message(store, 0, 1, "one"), 0);
    EXPECT_EQ(set_message(store, 0, 0, "nought"), 0);
    EXPECT_THAT(messagesOf(store, 0), ElementsAre("nought", "one"));
}

TEST(MessageStore, RefusesNumbersOutOfRangeBeforeAnyPlaceholder) {
    const Store store;
    add_section(store, "s");
    EXPECT_EQ(set_message(store, 0, -1, "x"), -1);
    EXPECT_EQ(set_message(store, 0, 32767, "x"), -1);
    EXPECT_EQ(set_message(store, 0, 65536, "x"), -1);
    EXPECT_EQ(message_count(store, 0), 0);
    EXPECT_EQ(set_message(store, 0, 32766, "x"), 0);
    EXPECT_EQ(message_count(store, 0), 32767);
    EXPECT_STREQ(get_message(store, 0, 32765), "undefined message");
    EXPECT_STREQ(get_message(store, 0, 32766), "x");
}

TEST(MessageStore, ReplacesOnlyMessagesThatExist) {
    const Store store;
    add_section(store, "s");
    append_message(store, 0, "old", byProgram, 0);
    EXPECT_EQ(replace_message(store, 0, 1, "new", byProgram, 0), -1);
    EXPECT_EQ(replace_message(store, 0, -1, "new", byProgram, 0), -1);
    EXPECT_EQ(replace_message(store, 0, 65536, "new", byProgram, 0), -1);
    EXPECT_EQ(replace_message(store, 0, 0, "new", byProgram, 0), 0);
    EXPECT_THAT(messagesOf(store, 0), ElementsAre("new"));
}

TEST(MessageStore, KeepsTheRecordBeforeItsText) {
    const Store store;
    add_section(store, "s");
    const std::int32_t file = register_file_name(store, "a.cfg");
    append_message(store, 0, "old", file, 7);
    replace_message(store, 0, 0, "new", byProgram, 0);

    const text_record& current = recordOf(get_message(store, 0, 0));
    EXPECT_EQ(current.file, -1);
    EXPECT_EQ(current.line, 0);
    EXPECT_EQ(current.flags, persistent_text);
    EXPECT_EQ(current.reserved, 0);
    ASSERT_GT(current.previous, 0);
    append_message(store, 0, "old", file, 7);
    const text_record& fromFile = recordOf(get_message(store, 0, 1));
    EXPECT_EQ(fromFile.file, file);
    EXPECT_EQ(fromFile.previous, -1);
    EXPECT_EQ(fromFile.line, 7);
}

TEST(MessageStore, GivesATextThatIsSetByProgramNoLine) {
    const Store store;
    add_section(store, "s");
    EXPECT_EQ(append_message(store, 0, "A = 1", byProgram, 7), 0);
    EXPECT_EQ(recordOf(get_message(store, 0, 0)).line, 0);
    EXPECT_EQ(replace_message(store, 0, 0, "A = 2", byProgram, 8), 0);
    EXPECT_EQ(recordOf(get_message(store, 0, 0)).line, 0);
    EXPECT_EQ(set_parameter(store, 0, "A = 3", byProgram, 9), 0);
    EXPECT_EQ(recordOf(get_message(store, 0, 0)).line, 0);
    EXPECT_EQ(set_parameter(store, 0, "B = 4", byProgram, 10), 0);
    EXPECT_EQ(recordOf(get_message(store, 0, 1)).line, 0);
    EXPECT_EQ(originOf(store, get_message(store, 0, 0)), "set by program");
}

TEST(MessageStore, StoresLineNumbersModulo65536) {
    const Store store;
    add_section(store, "s");
    const std::int32_t file = register_file_name(store, "f");
    append_message(store, 0, "a", file, 65535);
    append_message(store, 0, "b", file, 65536 + 12);
    EXPECT_EQ(originOf(store, get_message(store, 0, 0)), "from 'f' line 65535");
    EXPECT_EQ(originOf(store, get_message(store, 0, 1)), "from 'f' line 12");
}

TEST(MessageStore, TakesTheRecordFlagWhenATextIsMade) {
    const Store store;
    add_section(store, "s");
    EXPECT_TRUE(set_record_flag(false));
    set_message(store, 0, 1, "off");
    EXPECT_FALSE(set_record_flag(false));
    EXPECT_FALSE(set_record_flag(true));
    set_message(store, 0, 3, "on");
    EXPECT_EQ(recordOf(get_message(store, 0, 0)).flags, 0);
    EXPECT_EQ(recordOf(get_message(store, 0, 1)).flags, 0);
    EXPECT_EQ(recordOf(get_message(store, 0, 2)).flags, persistent_text);
    EXPECT_EQ(recordOf(get_message(store, 0, 3)).flags, persistent_text);
}

TEST(MessageStore, RegistersAFileNameOnce) {
    const Store store;
    const std::int32_t a = register_file_name(store, "a.cfg");
    const std::int32_t b = register_file_name(store, "b.cfg");
    EXPECT_GE(a, 0);
    EXPECT_GT(b, a);
    EXPECT_EQ(register_file_name(store, "a.cfg"), a);
    EXPECT_EQ(register_file_name(store, "b.cfg"), b);
    EXPECT_GT(register_file_name(store, "A.cfg"), b);
}

TEST(MessageStore, RefusesAFileThatIsNotRegistered) {
    const Store store;
    add_section(store, "s");
    const std::int32_t file = register_file_name(store, "a.cfg");
    for (const std::int32_t bad : {file + 1, file + 4, -2, INT_MIN, INT_MAX}) {
        EXPECT_EQ(append_message(store, 0, "text", bad, 1), -1);
        EXPECT_EQ(set_parameter(store, 0, "A = 1", bad, 1), -1);
    }
    EXPECT_EQ(message_count(store, 0), 0);
    append_message(store, 0, "text", file, 1);
    EXPECT_EQ(replace_message(store, 0, 0, "text", file + 1, 1), -1);
}

TEST(MessageStore, ReportsWhereATextCameFrom) {
    const Store store;
    add_section(store, "s");
    append_message(store, 0, "text", register_file_name(store, "dir\\a.cfg"), 3);
    append_message(store, 0, "text", byProgram, 0);
    EXPECT_EQ(originOf(store, get_message(store, 0, 0)), "from 'dir\\a.cfg' line 3");
    EXPECT_EQ(originOf(store, get_message(store, 0, 1)), "set by program");
}

TEST(MessageStore, ReportsTheOriginOfAPlaceInAText) {
    const Store store;
    add_section(store, "s");
    const std::int32_t file = register_file_name(store, "f");
    append_message(store, 0, "A = one", file, 1);
    append_message(store, 0, "B =", file, 2);
    EXPECT_EQ(originOf(store, find_parameter(store, 0, "A", true)), "from 'f' line 1");
    EXPECT_EQ(originOf(store, find_parameter(store, 0, "B", true)), "from 'f' line 2");
}

TEST(MessageStore, ReportsNoOriginOfAPointerToNoText) {
    const Store store;
    const Store other;
    add_section(store, "s");
    add_section(other, "s");
    append_message(other, 0, "text", byProgram, 0);
    EXPECT_EQ(originOf(store, get_message(other, 0, 0)), "<none>");
    append_message(store, 0, "text", byProgram, 0);
    const char* text = get_message(store, 0, 0);
    EXPECT_EQ(originOf(store, text + 4), "set by program");
    EXPECT_EQ(originOf(store, text + 5), "<none>");
    EXPECT_EQ(originOf(store, text - 1), "<none>");
    EXPECT_EQ(originOf(store, "text"), "<none>");
    EXPECT_EQ(originOf(store, nullptr), "<none>");
    EXPECT_EQ(originOf(store, get_message(other, 0, 0)), "<none>");
    EXPECT_EQ(originOf(store, section_name(store, 0)), "<none>");
}

TEST(MessageStore, ReportsTheOriginUpTo1024BytesAfterTheStart) {
    const Store store;
    add_section(store, "s");
    append_message(store, 0, std::string(2000, 'x').c_str(), byProgram, 0);
    const char* text = get_message(store, 0, 0);
    EXPECT_EQ(originOf(store, text + 1024), "set by program");
    EXPECT_EQ(originOf(store, text + 1025), "<none>");
}

TEST(MessageStore, ReportsTheOriginOfReplacedTexts) {
    const Store store;
    add_section(store, "s");
    append_message(store, 0, "old", register_file_name(store, "f"), 9);
    const char* old = get_message(store, 0, 0);
    replace_message(store, 0, 0, "new", byProgram, 0);
    EXPECT_EQ(originOf(store, old), "from 'f' line 9");
}

TEST(MessageStore, NeverWritesMoreOfAnOriginThanFits) {
    const Store store;
    add_section(store, "s");
    append_message(store, 0, "text", byProgram, 0);
    const char* text = get_message(store, 0, 0);
    char buffer[] = "????????";
    EXPECT_EQ(describe_origin(buffer, 0, store, text), 0);
    EXPECT_STREQ(buffer, "????????");
    EXPECT_EQ(describe_origin(nullptr, 100, store, text), 0);
    EXPECT_EQ(describe_origin(nullptr, 100, store, "none"), -1);
    EXPECT_EQ(describe_origin(buffer, 5, store, text), 0);
    EXPECT_EQ(std::memcmp(buffer, "set \0???", sizeof buffer), 0);
    EXPECT_EQ(describe_origin(buffer, 1, store, text), 0);
    EXPECT_STREQ(buffer, "");
    char exact[sizeof "set by program"];
    EXPECT_EQ(describe_origin(exact, sizeof exact, store, text), 0);
    EXPECT_STREQ(exact, "set by program");
}

TEST(MessageStore, TakesTextsThatLieInItself) {
    const Store store;
    add_section(store, "s");
    const std::string text = "A = " + std::string(200, 'v');
    append_message(store, 0, text.c_str(), byProgram, 0);
    for (int number = 0; number < 200; ++number) {
        ASSERT_EQ(append_message(store, 0, get_message(store, 0, 0), byProgram, 0), 0);
        ASSERT_EQ(replace_message(store, 0, 0, get_message(store, 0, number), byProgram, 0), 0);
        ASSERT_EQ(set_message(store, 0, number + 1, get_message(store, 0, 0)), 0);
        ASSERT_EQ(set_variable(store, 0, get_message(store, 0, number)), 0);
        ASSERT_GE(register_file_name(store, find_parameter(store, 0, "A", true)), 0);
    }
    for (const std::string& message : messagesOf(store, 0))
        ASSERT_EQ(message, text);
}

TEST(MessageStore, TurnsBackslashNIntoNewlinesEverywhere) {
    const Store store;
    add_section(store, "a");
    add_section(store, "b");
    append_message(store, 0, "one\\ntwo\\n", byProgram, 0);
    append_message(store, 0, "C:\\new", byProgram, 0);
    append_message(store, 1, R"(\\n\t\)", byProgram, 0);
    append_message(store, 1, "none", byProgram, 0);
    convert_newlines(store);
    EXPECT_THAT(messagesOf(store, 0), ElementsAre("one\ntwo\n", "C:\new"));
    EXPECT_THAT(messagesOf(store, 1), ElementsAre("\\\n\\t\\", "none"));
    convert_newlines(store);
    EXPECT_THAT(messagesOf(store, 0), ElementsAre("one\ntwo\n", "C:\new"));
}

TEST(MessageStore, ConvertsNewlinesInPlace) {
    const Store store;
    add_section(store, "s");
    append_message(store, 0, "a\\nb", register_file_name(store, "f"), 4);
    const char* text = get_message(store, 0, 0);
    convert_newlines(store);
    EXPECT_EQ(get_message(store, 0, 0), text);
    EXPECT_EQ(originOf(store, text), "from 'f' line 4");
}

TEST(MessageStore, FindsEntriesByTheNamesThatConvertedNewlinesLeave) {
    const Store store;
    add_section(store, "s");
    append_message(store, 0, "\\nA = 1", byProgram, 0);
    append_message(store, 0, "A\\nB = 2", byProgram, 0);
    append_message(store, 0, "A = 3", byProgram, 0);
    EXPECT_EQ(valueOf(store, 0, "A"), "3");
    convert_newlines(store);
    EXPECT_EQ(valueOf(store, 0, "A"), "1");
    EXPECT_EQ(valueOf(store, 0, "A\nB"), "2");
    EXPECT_EQ(valueOf(store, 0, "a\nb", false), "2");
    EXPECT_EQ(valueOf(store, 0, "\\nA"), "<none>");
}

}  // namespace
}  // namespace trv
