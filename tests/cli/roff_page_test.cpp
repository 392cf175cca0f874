#include <cli/roff_page.h>

#include <gtest/gtest.h>

namespace trv::cli {
namespace {

std::string escaped(const char* text) {
    return roffText(QString::fromUtf8(text)).toStdString();
}

// What the page has after its heading and the requests for the lines.
std::string bodyOf(const RoffPage& page) {
    const std::string begin =
        ".TH TRVFILES 1 \"\" \"trvfiles 0.1\" \"User Commands\"\n.ad l\n.nh\n.nr HY 0\n";
    const std::string text = page.text().toStdString();
    EXPECT_EQ(text.substr(0, begin.size()), begin);
    return text.substr(begin.size());
}

class RoffPageTest : public ::testing::Test {
protected:
    RoffPage page_{QStringLiteral("TRVFILES"), QStringLiteral("trvfiles 0.1")};
};

TEST(RoffText, EscapesWhatRoffReadsAsSomethingElse) {
    EXPECT_EQ(escaped("plain text, with (brackets) [1.5]"), "plain text, with (brackets) [1.5]");
    EXPECT_EQ(escaped("$TRVHOME\\bin"), "$TRVHOME\\ebin");
    EXPECT_EQ(escaped("--no-guides"), "\\-\\-no\\-guides");
    EXPECT_EQ(escaped("'?CFG' \"a\""), "\\(aq?CFG\\(aq \\(dqa\\(dq");
    EXPECT_EQ(escaped("`a` ^ ~/.bashrc"), "\\(gaa\\(ga \\(ha \\(ti/.bashrc");
}

TEST(RoffText, NamesCharactersBeyondAscii) {
    EXPECT_EQ(escaped("\u00D8 6, 15\u00B0"), "\\[u00D8] 6, 15\\[u00B0]");
    EXPECT_EQ(escaped("\u251C\u2026\U0001F600"), "\\[u251C]\\[u2026]\\[u1F600]");
    EXPECT_EQ(escaped("~\x7F"), "\\(ti\\[u007F]");
}

TEST(RoffText, HasAFormForEachFont) {
    EXPECT_EQ(roffBold(QStringLiteral("--set")).toStdString(), "\\fB\\-\\-set\\fR");
    EXPECT_EQ(roffItalic(QStringLiteral("A-B")).toStdString(), "\\fIA\\-B\\fR");
}

TEST_F(RoffPageTest, BeginsAParagraphUnlessAHeadingDoes) {
    page_.section(QStringLiteral("FILES"));
    page_.paragraph(QStringLiteral("One."));
    page_.paragraph(QStringLiteral("Two."));
    page_.subsection(QStringLiteral("a-b \"c\""));
    page_.paragraph(QStringLiteral(".Three"));
    EXPECT_EQ(bodyOf(page_),
              ".SH \"FILES\"\nOne.\n.PP\nTwo.\n.SS \"a\\-b \\(dqc\\(dq\"\n\\&.Three\n");
}

TEST_F(RoffPageTest, EndsALineAfterEachSentence) {
    page_.paragraph(
        QStringLiteral("The first. The second: 1.5. \"-\" is\nthe third. 'a' ends it.\n"));
    EXPECT_EQ(
        bodyOf(page_),
        ".PP\nThe first.\nThe second: 1.5.\n\\(dq\\-\\(dq is\nthe third.\n\\(aqa\\(aq ends it.\n");
}

TEST_F(RoffPageTest, DoesNotFillLinesThatBeginWithABlank) {
    page_.paragraph(QStringLiteral("Fields:\n  header.name\n  .x\nThe end.\n  last\n"));
    EXPECT_EQ(bodyOf(page_),
              ".PP\nFields:\n.RS 4\n.EX\nheader.name\n\\&.x\n.EE\n.RE\nThe end.\n"
              ".RS 4\n.EX\nlast\n.EE\n.RE\n");
}

TEST_F(RoffPageTest, HidesAFullStopAtTheBeginningOfALine) {
    page_.paragraph(QStringLiteral(".SH\n.bashrc. Next\n'a"));
    page_.item(QStringLiteral("."), QStringLiteral("."));
    page_.synopsis({{QStringLiteral("ls"), QStringLiteral(".")}});
    EXPECT_EQ(bodyOf(page_),
              ".PP\n\\&.SH\n\\&.bashrc.\nNext\n\\(aqa\n.TP\n\\&.\n\\&.\n.SY \"ls\"\n\\&.\n.YS\n");
}

TEST_F(RoffPageTest, HasCallsTermsAndLiteralLines) {
    page_.synopsis({{QStringLiteral("trvfiles a-b"), QStringLiteral("\\fIFILE\\fR")},
                    {QStringLiteral("trvfiles"), QString()}});
    page_.item(roffBold(QStringLiteral("-x")), QStringLiteral("An option."));
    page_.literal({QStringLiteral("trvfiles -x"), QStringLiteral("trvfiles . ")});
    page_.paragraph(QStringLiteral("End."));
    EXPECT_EQ(bodyOf(page_),
              ".SY \"trvfiles a\\-b\"\n\\fIFILE\\fR\n.SY \"trvfiles\"\n.YS\n"
              ".TP\n\\fB\\-x\\fR\nAn option.\n"
              ".RS 4\n.EX\ntrvfiles \\-x\ntrvfiles . \n.EE\n.RE\n.PP\nEnd.\n");
}

}  // namespace
}  // namespace trv::cli
