#include <trvfiles/support/line_reading.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <string_view>

using namespace std::string_literals;

namespace {

// One byte more than a reader may use, which has to stay.
struct Buffer {
    char bytes[6] = {'#', '#', '#', '#', '#', '#'};
};

std::string next(std::string_view& text, std::size_t max) {
    Buffer buffer;
    const std::size_t length = trv::read_line(text, buffer.bytes, max);
    EXPECT_EQ(buffer.bytes[length], '\0');
    EXPECT_EQ(buffer.bytes[max + 1], '#');
    return std::string(buffer.bytes, length);
}

}  // namespace

TEST(ReadLineOfAText, TakesTheLinesWithTheirEnds) {
    std::string_view text = "ab\n\nc";
    EXPECT_EQ(next(text, 4), "ab\n");
    EXPECT_EQ(next(text, 4), "\n");
    EXPECT_EQ(next(text, 4), "c");
    EXPECT_EQ(next(text, 4), "");
    EXPECT_EQ(text, "");
}

TEST(ReadLineOfAText, TakesAtMostTheMaximum) {
    std::string_view text = "abc\nabcd\n";
    EXPECT_EQ(next(text, 4), "abc\n");
    EXPECT_EQ(next(text, 4), "abcd");
    EXPECT_EQ(next(text, 4), "\n");
}

TEST(ReadLineOfAText, KeepsZeros) {
    const std::string bytes = "a\0b\n"s;
    std::string_view text = bytes;
    EXPECT_EQ(next(text, 4), bytes);
}

TEST(ReadLineOfAText, TakesNothingFromTheEmptyText) {
    std::string_view text;
    EXPECT_EQ(next(text, 4), "");
}
