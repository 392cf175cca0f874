#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/axis/axis_file.h>
#include <trvfiles/facade/CQvFilesIO.h>
#include <trvfiles/support/CFileFault.h>
#include <trvfiles/support/platform.h>

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

using namespace std::string_literals;
using namespace trv::testing;
using Matrix = std::array<double, 16>;
using Tags = std::array<int, 3>;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
const double not_a_number = std::numeric_limits<double>::quiet_NaN();

const Matrix identity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

Matrix identityBut(std::size_t element, double value) {
    Matrix matrix = identity;
    matrix[element] = value;
    return matrix;
}

Matrix translation(double x, double y, double z) {
    return {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, x, y, z, 1};
}

/// Lines 2 to 5 of the identity, which are also lines 6 to 9.
const std::string identityLines =
    "      1.000000      0.000000      0.000000      0.000000\n"
    "      0.000000      1.000000      0.000000      0.000000\n"
    "      0.000000      0.000000      1.000000      0.000000\n"
    "      0.000000      0.000000      0.000000      1.000000\n";

class AxisFile : public ::testing::Test {
protected:
    /// The bytes that are written, without CRs.
    std::string written(const Matrix& matrix, int tag1 = -1, int tag2 = -1, int tag3 = -1) {
        EXPECT_EQ(files_.writeAxis(L"written", matrix.data(), tag1, tag2, tag3), eFileIOSuccess);
        return textOf(directory_ / "written");
    }

    /// The lines of written(), counted from 1.
    std::vector<std::string> writtenLines(const Matrix& matrix) {
        std::vector<std::string> lines(1);
        std::istringstream text(written(matrix));
        for (std::string line; std::getline(text, line);)
            lines.push_back(line);
        return lines;
    }

    struct Reading {
        EFileIOStatus status;
        Matrix matrix;
        Tags tags;
    };

    /// Reads a file of these bytes into a matrix of 7s and the tags -7, -8 and -9.
    Reading read(const std::string& bytes) {
        writeBytes(directory_ / "read", bytes);
        Reading reading = {EFileIOStatus(), untouched, {-7, -8, -9}};
        reading.status = files_.readAxis(L"read", reading.matrix.data(), reading.tags[0],
                                         reading.tags[1], reading.tags[2]);
        return reading;
    }

    /// Reads an identity with this tag line.
    Tags tagsOf(const std::string& tagLine) {
        const Reading reading = read("0\n" + identityLines + identityLines + tagLine);
        EXPECT_EQ(reading.status, eFileIOSuccess) << tagLine;
        EXPECT_EQ(reading.matrix, identity) << tagLine;
        return reading.tags;
    }

    /// Reads a file with this second line, followed by the lines of the identity.
    Reading readWithFirstRow(const std::string& row) {
        return read("0\n" + row + identityLines.substr(identityLines.find('\n')));
    }

    void expectRefused(const std::string& bytes) {
        SCOPED_TRACE(bytes);
        const Reading reading = read(bytes);
        EXPECT_EQ(reading.status, eFileIOContentError);
        EXPECT_EQ(reading.matrix, untouched);
        EXPECT_EQ(reading.tags, unset);
    }

    static constexpr Matrix untouched = {7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7};
    static constexpr Tags unset = {-7, -8, -9};

    TemporaryDirectory directory_;
    CQvFilesIO files_{directory_.wide()};
};

}  // namespace

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

TEST_F(AxisFile, ReadsAWrittenPlacementBack) {
    const double c = std::cos(0.5);
    const double s = std::sin(0.5);
    const Matrix placement = {c, s, 0, 0, -s, c, 0, 0, 0, 0, 1, 0, 1234.5, -0.25, 1e5, 1};
    const Reading reading = read(written(placement, 31, 0, INT_MAX));
    EXPECT_EQ(reading.status, eFileIOSuccess);
    for (std::size_t element = 0; element < 16; ++element)
        EXPECT_NEAR(reading.matrix[element], placement[element], 1e-6) << element;
    EXPECT_EQ(reading.tags, (Tags{31, 0, INT_MAX}));
    // The rotation of x to y, y to z and z to x is exact.
    const Matrix turn = {0, 1, 0, 0, 0, 0, 1, 0, 1, 0, 0, 0, 1, 2, 3, 1};
    EXPECT_EQ(read(written(turn)).matrix, turn);
    EXPECT_EQ(read(written(identity)).matrix, identity);
}

TEST_F(AxisFile, ReadsAScaleBackAsItsReciprocal) {
    const Matrix scale = {2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 1, 2, 3, 1};
    const auto lines = writtenLines(scale);
    EXPECT_EQ(lines[2], "      2.000000      0.000000      0.000000      1.000000");
    EXPECT_EQ(lines[3], "      0.000000      2.000000      0.000000      2.000000");
    EXPECT_EQ(lines[4], "      0.000000      0.000000      2.000000      3.000000");
    EXPECT_EQ(read(written(scale)).matrix,
              (Matrix{0.5, 0, 0, 0, 0, 0.5, 0, 0, 0, 0, 0.5, 0, 1, 2, 3, 1}));
}

TEST_F(AxisFile, ReadsAShearBackAsTheInverseOfItsTranspose) {
    EXPECT_EQ(read(written({1, 2, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 4, 5, 6, 1})).matrix,
              (Matrix{1, 0, 0, 0, -2, 1, 0, 0, 0, 0, 1, 0, 4, 5, 6, 1}));
}

TEST_F(AxisFile, ReadsTheLastRowAndTheLastColumnFromTheFile) {
    const Reading reading = read("0\n0 1 0 10\n0 0 1 20\n1 0 0 30\n4 5 6 99\n");
    EXPECT_EQ(reading.status, eFileIOSuccess);
    EXPECT_EQ(reading.matrix, (Matrix{0, 0, 1, 4, 1, 0, 0, 5, 0, 1, 0, 6, 10, 20, 30, 1}));
}

TEST_F(AxisFile, ReadsASingularBlockAsZerosWithItsTranslation) {
    const Reading reading = read("0\n1 2 3 10\n2 4 6 20\n1 0 0 30\n4 5 6 1\n");
    EXPECT_EQ(reading.status, eFileIOSuccess);
    EXPECT_EQ(reading.matrix, (Matrix{0, 0, 0, 4, 0, 0, 0, 5, 0, 0, 0, 6, 10, 20, 30, 0}));
    EXPECT_EQ(readWithFirstRow("1e-10 0 0 5").matrix[0], 1e10);
    EXPECT_EQ(readWithFirstRow("9.99e-11 0 0 5").matrix,
              (Matrix{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 5, 0, 0, 0}));
}

TEST_F(AxisFile, ReadsNanAndInfinityAsNumbers) {
    const Reading reading = readWithFirstRow("nan 0 0 -inf");
    EXPECT_EQ(reading.status, eFileIOSuccess);
    for (const std::size_t element : {0U, 1U, 2U, 4U, 5U, 6U, 8U, 9U, 10U})
        EXPECT_TRUE(std::isnan(reading.matrix[element])) << element;
    EXPECT_EQ(reading.matrix[12], -infinity);
    EXPECT_EQ(reading.matrix[15], 1);
    EXPECT_EQ(readWithFirstRow("1 0 0 INFINITY").matrix[12], infinity);
    EXPECT_TRUE(std::isnan(readWithFirstRow("1 0 0 -NaN").matrix[12]));
}

TEST_F(AxisFile, SkipsItsFirstLine) {
    for (const std::string first : {"", "1", "any text # 1 2", "1 2 3 4", "\xFF\xFE"})
        EXPECT_EQ(read(first + "\n" + identityLines).matrix, identity) << first;
    EXPECT_EQ(read("a\0b\n"s + identityLines).matrix, identity);
    for (const std::size_t length : {510U, 511U, 512U, 513U, 1022U, 1023U, 100000U})
        EXPECT_EQ(read(std::string(length, '1') + "\n" + identityLines).matrix, identity) << length;
}

TEST_F(AxisFile, NeedsNoMoreThanFiveLines) {
    EXPECT_EQ(read("0\n" + identityLines).status, eFileIOSuccess);
    EXPECT_EQ(read("0\n" + identityLines).tags, unset);
    const Reading unterminated = read("0\n1 0 0 0\n0 1 0 0\n0 0 1 0\n0 0 0 1");
    EXPECT_EQ(unterminated.status, eFileIOSuccess);
    EXPECT_EQ(unterminated.matrix, identity);
}

TEST_F(AxisFile, ReadsEveryTruncationOfAFileAsFarAsItGoes) {
    const Matrix placement = {0, 1, 0, 0, 0, 0, 1, 0, 1, 0, 0, 0, -10, 20, 30.5, 1};
    const std::string whole = written(placement, 31, 5, 72);
    // The fifth line is complete after the first digit of its fourth number.
    const std::size_t complete = 8 + 3 * 57 + 49;
    const std::size_t tagLine = 8 + 8 * 57;
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        SCOPED_TRACE(length);
        const Reading reading = read(whole.substr(0, length));
        if (length < complete) {
            ASSERT_EQ(reading.status, eFileIOContentError);
            ASSERT_EQ(reading.matrix, untouched);
            ASSERT_EQ(reading.tags, unset);
            continue;
        }
        ASSERT_EQ(reading.status, eFileIOSuccess);
        ASSERT_EQ(reading.matrix, placement);
        Tags tags = unset;
        if (length > tagLine) {
            std::sscanf(whole.substr(tagLine, length - tagLine).c_str(), "  #%d %d %d", &tags[0],
                        &tags[1], &tags[2]);
        }
        ASSERT_EQ(reading.tags, tags);
    }
    EXPECT_EQ(read(whole).tags, (Tags{31, 5, 72}));
}

TEST_F(AxisFile, RefusesAMatrixLineWithoutFourNumbers) {
    expectRefused("");
    expectRefused("\n");
    expectRefused("0");
    expectRefused("1 0 0 0\n0 1 0 0\n0 0 1 0\n0 0 0 1\n");
    const std::vector<std::string> good = {"0\n", "1 0 0 0\n", "0 1 0 0\n", "0 0 1 0\n",
                                           "0 0 0 1\n"};
    for (std::size_t line = 1; line < good.size(); ++line) {
        for (const char* bad : {"", " \t", "1 0 0", "word", "1 0 0 x", "1 0 0 .", "1,0,0,0",
                                "1 0 0, 0", "1e 0 0 0", "# 1 0 0 0", "\r"}) {
            std::string bytes;
            for (std::size_t i = 0; i < good.size(); ++i)
                bytes += i == line ? bad + "\n"s : good[i];
            expectRefused(bytes + identityLines + "  #1 2 3\n");
        }
    }
}

TEST_F(AxisFile, ReadsFourNumbersInAnyForm) {
    const Matrix expected = translation(4, 0, 0);
    for (const char* row : {"1 0 0 4", "\t1\v0\f0  4  ", "+1 -0.0 .0 4.", "1e0 0E5 0x0p0 0x4",
                            "1+0-0+4", "1 0 0 4 5 6 text", "1 0 0 4,5", "1 0 0 4#1 2 3",
                            "1 0 0 4\r", "1.0.0.0 4", "1 0 0 40e-1"})
        EXPECT_EQ(readWithFirstRow(row).matrix, expected) << row;
    EXPECT_EQ(readWithFirstRow("1 0 0 4\0 5"s).matrix, expected);
    EXPECT_EQ(readWithFirstRow("1 0 0\0 4"s).status, eFileIOContentError);
    EXPECT_EQ(readWithFirstRow("1 0 0 1e400").matrix[12], infinity);
}

TEST_F(AxisFile, ReadsBothKindsOfLineEnds) {
    std::string bytes;
    for (const char character : "0\n" + identityLines + identityLines + "  #1 2 3\n")
        bytes += character == '\n' ? "\r\n"s : std::string(1, character);
    const Reading reading = read(bytes);
    EXPECT_EQ(reading.status, eFileIOSuccess);
    EXPECT_EQ(reading.matrix, identity);
    EXPECT_EQ(reading.tags, (Tags{1, 2, 3}));
}

TEST_F(AxisFile, ReadsTheFirst511CharactersOfAMatrixLine) {
    const auto padded = [](const std::string& text, std::size_t length) {
        return text + std::string(length - text.size(), ' ');
    };
    EXPECT_EQ(readWithFirstRow(padded("1 0 0", 510) + "7").matrix, translation(7, 0, 0));
    EXPECT_EQ(readWithFirstRow(padded("1 0 0", 510) + "75").matrix, translation(7, 0, 0));
    EXPECT_EQ(readWithFirstRow(padded("1 0 0", 511) + "7").status, eFileIOContentError);
    EXPECT_EQ(readWithFirstRow(padded("1 0 0 7", 5000)).matrix, translation(7, 0, 0));
    EXPECT_EQ(readWithFirstRow(std::string(511, ' ') + "1 0 0 7").status, eFileIOContentError);
    EXPECT_EQ(readWithFirstRow(std::string(504, ' ') + "1 0 0 7").matrix, translation(7, 0, 0));
}

TEST_F(AxisFile, ReadsATagLineAfterFourLinesOfAnyContent) {
    const std::string start = "0\n" + identityLines;
    EXPECT_EQ(read(start + "a\nb\nc\nd\n#1 2 3").tags, (Tags{1, 2, 3}));
    EXPECT_EQ(read(start + "\n\n\n\n#1 2 3\n#4 5 6\n").tags, (Tags{1, 2, 3}));
    EXPECT_EQ(read(start + std::string(5000, 'x') + "\n\n" + std::string(511, ' ') + "\n" +
                   std::string(512, ' ') + "\n  #1 2 3\n")
                  .tags,
              (Tags{1, 2, 3}));
    EXPECT_EQ(read(start + "  #1 2 3\n").tags, unset);
    EXPECT_EQ(read(start + "\n\n\n  #1 2 3\n").tags, unset);
    EXPECT_EQ(read(start + "\n\n\n\n\n  #1 2 3\n").tags, unset);
    EXPECT_EQ(read(start + "\n\n\n\n").tags, unset);
}

TEST_F(AxisFile, StoresTheTagsThatConvert) {
    EXPECT_EQ(tagsOf("  #1 2 3\n"), (Tags{1, 2, 3}));
    EXPECT_EQ(tagsOf("#1 2 3"), (Tags{1, 2, 3}));
    EXPECT_EQ(tagsOf("\t#1 2 3\n"), (Tags{1, 2, 3}));
    EXPECT_EQ(tagsOf(" \v\f\r#\t1   2\t3 4 5\n"), (Tags{1, 2, 3}));
    EXPECT_EQ(tagsOf("#1+2-3\n"), (Tags{1, 2, -3}));
    EXPECT_EQ(tagsOf("#-4 0 1\n"), (Tags{-4, 0, 1}));
    EXPECT_EQ(tagsOf("  #5 x\n"), (Tags{5, -8, -9}));
    EXPECT_EQ(tagsOf("#5 6.5 7\n"), (Tags{5, 6, -9}));
    EXPECT_EQ(tagsOf("#007 0x10 3\n"), (Tags{7, 0, -9}));
    EXPECT_EQ(tagsOf("#1,2,3\n"), (Tags{1, -8, -9}));
    EXPECT_EQ(tagsOf("#1 2\0 3\n"s), (Tags{1, 2, -9}));
    for (const char* line : {"", "\n", "  \n", "#\n", "#  ", "  x\n", "##1 2 3\n", "1 2 3\n",
                             "x #1 2 3\n", "#x 2 3\n", "#- 1\n"})
        EXPECT_EQ(tagsOf(line), unset) << line;
}

TEST_F(AxisFile, ClampsTagsToTheRangeOfAnInteger) {
    EXPECT_EQ(tagsOf("#2147483647 -2147483648 0\n"), (Tags{INT_MAX, INT_MIN, 0}));
    EXPECT_EQ(tagsOf("#2147483648 -2147483649 4294967297\n"), (Tags{INT_MAX, INT_MIN, INT_MAX}));
    EXPECT_EQ(tagsOf("#99999999999999999999999 -99999999999999999999999 1\n"),
              (Tags{INT_MAX, INT_MIN, 1}));
}

TEST_F(AxisFile, ReadsTheFirst511CharactersOfTheTagLine) {
    EXPECT_EQ(tagsOf("#1 2" + std::string(506, ' ') + "34\n"), (Tags{1, 2, 3}));
    EXPECT_EQ(tagsOf("#1 2" + std::string(507, ' ') + "3\n"), (Tags{1, 2, -9}));
    EXPECT_EQ(tagsOf(std::string(511, ' ') + "#1 2 3\n"), unset);
    EXPECT_EQ(tagsOf(std::string(505, ' ') + "#1 2 3\n"), (Tags{1, 2, 3}));
}

TEST_F(AxisFile, ReadsATagLineOf511CharactersThatTheFileEndsWith) {
    EXPECT_EQ(tagsOf("#1 2" + std::string(506, ' ') + "3"), (Tags{1, 2, 3}));
    EXPECT_EQ(tagsOf("#1 2" + std::string(505, ' ') + "34"), (Tags{1, 2, 34}));
}

TEST_F(AxisFile, EndsOnADeviceThatDoesNot) {
    if (!std::filesystem::exists("/dev/zero")) GTEST_SKIP() << "there is no endless device here";
    Matrix matrix = {};
    int tag = 0;
    EXPECT_EQ(files_.readAxis(L"/dev/zero", matrix.data(), tag, tag, tag), eFileIOContentError);
}

TEST_F(AxisFile, GivesOnlyTheStatusForANullMatrix) {
    Tags tags = unset;
    writeBytes(directory_ / "good", "0\n" + identityLines + "\n\n\n\n#1 2 3\n");
    EXPECT_EQ(files_.readAxis(L"good", nullptr, tags[0], tags[1], tags[2]), eFileIOSuccess);
    EXPECT_EQ(tags, (Tags{1, 2, 3}));
    writeBytes(directory_ / "bad", "0\n");
    EXPECT_EQ(files_.readAxis(L"bad", nullptr, tags[0], tags[1], tags[2]), eFileIOContentError);
    EXPECT_EQ(files_.readAxis(L"none", nullptr, tags[0], tags[1], tags[2]), eFileIOOpenError);
    EXPECT_EQ(tags, (Tags{1, 2, 3}));
}

TEST_F(AxisFile, AcceptsOneVariableForAllTags) {
    Matrix matrix = {};
    int tag = 0;
    writeBytes(directory_ / "f", "0\n" + identityLines + "\n\n\n\n#1 2 3\n");
    EXPECT_EQ(files_.readAxis(L"f", matrix.data(), tag, tag, tag), eFileIOSuccess);
    EXPECT_EQ(tag, 3);
}

TEST_F(AxisFile, ReadsAHugeFileWithoutLineEnds) {
    expectRefused(std::string(1 << 20, '1'));
    expectRefused("0\n" + std::string(1 << 20, '1'));
    EXPECT_EQ(read("0\n" + identityLines + std::string(1 << 20, '\0')).matrix, identity);
}

TEST(AxisText, NamesTheFaultyLine) {
    const auto faultyLineOf = [](const std::string& text) {
        TemporaryDirectory directory;
        writeBytes(directory / "f", text);
        std::FILE* file = std::fopen((directory / "f").string().c_str(), "r");
        EXPECT_NE(file, nullptr);
        if (file == nullptr) return -1;
        trv::AxisContent content;
        CFileFault fault;
        const bool isRead = trv::readAxisText(file, content, &fault);
        EXPECT_EQ(isRead, fault.line == 0);
        EXPECT_EQ(fault.reason, fault.line == 0 ? "" : "four numbers are expected");
        EXPECT_EQ(fault.column, 0);
        EXPECT_EQ(fault.systemError, 0);
        EXPECT_TRUE(fault.notes.empty());
        std::rewind(file);
        EXPECT_EQ(trv::readAxisText(file, content), isRead);
        std::fclose(file);
        return fault.line;
    };
    EXPECT_EQ(faultyLineOf("0\n" + identityLines), 0);
    EXPECT_EQ(faultyLineOf(""), 2);
    EXPECT_EQ(faultyLineOf("0\n1 0 0\n"), 2);
    EXPECT_EQ(faultyLineOf("0\n1 0 0 0\n0 1 0 0\nx\n0 0 0 1\n"), 4);
    EXPECT_EQ(faultyLineOf("0\n1 0 0 0\n0 1 0 0\n0 0 1 0\n"), 5);
}

TEST(AxisText, LeavesTheContentAfterAFailure) {
    TemporaryDirectory directory;
    writeBytes(directory / "f", "0\n1 0 0 0\n");
    trv::AxisContent content;
    content.matrix[3] = 7;
    content.tagCount = 3;
    EXPECT_EQ(trv::readAxisFile(QString::fromStdString((directory / "f").string()), content),
              eFileIOContentError);
    EXPECT_EQ(content.matrix[3], 7);
    EXPECT_EQ(content.tagCount, 3);
}

namespace {

class AxisFault : public ::testing::Test {
protected:
    QString path(const char* name) const {
        return QString::fromStdString((directory_ / name).generic_string());
    }

    // The lines and the texts of the notes on a file that is read.
    std::string readNotes(const std::string& text) {
        writeBytes(directory_ / "f", text);
        EXPECT_EQ(trv::readAxisFile(path("f"), content_, &fault_), eFileIOSuccess);
        std::string notes;
        for (const CFileFault::Note& note : fault_.notes)
            notes += std::to_string(note.line) + ": " + note.text + '\n';
        return notes;
    }

    TemporaryDirectory directory_;
    trv::AxisContent content_;
    CFileFault fault_;
};

}  // namespace

TEST_F(AxisFault, ReportsWhyAFileIsNotRead) {
    EXPECT_EQ(trv::readAxisFile(path("missing"), content_, &fault_), eFileIOOpenError);
    EXPECT_EQ(fault_.reason, "No such file or directory");
    EXPECT_EQ(fault_.systemError, ENOENT);
    EXPECT_EQ(fault_.line, 0);

    writeBytes(directory_ / "f", "0\n1 0 0\n");
    EXPECT_EQ(trv::readAxisFile(path("f"), content_, &fault_), eFileIOContentError);
    EXPECT_EQ(fault_.reason, "four numbers are expected");
    EXPECT_EQ(fault_.systemError, 0);
    EXPECT_EQ(fault_.line, 2);

    writeBytes(directory_ / "f", "0\n" + identityLines);
    EXPECT_EQ(trv::readAxisFile(path("f"), content_, &fault_), eFileIOSuccess);
    EXPECT_EQ(fault_.reason, "");
    EXPECT_EQ(fault_.line, 0);
}

TEST_F(AxisFault, NotesNothingInAWrittenFile) {
    EXPECT_EQ(readNotes("0\n" + identityLines), "");
    EXPECT_EQ(readNotes("0\n" + identityLines + identityLines + "  #1 2 3\n"), "");
    // Rounded to six decimals.
    EXPECT_EQ(readNotes("1\n0.866025 -0.5 0 1\n0.5 0.866025 0 2\n0 0 1 3\n0 0 0 1\n"), "");
}

TEST_F(AxisFault, NotesAxesThatAreNotOrthonormal) {
    const std::string text =
        "2: the axes are not orthonormal: their inverse is read, which differs from what was "
        "written\n";
    EXPECT_EQ(readNotes("1\n2 0 0 0\n0 1 0 0\n0 0 1 0\n0 0 0 1\n"), text);
    EXPECT_EQ(fault_.notes[0].kind, CFileFault::Note::Kind::notOrthonormal);
    EXPECT_EQ(readNotes("1\n1 0.1 0 0\n0 1 0 0\n0 0 1 0\n0 0 0 1\n"), text);
    EXPECT_EQ(readNotes("1\nnan 0 0 0\n0 1 0 0\n0 0 1 0\n0 0 0 1\n"), text);
    EXPECT_EQ(readNotes("1\n0 0 0 0\n0 1 0 0\n0 0 1 0\n0 0 0 1\n"),
              "2: the axes do not span space: they are read as zeros\n");
}

TEST_F(AxisFault, NotesARowThatIsMissing) {
    const std::string threeRows = "0\n1 0 0 5\n0 1 0 6\n0 0 1 7\n";
    const std::string inverse = "1 0 0 -5\n0 1 0 -6\n0 0 1 -7\n0 0 0 1\n";
    EXPECT_EQ(readNotes(threeRows + inverse),
              "5: a row of the matrix is missing: the first row of the next block takes its "
              "place\n");
    EXPECT_EQ(fault_.notes[0].kind, CFileFault::Note::Kind::missingRow);
    EXPECT_EQ(readNotes(threeRows + inverse + "#1 2 3\n"),
              "5: a row of the matrix is missing: the first row of the next block takes its "
              "place\n"
              "9: the tags are ignored: they are read from line 10 only\n");
    EXPECT_EQ(fault_.notes[1].kind, CFileFault::Note::Kind::misplacedTags);
    EXPECT_EQ(content_.tagCount, 0);
}

TEST_F(AxisFault, NotesAFourthRowThatIsNotThatOfAPlacement) {
    const std::string text = "5: the fourth row of the matrix is not 0 0 0 1\n";
    EXPECT_EQ(readNotes("0\n1 0 0 0\n0 1 0 0\n0 0 1 0\n0 0 0 2\n" + identityLines), text);
    EXPECT_EQ(fault_.notes[0].kind, CFileFault::Note::Kind::notAffine);
    EXPECT_EQ(readNotes("0\n1 0 0 0\n0 1 0 0\n0 0 1 0\n0 0 0.1 1\n"), text);
}

TEST_F(AxisFault, NotesTagsThatFollowTheMatrix) {
    EXPECT_EQ(readNotes("0\n" + identityLines + "  # 1 2 3\n"),
              "6: the tags are ignored: they are read from line 10 only\n");
}

TEST_F(AxisFault, ReportsAReadThatFails) {
    const bool hasFile = std::filesystem::exists("/proc/self/mem");
    if (!hasFile || trv::platform::backslash_separates()) {
        GTEST_SKIP() << "there is no file here that breaks off with this reason";
    }
    EXPECT_EQ(trv::readAxisFile(QStringLiteral("/proc/self/mem"), content_, &fault_),
              eFileIOContentError);
    EXPECT_EQ(fault_.reason, "Input/output error");
    EXPECT_EQ(fault_.systemError, EIO);
    EXPECT_EQ(fault_.line, 2);
}

TEST_F(AxisFault, ReportsWhyAFileIsNotWritten) {
    EXPECT_EQ(trv::writeAxisFile(path("missing/f"), "text", &fault_), eFileIOOpenError);
    EXPECT_EQ(fault_.reason, "No such file or directory");
    EXPECT_EQ(fault_.systemError, ENOENT);
    EXPECT_EQ(trv::writeAxisFile(path("f"), "text", &fault_), eFileIOSuccess);
    EXPECT_EQ(fault_.reason, "");
    EXPECT_EQ(fault_.systemError, 0);
    EXPECT_EQ(textOf(directory_ / "f"), "text");
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "there is no full device here";
    EXPECT_EQ(trv::writeAxisFile(QStringLiteral("/dev/full"), "text", &fault_), eFileIOShortWrite);
    EXPECT_EQ(fault_.reason, "No space left on device");
    EXPECT_EQ(fault_.systemError, ENOSPC);
}
