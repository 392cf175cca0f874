#include <cli/text_escapes.h>

#include <gtest/gtest.h>

namespace trv::cli {
namespace {

std::string appendedText(const char* text) {
    std::string out = "x";
    appendEscapedText(out, QString::fromUtf8(text));
    return out;
}

std::string jsonString(const char* text) {
    std::string out;
    appendJsonString(out, QString::fromUtf8(text));
    return out;
}

TEST(EscapedText, EscapesBackslashesAndHiddenCharacters) {
    EXPECT_EQ(escapedText(QString::fromUtf8(u8"a\\\n\u202e\U000e0041Ø")).toStdString(),
              u8"a\\\\\\x0a\\u202e\\U000e0041Ø");
}

TEST(AppendEscapedText, AppendsUtf8OfEveryLength) {
    EXPECT_EQ(appendedText(u8"a\u07ff\u0800\ufffd\U00010000\U0010fffd"),
              u8"xa\u07ff\u0800\ufffd\U00010000\U0010fffd");
}

TEST(AppendEscapedText, EscapesLikeEscapedText) {
    EXPECT_EQ(appendedText(u8"\\\t\u202e\U000e0041"), "x\\\\\\x09\\u202e\\U000e0041");
}

TEST(EscapedJson, KeepsTheBackslashesOfJson) {
    EXPECT_EQ(escapedJson(QString::fromUtf8(u8"\"\\n\u202e\"")).toStdString(), "\"\\n\\u202e\"");
}

TEST(AppendJsonString, EscapesAsJsonRequires) {
    EXPECT_EQ(jsonString(u8"a\"b\\/Ø"), u8"\"a\\\"b\\\\/Ø\"");
    EXPECT_EQ(jsonString("\b\t\n\v\f\r\x1b\x7f"), "\"\\b\\t\\n\\u000b\\f\\r\\u001b\\u007f\"");
    EXPECT_EQ(jsonString(u8"\u202e\U000e0041"), "\"\\u202e\\udb40\\udc41\"");
}

}  // namespace
}  // namespace trv::cli
