#include <tests/common/child_process.h>
#include <tests/common/host_locale.h>
#include <trvfiles/support/number_text.h>
#include <trvfiles/support/platform.h>

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <vector>

using trv::append_decimal;
using trv::append_fixed;
using trv::scan_decimal;
using trv::scan_number;
using trv::skip_white_space;
using namespace std::string_literals;
using namespace std::string_view_literals;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();

std::string fixed(double value, int width = 0) {
    std::string text;
    append_fixed(text, value, width);
    return text;
}

std::string decimal(int value) {
    std::string text;
    append_decimal(text, value);
    return text;
}

/// The result of a scan, and the rest of the text.
template <class Number>
struct Scan {
    bool found;
    Number value;
    std::string rest;
};

Scan<double> number(std::string_view text) {
    double value = -77;
    const bool found = scan_number(text, value);
    return {found, value, std::string(text)};
}

Scan<int> integer(std::string_view text) {
    int value = -77;
    const bool found = scan_decimal(text, value);
    return {found, value, std::string(text)};
}

void expectNumber(std::string_view text, double value, const std::string& rest = "") {
    SCOPED_TRACE("'" + std::string(text) + "'");
    const Scan<double> scan = number(text);
    EXPECT_TRUE(scan.found);
    EXPECT_EQ(scan.value, value);
    EXPECT_EQ(std::signbit(scan.value), std::signbit(value));
    EXPECT_EQ(scan.rest, rest);
}

void expectNoNumber(std::string_view text) {
    SCOPED_TRACE("'" + std::string(text) + "'");
    const Scan<double> scan = number(text);
    EXPECT_FALSE(scan.found);
    EXPECT_EQ(scan.value, -77);
    EXPECT_EQ(scan.rest, text);
}

void expectInteger(std::string_view text, int value, const std::string& rest = "") {
    SCOPED_TRACE("'" + std::string(text) + "'");
    const Scan<int> scan = integer(text);
    EXPECT_TRUE(scan.found);
    EXPECT_EQ(scan.value, value);
    EXPECT_EQ(scan.rest, rest);
}

void expectNoInteger(std::string_view text) {
    SCOPED_TRACE("'" + std::string(text) + "'");
    const Scan<int> scan = integer(text);
    EXPECT_FALSE(scan.found);
    EXPECT_EQ(scan.value, -77);
    EXPECT_EQ(scan.rest, text);
}

std::string printed(const char* format, double value) {
    char text[400];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

double fromBits(std::uint64_t bits) {
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

}  // namespace

TEST(NumberText, WritesSixDecimals) {
    EXPECT_EQ(fixed(0), "0.000000");
    EXPECT_EQ(fixed(2.5), "2.500000");
    EXPECT_EQ(fixed(-10), "-10.000000");
    EXPECT_EQ(fixed(0.1), "0.100000");
    EXPECT_EQ(fixed(123456.789), "123456.789000");
}

TEST(NumberText, RoundsToTheSixthDecimal) {
    EXPECT_EQ(fixed(0.0000004), "0.000000");
    EXPECT_EQ(fixed(0.0000006), "0.000001");
    EXPECT_EQ(fixed(0.9999996), "1.000000");
    EXPECT_EQ(fixed(99999.9999996), "100000.000000");
    // Both numbers are exact in binary and half way between two decimals, so the even sixth decimal
    // is used.
    EXPECT_EQ(fixed(0.0000152587890625), "0.000015");
    EXPECT_EQ(fixed(1.0 / 128), "0.007812");
    EXPECT_EQ(fixed(3.0 / 128), "0.023438");
}

TEST(NumberText, KeepsTheSignOfANegativeZero) {
    EXPECT_EQ(fixed(-0.0), "-0.000000");
    EXPECT_EQ(fixed(-1e-9), "-0.000000");
}

TEST(NumberText, AlignsToTheRightAndWidensForALongNumber) {
    EXPECT_EQ(fixed(1, 12), "    1.000000");
    EXPECT_EQ(fixed(-1, 12), "   -1.000000");
    EXPECT_EQ(fixed(99999.999999, 12), "99999.999999");
    EXPECT_EQ(fixed(-9999.999999, 12), "-9999.999999");
    EXPECT_EQ(fixed(100000, 12), "100000.000000");
    EXPECT_EQ(fixed(-10000, 12), "-10000.000000");
    EXPECT_EQ(fixed(1, 0), "1.000000");
}

TEST(NumberText, WritesNanWithoutASignAndBothInfinities) {
    EXPECT_EQ(fixed(not_a_number), "nan");
    EXPECT_EQ(fixed(-not_a_number), "nan");
    EXPECT_EQ(fixed(fromBits(0xFFF4000000000001)), "nan");
    EXPECT_EQ(fixed(infinity), "inf");
    EXPECT_EQ(fixed(-infinity), "-inf");
    EXPECT_EQ(fixed(not_a_number, 12), "         nan");
    EXPECT_EQ(fixed(-infinity, 12), "        -inf");
}

TEST(NumberText, WritesANumberOfMaxLengthInFull) {
    const std::string text = fixed(std::numeric_limits<double>::lowest(), 12);
    EXPECT_EQ(text.size(), 317U);
    EXPECT_EQ(text.substr(0, 22), "-179769313486231570814");
    EXPECT_EQ(text, printed("%.6f", std::numeric_limits<double>::lowest()));
}

TEST(NumberText, AppendsToTheEarlierText) {
    std::string text = "x";
    append_fixed(text, 1.5, 10);
    append_decimal(text, 7);
    EXPECT_EQ(text, "x  1.5000007");
}

TEST(NumberText, WritesAsPrintfDoesForNumbersOfEverySize) {
    std::mt19937_64 random(1);
    for (int i = 0; i < 20000; ++i) {
        const double value = fromBits(random());
        if (std::isnan(value)) continue;
        ASSERT_EQ(fixed(value, 12), printed("%12.6f", value));
        const double ordinary = std::ldexp(static_cast<double>(random() >> 11), -40);
        ASSERT_EQ(fixed(ordinary), printed("%.6f", ordinary));
    }
}

TEST(NumberText, WritesIntegersUpToBothEnds) {
    EXPECT_EQ(decimal(0), "0");
    EXPECT_EQ(decimal(-1), "-1");
    EXPECT_EQ(decimal(INT_MAX), "2147483647");
    EXPECT_EQ(decimal(INT_MIN), "-2147483648");
}

TEST(NumberText, ReadsPlainNumbersOfAnyLength) {
    expectNumber("123456789012345", 123456789012345);
    expectNumber("-12345678.9012345", -12345678.9012345);
    expectNumber(".123456789012345", .123456789012345);
    expectNumber("1234567890123456", 1234567890123456);
    expectNumber("123456789012345.6", 123456789012345.6);
    expectNumber("1.234567890123456", 1.234567890123456);
    expectNumber("-.1234567890123456", -.1234567890123456);
    expectNumber("0.000000000000001", 1e-15);
    expectNumber("0.0000000000000001", 1e-16);
    expectNumber("100000000000000.", 1e14);
    expectNumber("1000000000000000.", 1e15);
    expectNumber("9007199254740993", 9007199254740992);
    expectNumber("-0", -0.0);
    expectNumber("-0.", -0.0);
    expectNumber("-.0 ", -0.0, " ");
}

TEST(NumberText, EndsAPlainNumberAtTheSamePlaceAsStrtod) {
    expectNumber("1.5\v2", 1.5, "\v2");
    expectNumber("1.5,2", 1.5, ",2");
    expectNumber("1.5-2", 1.5, "-2");
    expectNumber("1.5.2", 1.5, ".2");
    expectNumber("1.5e", 1.5, "e");
    expectNumber("1.5e2 ", 150, " ");
    expectNumber("-7#", -7, "#");
    expectNumber(std::string_view("1.5\0", 4), 1.5, std::string(1, '\0'));
    expectNumber(std::string_view("1.59", 3), 1.5);
    expectNoNumber(".");
    expectNoNumber("-");
    expectNoNumber("-. 1");
}

TEST(NumberText, ReadsPlainNumbersAsStrtodDoes) {
    std::mt19937_64 random(3);
    for (int i = 0; i < 50000; ++i) {
        std::string text = random() % 2 == 0 ? "" : "-";
        const std::size_t places = random() % 17;
        const std::size_t decimals = random() % 17;
        for (std::size_t place = 0; place < places; ++place)
            text += static_cast<char>('0' + random() % 10);
        text += '.';
        for (std::size_t place = 0; place < decimals; ++place)
            text += static_cast<char>('0' + random() % 10);
        if (places + decimals != 0) expectNumber(text, std::strtod(text.c_str(), nullptr));
    }
}

TEST(NumberText, ReadsNumbersInEveryOrdinaryForm) {
    expectNumber("1", 1);
    expectNumber("+1.5", 1.5);
    expectNumber("-.5", -0.5);
    expectNumber("5.", 5);
    expectNumber("1e3", 1000);
    expectNumber("1E+3", 1000);
    expectNumber("25e-1", 2.5);
    expectNumber("-0.0", -0.0);
    expectNumber("0x1p4", 16);
    expectNumber("-0X1.8p1", -3);
    expectNumber("0x10", 16);
    expectNumber("000000000000000000000000000000012.50", 12.5);
}

TEST(NumberText, ReadsTheLongestPrefixThatIsANumber) {
    expectNumber("1x", 1, "x");
    expectNumber("1e", 1, "e");
    expectNumber("1e+", 1, "e+");
    expectNumber("1.5.5", 1.5, ".5");
    expectNumber("1-2", 1, "-2");
    expectNumber("1,5", 1, ",5");
    expectNumber("0x", 0, "x");
    expectNumber("0xg", 0, "xg");
    expectNumber("0x1p", 1, "p");
    expectNumber("infinit", infinity, "init");
    expectNumber("1 2", 1, " 2");
}

TEST(NumberText, ReadsInfinityAndNanInAnyCase) {
    expectNumber("inf", infinity);
    expectNumber("-INF", -infinity);
    expectNumber("+Infinity", infinity);
    for (const char* text : {"nan", "NaN", "-nan", "nan(1)", "NAN(a_0)"}) {
        const Scan<double> scan = number(text);
        EXPECT_TRUE(scan.found && std::isnan(scan.value)) << text;
        EXPECT_EQ(scan.rest, "") << text;
    }
    EXPECT_EQ(number("nan(").rest, "(");
    EXPECT_EQ(number("nan(-)x").rest, "(-)x");
}

TEST(NumberText, ReadsNumbersBeyondTheRangeAsInfinityOrZero) {
    expectNumber("1e400", infinity);
    expectNumber("-1e400", -infinity);
    expectNumber("1e99999999999999999999", infinity);
    expectNumber("1e-400", 0);
    expectNumber("-1e-400", -0.0);
    expectNumber("1e-99999999999999999999", 0);
    expectNumber("1.7976931348623157e308", std::numeric_limits<double>::max());
    expectNumber("4.9406564584124654e-324", std::numeric_limits<double>::denorm_min());
    expectNumber("0e99999999999999999999", 0);
    expectNumber("1" + std::string(400, '0') + "e-400", 1);
    expectNumber("0." + std::string(400, '0') + "1e401", 1);
    expectNumber("1" + std::string(400, '0'), infinity);
    expectNumber("." + std::string(400, '0') + "1", 0);
    expectNumber("0x1p5000", infinity);
    expectNumber("-0x.0001p5000", -infinity);
    expectNumber("0x1p-5000", 0);
    expectNumber("-0x1000p-5000", -0.0);
    expectNumber("0x0p5000", 0);
    expectNumber("0x1" + std::string(300, '0'), infinity);
    expectNumber("0x." + std::string(300, '0') + "1", 0);
}

TEST(NumberText, SkipsWhiteSpaceBeforeANumber) {
    expectNumber(" \t\n\v\f\r7", 7);
    expectInteger(" \t\n\v\f\r7", 7);
}

TEST(NumberText, DoesNotChangeATextWithoutANumber) {
    for (const char* text : {"", " ", "x", " x", "+", "-", ".", "-.", "e5", ".e5", "+-1", "- 1",
                             ",5", "i", "na", "#", "(1)"})
        expectNoNumber(text);
    for (const char* text : {"", " ", "x", " x", "+", "-", ".5", "+-1", "- 1", "#4"})
        expectNoInteger(text);
    expectNoNumber("\0001"sv);
    expectNoInteger("\0001"sv);
    expectNoNumber("\xC2\xA0\x31");
}

TEST(NumberText, StopsAtAZeroByteAndAtTheEndOfTheView) {
    expectNumber("12\0003"sv, 12, "\0003"s);
    expectNumber(std::string_view("12345").substr(0, 3), 123);
    expectNumber(std::string_view("1e5").substr(0, 2), 1, "e");
    expectInteger(std::string_view("12345").substr(0, 3), 123);
    expectNoNumber(std::string_view());
    expectNoInteger(std::string_view());
}

TEST(NumberText, ReadsNumbersAsStrtodDoes) {
    constexpr std::string_view letters = "00112357899..++--eEeExXpPinfatyINFATY()_ \t";
    std::mt19937 random(2);
    std::uniform_int_distribution<std::size_t> letter(0, letters.size() - 1);
    std::uniform_int_distribution<int> length(1, 14);
    for (int i = 0; i < 300000; ++i) {
        std::string text;
        for (int left = length(random); left > 0; --left)
            text += letters[letter(random)];
        // On Windows strtod accepts any characters between the brackets of a NaN.
        if (trv::platform::backslash_separates() && text.find('(') != std::string::npos) continue;
        char* end = nullptr;
        const double expected = std::strtod(text.c_str(), &end);
        const Scan<double> scan = number(text);
        ASSERT_EQ(scan.found, end != text.c_str()) << "'" << text << "'";
        ASSERT_EQ(scan.rest, end) << "'" << text << "'";
        if (!scan.found) continue;
        if (std::isnan(expected)) {
            ASSERT_TRUE(std::isnan(scan.value)) << "'" << text << "'";
        } else {
            ASSERT_EQ(scan.value, expected) << "'" << text << "'";
            ASSERT_EQ(std::signbit(scan.value), std::signbit(expected)) << "'" << text << "'";
        }
    }
}

TEST(NumberText, ReadsBackWhatPrintfWritesWithSeventeenDigits) {
    std::mt19937_64 random(3);
    for (int i = 0; i < 20000; ++i) {
        const double value = fromBits(random());
        if (std::isnan(value)) continue;
        const Scan<double> scan = number(printed("%.17g", value));
        ASSERT_TRUE(scan.found);
        ASSERT_EQ(scan.value, value);
    }
}

TEST(NumberText, ReadsIntegersWithTheirSign) {
    expectInteger("42", 42);
    expectInteger("+5", 5);
    expectInteger("-4 0", -4, " 0");
    expectInteger("007", 7);
    expectInteger("0x10", 0, "x10");
    expectInteger("1.5", 1, ".5");
    expectInteger("1e3", 1, "e3");
    expectInteger("12x", 12, "x");
}

TEST(NumberText, ClampsIntegersToTheirRange) {
    expectInteger("2147483647", INT_MAX);
    expectInteger("2147483648", INT_MAX);
    expectInteger("4294967296", INT_MAX);
    expectInteger("99999999999999999999999999 x", INT_MAX, " x");
    expectInteger("-2147483648", INT_MIN);
    expectInteger("-2147483649", INT_MIN);
    expectInteger("-99999999999999999999999999", INT_MIN);
    expectInteger("000000000000000000000000000000001", 1);
}

TEST(NumberText, TreatsSixCharactersAsWhiteSpaceAndNoOthers) {
    std::string_view text = " \t\n\v\f\r \x1C";
    skip_white_space(text);
    EXPECT_EQ(text, "\x1C");
    for (int code = 0; code < 256; ++code) {
        const char character = static_cast<char>(code);
        std::string_view one(&character, 1);
        skip_white_space(one);
        const bool blank = std::memchr(" \t\n\v\f\r", code, 6) != nullptr;
        EXPECT_EQ(one.empty(), blank) << code;
    }
    std::string_view empty;
    skip_white_space(empty);
    EXPECT_TRUE(empty.empty());
}

TEST(NumberText, UsesAPointUnderALocaleWithACommaToo) {
    if (!trv::testing::can_fork) GTEST_SKIP() << "needs a child process";
    const trv::testing::HostLocale german("UTF-8");
    if (!german.exists()) GTEST_SKIP() << "localedef cannot compile a locale here";
    EXPECT_TRUE(trv::testing::passesInChild([&] {
        ASSERT_TRUE(german.adopt());
        EXPECT_EQ(fixed(1234567.5, 12), "1234567.500000");
        EXPECT_EQ(decimal(1234567), "1234567");
        expectNumber("2.500000", 2.5);
        expectNumber("2,500000", 2, ",500000");
        expectNumber("1.234.567", 1.234, ".567");
        expectNumber("0x1.8p0", 1.5);
        expectInteger("1.234", 1, ".234");
    }));
}
