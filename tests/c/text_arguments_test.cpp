#include <tests/c/c_objects.h>
#include <trvfiles/c/refusal.h>
#include <trvfiles/c/text_arguments.h>

#include <gtest/gtest.h>

namespace trv::c {
namespace {

std::int32_t statusOf(const char* text) {
    try {
        textArgument(text);
    } catch (const Refusal& refusal) {
        return refusal.status;
    }
    return TRVFILES_SUCCESS;
}

TEST(TextArguments, AreUtf8) {
    EXPECT_EQ(statusOf(""), TRVFILES_SUCCESS);
    EXPECT_EQ(statusOf("\xC3\xA9"), TRVFILES_SUCCESS);          // U+00E9
    EXPECT_EQ(statusOf("\xF0\x9F\x94\xA9"), TRVFILES_SUCCESS);  // U+1F529
    EXPECT_EQ(statusOf("\xEF\xBF\xBD"), TRVFILES_SUCCESS);      // U+FFFD
    EXPECT_EQ(statusOf("\xEF\xBB\xBF"
                       "a"),
              TRVFILES_SUCCESS);  // U+FEFF
    EXPECT_EQ(statusOf("\xE9"), TRVFILES_BAD_TEXT);
    EXPECT_EQ(statusOf("a\xC3"), TRVFILES_BAD_TEXT);
    EXPECT_EQ(statusOf("\xC0\x80"), TRVFILES_BAD_TEXT);          // an overlong zero
    EXPECT_EQ(statusOf("\xED\xA0\x80"), TRVFILES_BAD_TEXT);      // a surrogate
    EXPECT_EQ(statusOf("\xF4\x90\x80\x80"), TRVFILES_BAD_TEXT);  // above U+10FFFF
    EXPECT_EQ(statusOf(nullptr), TRVFILES_BAD_ARGUMENT);
}

TEST(TextArguments, HaveAMaximumLength) {
    std::string text(TRVFILES_MAX_TEXT_LENGTH, 'a');
    EXPECT_EQ(statusOf(text.c_str()), TRVFILES_SUCCESS);
    text += 'a';
    EXPECT_EQ(statusOf(text.c_str()), TRVFILES_BAD_TEXT);
}

TEST(TextArguments, WithALengthContainNoZero) {
    EXPECT_EQ(textArgument(std::string_view("ab")), "ab");
    EXPECT_THROW(textArgument(std::string_view("a\0b", 3)), Refusal);
}

TEST(TextArguments, KeepAByteOrderMark) {
    EXPECT_EQ(wideArgument("\xEF\xBB\xBF"
                           "a"),
              L"\xFEFF"
              L"a");
    EXPECT_EQ(utf8FromWide(L"\xFEFF"
                           L"a"),
              "\xEF\xBB\xBF"
              "a");
}

TEST(TextResults, AreCompleteUtf8) {
    EXPECT_EQ(utf8FromNarrow("Spannbock \xC3\xA9"), "Spannbock \xC3\xA9");
    // What becomes of the byte in the middle depends on the system.
    const std::string replaced = utf8FromNarrow("a\xE9z");
    EXPECT_EQ(textArgument(std::string_view(replaced)), replaced);
    EXPECT_EQ(replaced.front(), 'a');
    EXPECT_EQ(replaced.back(), 'z');
    EXPECT_EQ(utf8FromWide(L"\x4E2D"), "\xE4\xB8\xAD");
}

TEST(BytesArguments, MayBeNullIfThereAreNone) {
    EXPECT_EQ(bytesArgument(nullptr, 0), "");
    EXPECT_EQ(bytesArgument("ab", 1), "a");
    EXPECT_THROW(bytesArgument(nullptr, 1), Refusal);
}

}  // namespace
}  // namespace trv::c
