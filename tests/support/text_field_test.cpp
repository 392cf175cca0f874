#include <trvfiles/support/text_field.h>

#include <gtest/gtest.h>

#include <string>

namespace trv {
namespace {

TEST(TextField, EndsBeforeItsTrailingBlanks) {
    EXPECT_EQ("ab c", field_text("ab c   ", 7));
    EXPECT_EQ("ab", field_text("ab \t\r\n\x01 ", 8));
    EXPECT_EQ("  a", field_text("  a ", 4));
}

TEST(TextField, TreatsBytesFrom128OnAsText) {
    EXPECT_EQ("a\xA0", field_text("a\xA0 ", 3));
}

TEST(TextField, EndsBeforeAZeroByteAndTheBlanksBeforeThat) {
    EXPECT_EQ("ab", field_text("ab  \0cd ", 8));
}

TEST(TextField, ReadsNoFurtherThanItsLength) {
    EXPECT_EQ("ab", field_text("abcdef", 2));
}

TEST(TextField, IsEmptyWithoutText) {
    EXPECT_EQ("", field_text("    ", 4));
    EXPECT_EQ("", field_text("a", 0));
    EXPECT_EQ("", field_text("a", -1));
    EXPECT_EQ("", field_text(nullptr, 5));
}

TEST(TextField, IsFilledUpWithBlanks) {
    std::string field = "xxxxxx";
    fill_field(field.data(), 5, "ab");
    EXPECT_EQ("ab   x", field);
}

TEST(TextField, TruncatesATextThatIsTooLong) {
    std::string field = "xxxxxx";
    fill_field(field.data(), 5, "abcdefgh");
    EXPECT_EQ("abcdex", field);
}

}  // namespace
}  // namespace trv
