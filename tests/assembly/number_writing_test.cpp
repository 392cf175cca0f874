#include <trvfiles/assembly/number_writing.h>

#include <QString>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>

namespace trv {
namespace {

std::string written(double value) {
    char text[maxNumberLength];
    return {text, writeNumber(text, value)};
}

std::string writtenByQt(double value) {
    return QString::number(value, 'g', 17).toStdString();
}

TEST(NumberWriting, WritesSeventeenDigits) {
    EXPECT_EQ("0", written(0.0));
    EXPECT_EQ("0", written(-0.0));
    EXPECT_EQ("1", written(1));
    EXPECT_EQ("-2.5", written(-2.5));
    EXPECT_EQ("0.10000000000000001", written(0.1));
    EXPECT_EQ("123456789.12345679", written(123456789.123456789));
    EXPECT_EQ("0.0001220703125", written(0.0001220703125));
    EXPECT_EQ("9007199254740991", written(9007199254740991));
    EXPECT_EQ("9007199254740992", written(9007199254740992));
    EXPECT_EQ("9007199254740994", written(9007199254740994));
    EXPECT_EQ("4503599627370495.5", written(4503599627370495.5));
}

TEST(NumberWriting, DropsNoZeroBeforeThePoint) {
    EXPECT_EQ("480", written(480));
    EXPECT_EQ("100000.5", written(100000.5));
    EXPECT_EQ("-1000000000000000", written(-1e15));
}

TEST(NumberWriting, ChoosesTheExponentLikePrintf) {
    EXPECT_EQ("0.0001", written(0.0001).substr(0, 6));
    EXPECT_EQ("9.9999999999999991e-05", written(std::nextafter(0.0001, 0)));
    EXPECT_EQ("1.0000000000000001e-05", written(1e-5));
    EXPECT_EQ("-5.0000000000000002e-05", written(-5e-5));
    EXPECT_EQ("3.0517578125e-05", written(std::ldexp(1, -15)));
    EXPECT_EQ("9.9999999999999991e-06", written(std::nextafter(1e-5, 0)));
    EXPECT_EQ("1.2246467991473532e-16", written(1.2246467991473532e-16));
    EXPECT_EQ("1e+17", written(1e17));
    EXPECT_EQ("10000000000000000", written(1e16));
    EXPECT_EQ("1.7976931348623157e+308", written(std::numeric_limits<double>::max()));
    EXPECT_EQ("4.9406564584124654e-324", written(std::numeric_limits<double>::denorm_min()));
    EXPECT_EQ("nan", written(-std::numeric_limits<double>::quiet_NaN()));
    EXPECT_EQ("-inf", written(-std::numeric_limits<double>::infinity()));
}

// 1 + 2^-17 is 1.00000762939453125: 18 digits, of which the last is a 5.
TEST(NumberWriting, RoundsHalvesUp) {
    EXPECT_EQ("1.0000076293945313", written(1 + std::ldexp(1, -17)));
    EXPECT_EQ("-1.0000076293945313", written(-1 - std::ldexp(1, -17)));
    EXPECT_EQ("1.0000228881835938", written(1 + 3 * std::ldexp(1, -17)));
    // 2^-25 has the smallest magnitude of all halves: 2.98023223876953125e-08.
    EXPECT_EQ("2.9802322387695313e-08", written(std::ldexp(1, -25)));
    EXPECT_EQ("1.4901161193847656e-08", written(std::ldexp(1, -26)));
}

TEST(NumberWriting, WritesRandomNumbersLikeQt) {
    std::mt19937_64 random(20261122);
    for (int i = 0; i < 300000; ++i) {
        const std::uint64_t bits = random();
        double value = 0;
        std::memcpy(&value, &bits, sizeof value);
        ASSERT_EQ(writtenByQt(value), written(value)) << bits;
    }
}

// Numbers with few binary places: whole ones, halves, quarters, up to 2^-30.
TEST(NumberWriting, WritesShortNumbersLikeQt) {
    std::mt19937_64 random(1);
    for (int i = 0; i < 300000; ++i) {
        const auto places = static_cast<int>(random() % 31);
        const auto digits = static_cast<double>(random() >> (11 + random() % 53));
        const double value = std::ldexp(random() % 2 == 0 ? digits : -digits, -places);
        ASSERT_EQ(writtenByQt(value), written(value));
    }
}

}  // namespace
}  // namespace trv
