#include <cli/output_buffer.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>

namespace trv::cli {
namespace {

template <class Append>
std::string appended(Append append) {
    std::string text = "x";
    append(text);
    return text;
}

std::string rounded(double value) {
    return appended([value](std::string& text) { appendRounded(text, value); });
}

std::string json(double value) {
    return appended([value](std::string& text) { appendJsonNumber(text, value); });
}

TEST(OutputBuffer, PassesOnLargeBlocksAndTheRestAtItsEnd) {
    std::ostringstream out;
    {
        OutputBuffer buffer(out);
        buffer.text() += "a";
        buffer.endPiece();
        EXPECT_EQ(out.str(), "");
        buffer.text().append(65536, 'b');
        buffer.endPiece();
        EXPECT_EQ(out.str().size(), 65537U);
        buffer.text() += "c";
        buffer.endPiece();
        EXPECT_EQ(out.str().size(), 65537U);
    }
    EXPECT_EQ(out.str().substr(65535), "bbc");
}

TEST(OutputBuffer, PassesOnEverythingWhenItIsAsked) {
    std::ostringstream out;
    OutputBuffer buffer(out);
    buffer.text() += "a";
    buffer.flush();
    EXPECT_EQ(out.str(), "a");
    EXPECT_EQ(buffer.text(), "");
}

TEST(AppendRounded, LeavesTheTextBeforeTheNumber) {
    std::string text = "100";
    appendRounded(text, 0.5);
    EXPECT_EQ(text, "1000.5");
    text = "1.500";
    appendRounded(text, 1e-9);
    EXPECT_EQ(text, "1.5000");
}

TEST(AppendRounded, RoundsToSixDecimals) {
    EXPECT_EQ(rounded(-2.5), "x-2.5");
    EXPECT_EQ(rounded(300), "x300");
    EXPECT_EQ(rounded(1.2345678), "x1.234568");
    EXPECT_EQ(rounded(0.9999999), "x1");
    EXPECT_EQ(rounded(-0.0), "x0");
    EXPECT_EQ(rounded(-4e-7), "x0");
    EXPECT_EQ(rounded(999999999999999), "x999999999999999");
    EXPECT_EQ(rounded(1e15), "x1e+15");
    EXPECT_EQ(rounded(std::nan("")), "xnan");
    EXPECT_EQ(rounded(-std::numeric_limits<double>::infinity()), "x-inf");
}

TEST(AppendRoundedVector, SeparatesWithBlanks) {
    const double vector[] = {1, -0.25, 0};
    EXPECT_EQ(appended([&](std::string& text) { appendRoundedVector(text, vector); }),
              "x1 -0.25 0");
}

TEST(AppendInteger, PrintsEveryInteger) {
    EXPECT_EQ(appended([](std::string& text) {
                  appendInteger(text, std::numeric_limits<long long>::min());
              }),
              "x-9223372036854775808");
}

TEST(AppendJsonNumber, WritesWholeNumbersWithoutAnExponent) {
    EXPECT_EQ(json(100000), "x100000");
    EXPECT_EQ(json(-0.0), "x0");
    EXPECT_EQ(json(0.1 + 0.2), "x0.30000000000000004");
    EXPECT_EQ(json(-1e-9), "x-1e-09");
    EXPECT_EQ(json(1e300), "x1e+300");
}

TEST(AppendJsonNumber, QuotesWhatJsonCannotHold) {
    EXPECT_EQ(json(-std::nan("")), "x\"nan\"");
    EXPECT_EQ(json(std::numeric_limits<double>::infinity()), "x\"inf\"");
}

}  // namespace
}  // namespace trv::cli
