#include <trvfiles/environment/string_format.h>

#include <gtest/gtest.h>

namespace trv {
namespace {

TEST(StringFormat, NeedsTheLengthAloneForAField) {
    EXPECT_EQ(0, STRING_FORMAT_F);
    EXPECT_EQ(0, expansion_space(0, STRING_FORMAT_F));
    EXPECT_EQ(10, expansion_space(10, STRING_FORMAT_F));
}

TEST(StringFormat, NeedsOneByteMoreForATerminatedText) {
    EXPECT_EQ(1, STRING_FORMAT_C);
    EXPECT_EQ(1, expansion_space(0, STRING_FORMAT_C));
    EXPECT_EQ(11, expansion_space(10, STRING_FORMAT_C));
}

TEST(StringFormat, NeedsA65535ByteBufferForAnUnknownFormat) {
    EXPECT_EQ(65535, expansion_space(0, 2));
    EXPECT_EQ(65535, expansion_space(100000, 0xFFFFFFFF));
}

TEST(StringFormat, DoesNotOverflowForLongTexts) {
    EXPECT_EQ(std::int64_t{0x80000000}, expansion_space(0x7FFFFFFF, STRING_FORMAT_C));
}

TEST(StringFormat, HasANameForLogLines) {
    EXPECT_STREQ("F", string_format_name(STRING_FORMAT_F));
    EXPECT_STREQ("C", string_format_name(STRING_FORMAT_C));
    EXPECT_STREQ("<UnknownStringFormat>", string_format_name(2));
    EXPECT_STREQ("<UnknownStringFormat>", string_format_name(0xFFFFFFFF));
}

}  // namespace
}  // namespace trv
