#include <trvfiles/assembly/number_reading.h>

#include <QString>
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>

namespace trv {
namespace {

std::uint64_t bitsOf(double value) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

void expectNumber(double expected, const std::string& text) {
    double value = 77;
    EXPECT_TRUE(readNumber(text, value)) << text;
    EXPECT_EQ(bitsOf(expected), bitsOf(value)) << text;
}

void expectNoNumber(const std::string& text, double expected = 0) {
    double value = 77;
    EXPECT_FALSE(readNumber(text, value)) << text;
    EXPECT_EQ(expected, value) << text;
}

TEST(NumberReading, ReadsNumbers) {
    expectNumber(0, "0");
    expectNumber(-0.0, "-0");
    expectNumber(-0.0, "-0.000");
    expectNumber(7, "007");
    expectNumber(-12.5, "-12.5");
    expectNumber(12, "12.");
    expectNumber(0.5, ".5");
    expectNumber(3, "+3");
    expectNumber(3, " 3\t");
    expectNumber(1500, "1.5e3");
    expectNumber(std::numeric_limits<double>::infinity(), "inf");
}

// 15 digits, an exact quotient of two doubles, and more, which need more bits.
TEST(NumberReading, RoundsCorrectly) {
    expectNumber(0.1, "0.1");
    expectNumber(0.3, "0.3");
    expectNumber(123456789.012345, "123456789.012345");
    expectNumber(999999999999999, "999999999999999");
    expectNumber(0.00000000000001, "0.00000000000001");
    expectNumber(9007199254740992, "9007199254740993");
    expectNumber(0x1.0000000000001p0, "1.0000000000000002");
    expectNumber(std::numeric_limits<double>::max(), "1.7976931348623157e308");
    expectNumber(std::numeric_limits<double>::denorm_min(), "5e-324");
}

TEST(NumberReading, RefusesWhatIsNoNumber) {
    for (const char* text : {"", "-", ".", "-.", "1.2.3", "1,5", "-14O", "1 2", "0x10", "--1", "1e",
                             "1-", "1.-", "NaN1"}) {
        expectNoNumber(text);
    }
    expectNoNumber("1e999", std::numeric_limits<double>::infinity());
    expectNoNumber("-1e999", -std::numeric_limits<double>::infinity());
}

// Texts of the characters that numbers contain.
TEST(NumberReading, ReadsRandomTextsLikeQt) {
    constexpr char characters[] = "0123456789012345678900..-+e ";
    std::mt19937_64 random(20261122);
    for (int i = 0; i < 300000; ++i) {
        std::string text;
        for (std::size_t left = random() % 20; left > 0; --left)
            text += characters[random() % (sizeof characters - 1)];
        bool isNumber = false;
        const double expected = QString::fromStdString(text).toDouble(&isNumber);
        double value = 77;
        ASSERT_EQ(isNumber, readNumber(text, value)) << text;
        ASSERT_EQ(bitsOf(expected), bitsOf(value)) << text;
    }
}

}  // namespace
}  // namespace trv
