#include <cli/text_output.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <sstream>

namespace trv::cli {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

TEST(TextOutput, CountsInTheRightNumber) {
    const auto files = [](unsigned long long count) {
        return counted(count, QStringLiteral("file"), QStringLiteral("files")).toStdString();
    };
    EXPECT_EQ(files(0), "0 files");
    EXPECT_EQ(files(1), "1 file");
    EXPECT_EQ(files(18446744073709551615U), "18446744073709551615 files");
}

TEST(NumberText, IsTheShortestThatReadsBack) {
    EXPECT_EQ(numberText(0.1).toStdString(), "0.1");
    EXPECT_EQ(numberText(100).toStdString(), "100");
    EXPECT_EQ(numberText(-2.5).toStdString(), "-2.5");
    EXPECT_EQ(numberText(100000).toStdString(), "1e+05");
    EXPECT_EQ(numberText(0.1 + 0.2).toStdString(), "0.30000000000000004");
    EXPECT_EQ(numberText(5e-324).toStdString(), "5e-324");
    EXPECT_EQ(numberText(-1.7976931348623157e308).toStdString(), "-1.7976931348623157e+308");
}

TEST(NumberText, ReadsBackAsTheSameNumber) {
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> mantissa(-1, 1);
    std::uniform_int_distribution<int> exponent(-1000, 1000);
    for (int i = 0; i < 10000; ++i) {
        const double value = std::ldexp(mantissa(random), exponent(random));
        ASSERT_EQ(numberText(value).toDouble(), value);
    }
}

TEST(NumberText, NamesWhatIsNotFinite) {
    EXPECT_EQ(numberText(infinity).toStdString(), "inf");
    EXPECT_EQ(numberText(-infinity).toStdString(), "-inf");
    EXPECT_EQ(numberText(notANumber).toStdString(), "nan");
    EXPECT_EQ(numberText(-notANumber).toStdString(), "nan");
}

TEST(RoundedText, HasUpToSixDecimals) {
    EXPECT_EQ(roundedText(0.8660254037844387).toStdString(), "0.866025");
    EXPECT_EQ(roundedText(-0.49999999999999994).toStdString(), "-0.5");
    EXPECT_EQ(roundedText(-140).toStdString(), "-140");
    EXPECT_EQ(roundedText(100).toStdString(), "100");
    EXPECT_EQ(roundedText(20.5).toStdString(), "20.5");
    EXPECT_EQ(roundedText(0.000001).toStdString(), "0.000001");
    EXPECT_EQ(roundedText(123456789.125).toStdString(), "123456789.125");
}

TEST(RoundedText, HasNoZeroWithASign) {
    EXPECT_EQ(roundedText(-0.0).toStdString(), "0");
    EXPECT_EQ(roundedText(-4e-7).toStdString(), "0");
    EXPECT_EQ(roundedText(-6e-7).toStdString(), "-0.000001");
}

TEST(RoundedText, GivesUpDecimalsWhereThereAreNone) {
    EXPECT_EQ(roundedText(999999999999999).toStdString(), "999999999999999");
    EXPECT_EQ(roundedText(1e15).toStdString(), "1e+15");
    EXPECT_EQ(roundedText(-1e300).toStdString(), "-1e+300");
    EXPECT_EQ(roundedText(infinity).toStdString(), "inf");
    EXPECT_EQ(roundedText(-infinity).toStdString(), "-inf");
    EXPECT_EQ(roundedText(notANumber).toStdString(), "nan");
}

TEST(VectorText, SeparatesWithBlanks) {
    const double vector[] = {1, -0.1234567, infinity};
    EXPECT_EQ(vectorText(vector).toStdString(), "1 -0.1234567 inf");
    EXPECT_EQ(roundedVectorText(vector).toStdString(), "1 -0.123457 inf");
}

TEST(Shown, LeavesOrdinaryTextAlone) {
    EXPECT_EQ(shown(std::string(u8"Spannmittel ü€😀 \\ \"x\" %1")).toStdString(),
              u8"Spannmittel ü€😀 \\ \"x\" %1");
}

TEST(Shown, MakesControlCharactersVisible) {
    EXPECT_EQ(shown(std::string("a\nb\tc\x1b[31m\x7f")).toStdString(),
              "a\\x0ab\\x09c\\x1b[31m\\x7f");
    EXPECT_EQ(shown(std::string(u8"\u0085")).toStdString(), "\\x85");
}

TEST(JsonNumber, KeepsFiniteNumbersAndNamesTheOthers) {
    const double values[] = {0.1, 1e300, infinity, -infinity, notANumber};
    std::ostringstream out;
    printJson({{QStringLiteral("n"), jsonNumbers(values, 5)}}, out);
    EXPECT_EQ(out.str(), "{\"n\":[0.1,1e+300,\"inf\",\"-inf\",\"nan\"]}\n");
}

TEST(PrintJson, WritesUtf8OnOneLine) {
    std::ostringstream out;
    printJson({{QStringLiteral("b"), QString::fromUtf8(u8"ü\n\"")}, {QStringLiteral("a"), true}},
              out);
    EXPECT_EQ(out.str(), u8"{\"a\":true,\"b\":\"ü\\n\\\"\"}\n");
}

}  // namespace
}  // namespace trv::cli
