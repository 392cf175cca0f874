#include <trvfiles/support/file_system.h>
#include <trvfiles/support/list_elements.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace trv {
namespace {

std::vector<std::string> elementsOf(std::string_view list) {
    std::vector<std::string> elements;
    for (std::string_view element; consume_list_element(list, element);)
        elements.emplace_back(element);
    EXPECT_TRUE(list.empty());
    return elements;
}

std::vector<std::string> walk(const char* list) {
    std::vector<std::string> elements;
    list_begin(list);
    while (const char* element = list_next_element())
        elements.push_back(element);
    list_end();
    return elements;
}

using Elements = std::vector<std::string>;

TEST(DirectoryList, IsSplitAtSemicolonsAndCommas) {
    EXPECT_EQ(elementsOf("a;b,c"), (Elements{"a", "b", "c"}));
    EXPECT_EQ(elementsOf("/a:/b"), (Elements{"/a:/b"}));
    EXPECT_EQ(elementsOf("a"), (Elements{"a"}));
}

TEST(DirectoryList, TreatsARunOfSeparatorsAsOne) {
    EXPECT_EQ(elementsOf(";,a;,;b;;"), (Elements{"a", "b"}));
    EXPECT_EQ(elementsOf(""), Elements());
    EXPECT_EQ(elementsOf(";,;"), Elements());
}

TEST(DirectoryList, KeepsBlanks) {
    EXPECT_EQ(elementsOf(" a ; ;b"), (Elements{" a ", " ", "b"}));
}

TEST(ListCursor, GivesTheElementsWithoutBlanks) {
    EXPECT_EQ(walk(" a b ;\tc\n,d"), (Elements{"a b", "c", "d"}));
}

TEST(ListCursor, PassesOverWhatIsAllBlank) {
    EXPECT_EQ(walk("a; ;,\t,b; "), (Elements{"a", "b"}));
    EXPECT_EQ(walk(" ; "), Elements());
    EXPECT_EQ(walk(""), Elements());
    EXPECT_EQ(walk(nullptr), Elements());
}

TEST(ListCursor, StaysAtTheEnd) {
    list_begin("a");
    EXPECT_STREQ(list_next_element(), "a");
    EXPECT_EQ(list_next_element(), nullptr);
    EXPECT_EQ(list_next_element(), nullptr);
    list_end();
}

TEST(ListCursor, CopiesTheList) {
    char list[] = "a;b";
    list_begin(list);
    list[0] = 'x';
    list[2] = 'y';
    EXPECT_STREQ(list_next_element(), "a");
    EXPECT_STREQ(list_next_element(), "b");
    list_end();
}

TEST(ListCursor, ASecondListReplacesTheFirst) {
    list_begin("a;b");
    EXPECT_STREQ(list_next_element(), "a");
    list_begin("c");
    EXPECT_STREQ(list_next_element(), "c");
    EXPECT_EQ(list_next_element(), nullptr);
    list_end();
}

TEST(ListCursor, WalksAListThatIsItsOwnElement) {
    for (const char* element : {"a", "an element of more than a few characters"}) {
        list_begin(element);
        list_begin(list_next_element());
        EXPECT_STREQ(list_next_element(), element);
        EXPECT_EQ(list_next_element(), nullptr);
    }
    list_end();
}

TEST(ListCursor, HasNothingBeforeTheBeginningAndAfterTheEnd) {
    EXPECT_EQ(list_next_element(), nullptr);
    list_begin("a;b");
    list_end();
    EXPECT_EQ(list_next_element(), nullptr);
    list_end();
}

}  // namespace
}  // namespace trv
