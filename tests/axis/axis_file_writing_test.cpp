#include <tests/axis/axis_sample.h>
#include <trvfiles/axis/axis_file.h>
#include <trvfiles/support/platform.h>

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

using namespace trv::testing;

TEST_F(AxisFile, HoldsTheIdentityInNineLines) {
    EXPECT_EQ(written(identity), "      0\n" + identityLines + identityLines);
}

TEST_F(AxisFile, HoldsATranslationInTheFourthColumn) {
    EXPECT_EQ(written(translation(10, 20, 30)),
              "      1\n"
              "      1.000000      0.000000      0.000000     10.000000\n"
              "      0.000000      1.000000      0.000000     20.000000\n"
              "      0.000000      0.000000      1.000000     30.000000\n"
              "      0.000000      0.000000      0.000000      1.000000\n"
              "      1.000000      0.000000      0.000000    -10.000000\n"
              "      0.000000      1.000000      0.000000    -20.000000\n"
              "      0.000000      0.000000      1.000000    -30.000000\n"
              "      0.000000      0.000000      0.000000      1.000000\n");
}

TEST_F(AxisFile, HoldsTheMatrixTransposedAndItsInverse) {
    // The determinant of the block is 2. Its inverse was computed by hand.
    EXPECT_EQ(written({1, 2, 0, 0.25, 0, 1, 0, 0.5, 0, 3, 2, 0.75, 4, 5, 6, 8}),
              "      1\n"
              "      1.000000      0.000000      0.000000      4.000000\n"
              "      2.000000      1.000000      3.000000      5.000000\n"
              "      0.000000      0.000000      2.000000      6.000000\n"
              "      0.250000      0.500000      0.750000      8.000000\n"
              "      1.000000      0.000000      0.000000     -4.000000\n"
              "     -2.000000      1.000000     -1.500000     12.000000\n"
              "      0.000000      0.000000      0.500000     -3.000000\n"
              "      0.000000      0.000000      0.000000      1.000000\n");
}

TEST_F(AxisFile, EndsLinesAsTheSystemDoes) {
    written(identity, 1, 2, 3);
    const std::string bytes = bytesOf(directory_ / "written");
    const bool windows = std::filesystem::path::preferred_separator == '\\';
    EXPECT_EQ(bytes.substr(0, 9), windows ? "      0\r\n" : "      0\n ");
    EXPECT_EQ(bytes.size(), 8U + 8 * 57 + 9 + (windows ? 10 : 0));
}

TEST_F(AxisFile, AddsATagLineWhenNoTagIsNegative) {
    const std::string nineLines = "      0\n" + identityLines + identityLines;
    EXPECT_EQ(written(identity, 3, 0, 7), nineLines + "  #3 0 7\n");
    EXPECT_EQ(written(identity, 0, 0, 0), nineLines + "  #0 0 0\n");
    EXPECT_EQ(written(identity, INT_MAX, 12, 345), nineLines + "  #2147483647 12 345\n");
    EXPECT_EQ(written(identity, 3, -1, 7), nineLines);
    EXPECT_EQ(written(identity, -1, 0, 0), nineLines);
    EXPECT_EQ(written(identity, 0, 0, INT_MIN), nineLines);
}

TEST_F(AxisFile, SetsTheFlagForADifferenceOfMoreThanAMillionth) {
    for (std::size_t element = 0; element < 16; ++element) {
        SCOPED_TRACE(element);
        for (const double less : {1e-7, -1e-7}) {
            EXPECT_EQ(written(identityBut(element, identity[element] + less)).substr(0, 8),
                      "      0\n");
        }
        for (const double more : {2e-6, -2e-6, 1.0, -infinity}) {
            EXPECT_EQ(written(identityBut(element, identity[element] + more)).substr(0, 8),
                      "      1\n");
        }
        if (identity[element] != 0) continue;
        EXPECT_FALSE(trv::differsFromIdentity(identityBut(element, 1e-6)));
        EXPECT_FALSE(trv::differsFromIdentity(identityBut(element, -1e-6)));
        EXPECT_TRUE(trv::differsFromIdentity(identityBut(element, std::nextafter(1e-6, 1))));
        EXPECT_TRUE(trv::differsFromIdentity(identityBut(element, -std::nextafter(1e-6, 1))));
    }
}

TEST_F(AxisFile, NeverTreatsANanAsADifference) {
    for (std::size_t element = 0; element < 16; ++element)
        EXPECT_EQ(written(identityBut(element, not_a_number)).substr(0, 8), "      0\n");
    Matrix matrix = translation(0, 0, 1);
    matrix[0] = not_a_number;
    EXPECT_EQ(written(matrix).substr(0, 8), "      1\n");
}

TEST_F(AxisFile, WidensItsColumnsForLongNumbers) {
    const auto lines = writtenLines(translation(99999.999999, 100000, 123456789));
    EXPECT_EQ(lines[2], "      1.000000      0.000000      0.000000  99999.999999");
    EXPECT_EQ(lines[3], "      0.000000      1.000000      0.000000  100000.000000");
    EXPECT_EQ(lines[4], "      0.000000      0.000000      1.000000  123456789.000000");
    EXPECT_EQ(lines[6], "      1.000000      0.000000      0.000000  -99999.999999");

    const auto negative = writtenLines(translation(-9999.999999, -10000, 99999.9999996));
    EXPECT_EQ(negative[2], "      1.000000      0.000000      0.000000  -9999.999999");
    EXPECT_EQ(negative[3], "      0.000000      1.000000      0.000000  -10000.000000");
    EXPECT_EQ(negative[4], "      0.000000      0.000000      1.000000  100000.000000");
}

TEST_F(AxisFile, WritesNanAndInfinityInTwelveColumns) {
    Matrix matrix = translation(not_a_number, infinity, -infinity);
    matrix[3] = -not_a_number;
    const auto lines = writtenLines(matrix);
    EXPECT_EQ(lines[1], "      1");
    EXPECT_EQ(lines[2], "      1.000000      0.000000      0.000000           nan");
    EXPECT_EQ(lines[3], "      0.000000      1.000000      0.000000           inf");
    EXPECT_EQ(lines[4], "      0.000000      0.000000      1.000000          -inf");
    EXPECT_EQ(lines[5], "           nan      0.000000      0.000000      1.000000");
}

TEST_F(AxisFile, WritesNansForTheInverseOfANan) {
    const auto lines = writtenLines(identityBut(0, not_a_number));
    const std::string nans = "           nan           nan           nan           nan";
    EXPECT_EQ(lines[2], "           nan      0.000000      0.000000      0.000000");
    EXPECT_EQ(lines[6], nans);
    EXPECT_EQ(lines[7], nans);
    EXPECT_EQ(lines[8], nans);
    EXPECT_EQ(lines[9], "      0.000000      0.000000      0.000000      1.000000");
}

TEST_F(AxisFile, WritesTheSignOfAZeroAsItWasGivenButNoneInTheInverse) {
    Matrix matrix = identityBut(4, -0.0);
    matrix[12] = -1e-9;
    matrix[13] = 0.0;
    const auto lines = writtenLines(matrix);
    EXPECT_EQ(lines[2], "      1.000000     -0.000000      0.000000     -0.000000");
    EXPECT_EQ(lines[6], "      1.000000      0.000000      0.000000      0.000000");
    EXPECT_EQ(lines[7], "      0.000000      1.000000      0.000000      0.000000");
}

TEST_F(AxisFile, WritesLinesOfAnyLengthInFull) {
    Matrix matrix = identity;
    matrix[4] = 1e300;
    matrix[12] = -1e308;
    char expected[1000];
    std::snprintf(expected, sizeof expected, "  %12.6f  %12.6f  %12.6f  %12.6f", 1.0, 1e300, 0.0,
                  -1e308);
    const auto lines = writtenLines(matrix);
    ASSERT_EQ(lines.size(), 10U);
    EXPECT_EQ(lines[2].size(), 657U);
    EXPECT_EQ(lines[2], expected);
    EXPECT_EQ(lines[3], "      0.000000      1.000000      0.000000      0.000000");
}

TEST_F(AxisFile, WritesZerosForANullMatrix) {
    const std::string zeros = "      0.000000      0.000000      0.000000      0.000000\n";
    EXPECT_EQ(files_.writeAxis(L"zeros", nullptr, 1, 2, 3), eFileIOSuccess);
    std::string expected = "      1\n";
    for (int line = 2; line <= 9; ++line)
        expected += zeros;
    EXPECT_EQ(textOf(directory_ / "zeros"), expected + "  #1 2 3\n");
}

TEST_F(AxisFile, ReplacesALongerFile) {
    writeBytes(directory_ / "written", std::string(5000, 'x'));
    EXPECT_EQ(written(identity), "      0\n" + identityLines + identityLines);
}
