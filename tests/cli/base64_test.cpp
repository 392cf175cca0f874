#include <cli/base64.h>

#include <QByteArray>
#include <gtest/gtest.h>

#include <random>
#include <string>

namespace trv::cli {
namespace {

std::string base64(std::string_view bytes) {
    std::string text;
    appendBase64(text, bytes);
    return text;
}

// The vectors of RFC 4648.
TEST(Base64, IsThatOfTheStandard) {
    EXPECT_EQ(base64(""), "");
    EXPECT_EQ(base64("f"), "Zg==");
    EXPECT_EQ(base64("fo"), "Zm8=");
    EXPECT_EQ(base64("foo"), "Zm9v");
    EXPECT_EQ(base64("foobar"), "Zm9vYmFy");
    EXPECT_EQ(base64("\xFB\xFF\xFE"), "+//+");
}

TEST(Base64, IsAppended) {
    std::string text = "x";
    appendBase64(text, "foo");
    appendBase64(text, "ba");
    EXPECT_EQ(text, "xZm9vYmE=");
}

TEST(Base64, GivesBackAnyBytes) {
    std::mt19937 random(1);
    for (std::size_t length = 0; length < 1000; ++length) {
        std::string bytes;
        for (std::size_t i = 0; i < length; ++i)
            bytes += static_cast<char>(random() & 0xFF);
        ASSERT_EQ(QByteArray::fromBase64(QByteArray::fromStdString(base64(bytes))).toStdString(),
                  bytes);
    }
}

}  // namespace
}  // namespace trv::cli
