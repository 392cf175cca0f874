#include <trvfiles/support/blanks.h>

#include <gtest/gtest.h>

namespace trv {
namespace {

TEST(Blanks, AreTheCodesFrom1To32) {
    for (int code = 0; code < 256; ++code) {
        EXPECT_EQ(is_blank(static_cast<char>(code)), code >= 1 && code <= 32) << code;
    }
}

TEST(Blanks, AreTrimmedFromTheSideAskedFor) {
    EXPECT_EQ(trim_leading(" \t\x01"
                           "a b \n"),
              "a b \n");
    EXPECT_EQ(trim_trailing(" \ta b \r\n"), " \ta b");
    EXPECT_EQ(trim(" \ta b \r\n"), "a b");
}

TEST(Blanks, TrimmingNothingButBlanksLeavesNothing) {
    EXPECT_EQ(trim(" \t\n"), "");
    EXPECT_EQ(trim_leading(""), "");
    EXPECT_EQ(trim_trailing(""), "");
}

TEST(Blanks, TrimmingKeepsBytesFrom128OnAndZeros) {
    using namespace std::string_view_literals;
    EXPECT_EQ(trim("\xA0x\x85"), "\xA0x\x85");
    EXPECT_EQ(trim(" \0 "sv), "\0"sv);
}

TEST(Blanks, AreCutFromATextInPlace) {
    char text[] = " a b \t ";
    cut_trailing_blanks(text);
    EXPECT_STREQ(text, " a b");
    char blank[] = "   ";
    cut_trailing_blanks(blank);
    EXPECT_STREQ(blank, "");
    cut_trailing_blanks(nullptr);
}

}  // namespace
}  // namespace trv
