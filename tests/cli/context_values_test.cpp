#include <cli/context_values.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/facade/CQvFilesIO.h>
#include <trvfiles/machine_context/CMachineContextData.h>
#include <trvfiles/machine_context/context_fields.h>
#include <trvfiles/support/number_text.h>
#include <trvfiles/text/text_conversion.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>

namespace trv::cli {
namespace {

std::string reason(const char* text) {
    return whyTextChanges(QString::fromUtf8(text)).toStdString();
}

TEST(ContextValues, KeepsOrdinaryTexts) {
    for (const char* text : {"", "x", "#x", "[x]", "a=b", "//x", ";x", "$X", "C:\\new", "A+B", "A+",
                             "A++B(1)", "(1)+", ")+(", "a b", "a\tb", "\x01", "\xC3\xB6", "%d"})
        EXPECT_EQ(reason(text), "") << text;
}

TEST(ContextValues, ReportsWhyATextChanges) {
    for (const char* text : {"a\nb", "a\rb", "\n", "a\r\n"})
        EXPECT_EQ(reason(text), "a line end becomes a blank");
    for (const char* text : {" x", "x ", "\tx", "x\t", "x\f", "\vx", " "})
        EXPECT_EQ(reason(text), "blanks at its ends are lost");
    for (const char* text : {"A+B(1)", "A+)", "A+++B(1)", "++ +)", "+(0000012C)"})
        EXPECT_EQ(reason(text), "what is between a \"+\" and a later \")\" is lost");
    EXPECT_EQ(reason("a\x1A"), "code 26 ends the file on Windows");
    EXPECT_EQ(reason("a\xEF\xBF\xBD"), "it holds bytes that are not text");
    EXPECT_EQ(whyTextChanges(QString(QLatin1Char('a')) + QChar(0)).toStdString(),
              "what follows a zero is lost");
    EXPECT_EQ(whyTextChanges(QString(QChar(0xD800))).toStdString(),
              "the local code page lacks one of its characters");
}

// What is predicted is what a file does.
TEST(ContextValues, PredictsEveryRoundTrip) {
    const testing::TemporaryDirectory directory;
    CQvFilesIO files(directory.wide());
    const QString alphabet = QStringLiteral("++++()()ab =#[]\t\n\r\f") + QChar(0) + QChar(0xFEFF) +
                             QChar(0xF6) + QChar(0xD83D) + QChar(0xDE00);
    std::mt19937 random(7);
    int kept = 0;
    constexpr int rounds = 1000;
    for (int round = 0; round < rounds; ++round) {
        QString text;
        for (std::size_t left = random() % 9; left > 0; --left)
            text +=
                alphabet.at(static_cast<int>(random() % static_cast<unsigned>(alphabet.size())));
        CMachineContextData written;
        written.setNameW(toWide(text));
        ASSERT_EQ(files.writeMachineContext(L"a.mctx", written), eFileIOSuccess);
        CMachineContextData read;
        ASSERT_EQ(files.readMachineContext(L"a.mctx", read), eFileIOSuccess);
        const bool comesBack = fromWide(read.getNameW()) == text;
        EXPECT_EQ(whyTextChanges(text).isEmpty(), comesBack) << text.toStdString();
        kept += comesBack ? 1 : 0;
    }
    EXPECT_GT(kept, rounds / 10);
    EXPECT_LT(kept, rounds * 9 / 10);
}

TEST(ContextValues, ReadsNumbersThatAreTheWholeText) {
    double numbers[3] = {};
    EXPECT_TRUE(readNumbers(QStringLiteral("12.5 0 -3"), numbers, 3));
    EXPECT_EQ(numbers[0], 12.5);
    EXPECT_EQ(numbers[1], 0);
    EXPECT_EQ(numbers[2], -3);
    EXPECT_TRUE(readNumbers(QStringLiteral(" 1e3\t+2\t .5 "), numbers, 3));
    EXPECT_EQ(numbers[0], 1000);
    EXPECT_EQ(numbers[2], 0.5);
    EXPECT_TRUE(readNumbers(QStringLiteral("inf"), numbers, 1));
    for (const char* text :
         {"", " ", "1 2", "1 2 3 4", "1 2 3x", "1,2,3", "a b c", "1 2 3 x", "1-2 3"})
        EXPECT_FALSE(readNumbers(QString::fromLatin1(text), numbers, 3)) << text;
    for (const char* text : {"", "x", "1.5mm", "1,5", "1 2"})
        EXPECT_FALSE(readNumbers(QString::fromLatin1(text), numbers, 1)) << text;
}

TEST(ContextValues, DistinguishesRoundingFromLoss) {
    for (const double value :
         {0.0, -0.0, 0.1, 1234.5678, -1e-9, 1e6 + 0.3, 123456789012.0, -1e18, 1e19})
        EXPECT_TRUE(comesBack(value)) << value;
    constexpr double infinity = std::numeric_limits<double>::infinity();
    EXPECT_TRUE(comesBack(infinity));
    EXPECT_TRUE(comesBack(-infinity));
    EXPECT_TRUE(comesBack(std::nan("")));
    for (const double value : {1e20, -1e19, 1e39, -1e300})
        EXPECT_FALSE(comesBack(value));
}

// What is predicted is what a file does.
TEST(ContextValues, PrintsWhatAFileGivesBack) {
    const testing::TemporaryDirectory directory;
    CQvFilesIO files(directory.wide());
    for (const double value : {0.0, 0.1, 1234.5678, -7e5, 123456789012.0, 1e18, 1e19, 1e30}) {
        CMachineContextData written;
        written.setMachineProximity(value);
        ASSERT_EQ(files.writeMachineContext(L"a.mctx", written), eFileIOSuccess);
        CMachineContextData read;
        ASSERT_EQ(files.readMachineContext(L"a.mctx", read), eFileIOSuccess);
        const std::string text = proximityText(value);
        std::string_view rest(text);
        double printed = -1;
        ASSERT_TRUE(scan_number(rest, printed));
        EXPECT_EQ(read.getMachineProximity(), printed);
        EXPECT_EQ(std::fabs(printed - value) <= 1e-6 + 1e-7 * std::fabs(value), comesBack(value));
    }
}

}  // namespace
}  // namespace trv::cli
