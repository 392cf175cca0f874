#include <cli/terminal_text.h>
#include <tests/common/scoped_variable.h>

#include <gtest/gtest.h>

#include <sstream>

namespace trv::cli {
namespace {

std::string cut(const char* text, int columns) {
    StyledLine line({columns, false});
    line.text() = text;
    std::string out;
    line.finish(out);
    return out;
}

TEST(ColumnsOf, CountsCodePoints) {
    EXPECT_EQ(columnsOf(""), 0);
    EXPECT_EQ(columnsOf("abc"), 3);
    EXPECT_EQ(columnsOf(u8"├── Größe Ø"), 11);
    EXPECT_EQ(columnsOf(u8"𝄞"), 1);
}

TEST(ColumnsOf, CountsWideCharactersTwice) {
    EXPECT_EQ(columnsOf(u8"工件"), 4);
    EXPECT_EQ(columnsOf(u8"한"), 2);
    EXPECT_EQ(columnsOf(u8"ｶ"), 1);
    EXPECT_EQ(columnsOf(u8"Ａ"), 2);
    EXPECT_EQ(columnsOf(u8"😀"), 2);
    EXPECT_EQ(columnsOf(u8"𠀀"), 2);
}

TEST(ColumnsOf, DoesNotCountCombiningMarks) {
    EXPECT_EQ(columnsOf("u\xCC\x88"), 1);
}

TEST(StyledLine, HasAnyLengthWithoutATerminal) {
    EXPECT_EQ(cut("a long line", 0), "a long line\n");
}

TEST(StyledLine, EndsWithAnEllipsisIfItDoesNotFit) {
    EXPECT_EQ(cut("abcdef", 6), "abcdef\n");
    EXPECT_EQ(cut("abcdef", 5), u8"abcd…\n");
    EXPECT_EQ(cut("abcdef", 1), u8"…\n");
    EXPECT_EQ(cut(u8"ÄÖÜ", 3), u8"ÄÖÜ\n");
    EXPECT_EQ(cut(u8"ÄÖÜß", 3), u8"ÄÖ…\n");
}

TEST(StyledLine, IsNotCutInsideAWideCharacter) {
    EXPECT_EQ(cut(u8"a工件", 5), u8"a工件\n");
    EXPECT_EQ(cut(u8"a工件", 4), u8"a工…\n");
    EXPECT_EQ(cut(u8"a工件", 3), u8"a…\n");
    EXPECT_EQ(cut("u\xCC\x88u\xCC\x88u\xCC\x88", 2), "u\xCC\x88…\n");
}

class ColouredLine : public ::testing::Test {
protected:
    static std::string line(int columns, bool colour, bool faint) {
        StyledLine line({columns, colour});
        line.text() += "ab";
        line.begin(Style::file);
        line.text() += "cd";
        line.begin(Style::plain);
        line.text() += "ef";
        line.begin(Style::faint);
        line.text() += "gh";
        if (faint) line.setFaint();
        std::string out;
        line.finish(out);
        return out;
    }
};

TEST_F(ColouredLine, HasItsPartsInTheirStyles) {
    EXPECT_EQ(line(0, true, false), "ab\x1b[36mcd\x1b[0mef\x1b[2mgh\x1b[0m\n");
    EXPECT_EQ(line(0, false, false), "abcdefgh\n");
}

TEST_F(ColouredLine, IsFaintAsAWhole) {
    EXPECT_EQ(line(0, true, true), "\x1b[2mabcdefgh\x1b[0m\n");
    EXPECT_EQ(line(0, false, true), "abcdefgh\n");
}

TEST_F(ColouredLine, IsCutByItsTextAndNotByItsColours) {
    EXPECT_EQ(line(8, true, false), "ab\x1b[36mcd\x1b[0mef\x1b[2mgh\x1b[0m\n");
    EXPECT_EQ(line(4, true, false), u8"ab\x1b[36mc…\x1b[0m\n");
    EXPECT_EQ(line(2, true, false), u8"a…\n");
}

TEST_F(ColouredLine, StartsAnewAfterItsEnd) {
    StyledLine line({0, true});
    line.setFaint();
    line.begin(Style::file);
    line.text() = "a";
    std::string out;
    line.finish(out);
    line.text() = "b";
    line.finish(out);
    EXPECT_EQ(out, "\x1b[2ma\x1b[0m\nb\n");
}

class ReadTextForm : public ::testing::Test {
protected:
    // "colour", "plain", or what is wrong.
    std::string form(const char* choice, int columns) {
        QCommandLineParser call;
        call.addOption(colorOption());
        QStringList arguments(QStringLiteral("x"));
        if (choice != nullptr) arguments += QStringLiteral("--color=") + QString::fromUtf8(choice);
        EXPECT_TRUE(call.parse(arguments));
        TextForm form;
        const QString mistake = readTextForm(call, {out_, out_, columns, 0}, form);
        if (!mistake.isEmpty()) return mistake.toStdString();
        EXPECT_EQ(form.columns, columns);
        return form.colour ? "colour" : "plain";
    }

    std::ostringstream out_;
    testing::ScopedVariable noColor_{"NO_COLOR", nullptr};
    testing::ScopedVariable term_{"TERM", "xterm"};
};

TEST_F(ReadTextForm, ColoursOnATerminal) {
    EXPECT_EQ(form(nullptr, 80), "colour");
    EXPECT_EQ(form("auto", 80), "colour");
    EXPECT_EQ(form("auto", 0), "plain");
}

TEST_F(ReadTextForm, ObeysTheOption) {
    EXPECT_EQ(form("always", 0), "colour");
    EXPECT_EQ(form("never", 80), "plain");
    EXPECT_EQ(form("red", 80), "--color takes auto, always or never, not 'red'");
    EXPECT_EQ(form("", 80), "--color takes auto, always or never, not ''");
}

TEST_F(ReadTextForm, ObeysNoColorUnlessTheOptionSaysAlways) {
    noColor_.set("0");
    EXPECT_EQ(form(nullptr, 80), "plain");
    EXPECT_EQ(form("auto", 80), "plain");
    EXPECT_EQ(form("always", 80), "colour");
    noColor_.set("");
    EXPECT_EQ(form("auto", 80), "colour");
}

TEST_F(ReadTextForm, LeavesADumbTerminalPlain) {
    term_.set("dumb");
    EXPECT_EQ(form("auto", 80), "plain");
    EXPECT_EQ(form("always", 80), "colour");
    term_.set(nullptr);
    EXPECT_EQ(form("auto", 80), "colour");
}

}  // namespace
}  // namespace trv::cli
