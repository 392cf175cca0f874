#include <trvfiles/environment/entry_text.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace trv {
namespace {

TEST(EntryText, IsAnEntryIfItHoldsASign) {
    EXPECT_TRUE(is_entry("A = 1"));
    EXPECT_TRUE(is_entry("="));
    EXPECT_FALSE(is_entry("A"));
    EXPECT_FALSE(is_entry(""));
}

TEST(EntryText, SplitsAtTheFirstSign) {
    EXPECT_EQ(entry_name(" A B\t== c = d "), "A B");
    EXPECT_EQ(entry_value(" A B\t== c = d "), "= c = d ");
    EXPECT_EQ(entry_name("="), "");
    EXPECT_EQ(entry_value("="), "");
    EXPECT_EQ(entry_value(" no entry "), "no entry ");
}

TEST(EntryText, HasANameThatIsTheWholeOfIt) {
    EXPECT_TRUE(is_named(" A B\t== c = d", "A B"));
    EXPECT_TRUE(is_named("=", ""));
    EXPECT_TRUE(is_named(" \t= x", ""));
    for (const char* other : {"", "A", "A ", "A  B", "A B ", "A B=", "A BC", "A C", "a b", " A B"})
        EXPECT_FALSE(is_named(" A B = c", other)) << other;
    EXPECT_FALSE(is_named("=", " "));
    EXPECT_FALSE(is_named("=x", "x"));
}

TEST(EntryText, FoldsTheLettersOfANameAlone) {
    EXPECT_TRUE(is_named_ignoring_case(" PaTh_1 = x", "pAtH_1"));
    for (const char* other : {"", "path_", "path_1 ", "path_11", "path\x7f\x31", "path_\x11"})
        EXPECT_FALSE(is_named_ignoring_case(" PaTh_1 = x", other)) << other;
    EXPECT_FALSE(is_named_ignoring_case("[ = x", "{"));
    EXPECT_FALSE(is_named_ignoring_case("\xC4 = x", "\xE4"));
}

TEST(EntryText, KeepsBytesFrom128OnInNamesAndValues) {
    EXPECT_EQ(entry_name("\xA0 A \x85 = x"), "\xA0 A \x85");
    EXPECT_EQ(entry_value("A = \x85x\x20"), "\x85x ");
}

TEST(EntryText, ReadsReferencesOfExactlyEightDigits) {
    std::int32_t offset = 5;
    EXPECT_TRUE(read_reference("+(0000012C)", offset));
    EXPECT_EQ(offset, 300);
    EXPECT_TRUE(read_reference("+(7fFFffFF) and more", offset));
    EXPECT_EQ(offset, INT32_MAX);
    offset = 5;
    for (const char* text : {"", "+", "+(0000012C", "+(000012C)", "+(00000012C)", "+(0000012G)",
                             "(0000012C)", " +(0000012C)", "+(-000012C)", "+(0x00012C)"})
        EXPECT_FALSE(read_reference(text, offset)) << text;
    EXPECT_EQ(offset, 5);
}

TEST(EntryText, ReadsAnOffsetThatNoStoreCanHaveAsMinusOne) {
    std::int32_t offset = 0;
    EXPECT_TRUE(read_reference("+(80000000)", offset));
    EXPECT_EQ(offset, -1);
    EXPECT_TRUE(read_reference("+(FFFFFFFE)", offset));
    EXPECT_EQ(offset, -1);
}

TEST(EntryText, WritesOffsetsWithEightCapitalDigits) {
    EXPECT_EQ(offset_text(0), "00000000");
    EXPECT_EQ(offset_text(0x12C), "0000012C");
    EXPECT_EQ(offset_text(0x7FEDCBA9), "7FEDCBA9");
}

TEST(EntryText, MakesReferencesOfSingleSignsAfterTheFirstEqualsSign) {
    EXPECT_EQ(with_references("PATH = +;extra", 300), "PATH = +(0000012C);extra");
    EXPECT_EQ(with_references("A+B = 1", 300), "A+B = 1");
    EXPECT_EQ(with_references("A=+ ++ +++ ++++", 1), "A=+(00000001) ++ +++(00000001) ++++");
    EXPECT_EQ(with_references("A=b=+", 1), "A=b=+(00000001)");
    EXPECT_EQ(with_references("+x+", 1), "+(00000001)x+(00000001)");
    EXPECT_EQ(with_references("A=+(00000001)", 2), "A=+(00000002)(00000001)");
    EXPECT_EQ(with_references("", 1), "");
}

TEST(EntryText, TakesReferencesOutAgain) {
    EXPECT_EQ(without_references("PATH = +(0000012C);extra"), "PATH = +;extra");
    EXPECT_EQ(without_references("A+(B) = +(C)"), "A+(B) = +");
    EXPECT_EQ(without_references("+(00000001)x"), "+x");
    EXPECT_EQ(without_references("A=+++(00000001)"), "A=+++");
    EXPECT_EQ(without_references("A=++(00000001)"), "A=++(00000001)");
    EXPECT_EQ(without_references("A=b+c(d)e+f(g"), "A=b+e+f(g");
    EXPECT_EQ(without_references("A=+(1)+(2)"), "A=++");
}

TEST(EntryText, WithManySignsIsWorkedThroughAtOnce) {
    std::string signs = "A=";
    for (int i = 0; i < 200000; ++i)
        signs += "+a";
    EXPECT_EQ(without_references(signs), signs);
    EXPECT_EQ(without_references(with_references(signs, 1)), signs);
}

TEST(EntryText, EndsItsNameAtTheFirstSign) {
    EXPECT_TRUE(is_named("A=B=C", "A"));
    EXPECT_FALSE(is_named("A=B=C", "A=B"));
    EXPECT_FALSE(is_named_ignoring_case("a=b=c", "A=B"));
}

TEST(EntryText, ReadsNoReferenceThatBeginsWithOtherCharacters) {
    std::int32_t offset = 5;
    for (const char* text : {"-(0000012C)", "+[0000012C)", "((0000012C)", "++0000012C)"})
        EXPECT_FALSE(read_reference(text, offset)) << text;
    EXPECT_EQ(offset, 5);
}

TEST(EntryText, ReadsNoReferenceBeyondItsEnd) {
    constexpr std::string_view text = "+(0000012C)";
    std::int32_t offset = 5;
    for (std::size_t length = 0; length < 11; ++length)
        EXPECT_FALSE(read_reference(text.substr(0, length), offset)) << length;
    EXPECT_EQ(offset, 5);
    EXPECT_TRUE(read_reference(text, offset));
    EXPECT_EQ(offset, 300);
}

}  // namespace
}  // namespace trv
