#include <tests/axis/axis_sample.h>

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <filesystem>
#include <string>

using namespace std::string_literals;
using namespace trv::testing;

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
