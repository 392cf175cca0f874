#include <cli/context_rewrite.h>
#include <tests/cli/project_directory.h>
#include <trvfiles/text/text_conversion.h>

namespace trv::testing {
namespace {

using namespace std::string_view_literals;

class ContextRewrite : public ProjectDirectory {
protected:
    // "line N: TEXT", or nothing
    std::string lostLine(std::string_view content) const {
        const cli::RewriteLoss loss = cli::rewriteLoss(file("a.mctx", content), {});
        if (loss.line == 0) return loss.lineText.toStdString();
        return "line " + std::to_string(loss.line) + ": " + loss.lineText.toStdString();
    }

    // "FIELD 'VALUE': REASON", or nothing
    std::string changedValue(std::string_view content, const QStringList& newFields = {}) const {
        const cli::RewriteLoss loss = cli::rewriteLoss(file("a.mctx", content), newFields);
        if (loss.reason.isEmpty()) return (loss.field + loss.value).toStdString();
        return loss.field.toStdString() + " '" + loss.value.toStdString() +
               "': " + loss.reason.toStdString();
    }
};

TEST_F(ContextRewrite, LosesNothingOfAWrittenFile) {
    EXPECT_EQ(lostLine(setupContext), "");
    EXPECT_EQ(changedValue(setupContext), "");
    EXPECT_EQ(lostLine(""), "");
}

TEST_F(ContextRewrite, IgnoresLayout) {
    EXPECT_EQ(lostLine("\xEF\xBB\xBF[ header ] \r\n\r\n  name = x  \r\n \t\n[part]\n"), "");
    EXPECT_EQ(lostLine("[clamping_system]\nname=x\n[header]\nversion = 2"), "");
}

TEST_F(ContextRewrite, NamesTheFirstLineThatIsLost) {
    EXPECT_EQ(lostLine("# note\n[header]\n# again\n"), "line 1: # note");
    EXPECT_EQ(lostLine("[header]\nname=x\n  words \r\n"), "line 3: words");
    EXPECT_EQ(lostLine("[header]\nname=x\nauthor=me\n"), "line 3: author=me");
    EXPECT_EQ(lostLine("[header]\nname=x\nName=y\n"), "line 3: Name=y");
    EXPECT_EQ(lostLine("[header]\nname=x\n\n[tools]\nname=y\n"), "line 4: [tools]");
    EXPECT_EQ(lostLine("name=x\n[header]\n"), "line 1: name=x");
    EXPECT_EQ(lostLine("\xEF\xBB\xBF# note\n[header]\n"), "line 1: # note");
    EXPECT_EQ(lostLine("[header] # mine\nname=x\n"), "line 1: [header] # mine");
}

TEST_F(ContextRewrite, NamesWhatALaterLineReplaces) {
    EXPECT_EQ(lostLine("[header]\nname=x\nname=y\n"), "line 2: name=x");
    EXPECT_EQ(lostLine("[part]\nsurface_group=x\n[part]\nsurface_group=y\n"), "line 1: [part]");
}

TEST_F(ContextRewrite, AcceptsNoVersionButTwo) {
    EXPECT_EQ(lostLine("[header]\nversion=2\n"), "");
    EXPECT_EQ(lostLine("[header]\nversion=3\n"), "line 2: version=3");
    EXPECT_EQ(lostLine("[header]\nversion=\n"), "line 2: version=");
}

TEST_F(ContextRewrite, NamesATextThatWouldChange) {
    EXPECT_EQ(changedValue("[header]\nname=A+B(1)\n"),
              "header.name 'A+B(1)': the text between a \"+\" and a later \")\" is lost");
    EXPECT_EQ(changedValue("[header]\nname=a\rb\n"),
              "header.name 'a\rb': a line end becomes a blank");
    EXPECT_EQ(changedValue("[header]\nname=a\0b\n"sv),
              "header.name 'a': it holds bytes that are not text");
}

TEST_F(ContextRewrite, NamesBytesThatAreNotText) {
    if (fromNarrow("\xF6") != QString(QChar::ReplacementCharacter))
        GTEST_SKIP() << "every byte is text in this code page";
    EXPECT_EQ(changedValue("[clamping_system]\nname=Gr\xF6\xDF"
                           "e\n"),
              "clamping_system.name 'Gr\xEF\xBF\xBD\xEF\xBF\xBD"
              "e': it holds bytes that are not text");
}

TEST_F(ContextRewrite, NamesNumbersThatWouldChange) {
    EXPECT_EQ(changedValue("[machine]\nproximity=abc\n"),
              "machine.proximity 'abc': it is not a number");
    EXPECT_EQ(changedValue("[machine]\nproximity=\n"), "machine.proximity '': it is not a number");
    EXPECT_EQ(changedValue("[machine]\nproximity=1.5 mm\n"),
              "machine.proximity '1.5 mm': it is not a number");
    EXPECT_EQ(changedValue("[machine]\nproximity=1e20\n"),
              "machine.proximity '1e20': the number is too large for a file");
    EXPECT_EQ(changedValue("[postpro]\norigin_program=1 2\n"),
              "postpro.origin_program '1 2': it is not three numbers");
    EXPECT_EQ(changedValue("[postpro]\norigin_program=1 2 3 4\n"),
              "postpro.origin_program '1 2 3 4': it is not three numbers");
    for (const char* number : {"1", "0.1", "1234.5678", "1e3", "nan", "inf", "-0"})
        EXPECT_EQ(changedValue("[machine]\nproximity=" + std::string(number)), "") << number;
    EXPECT_EQ(changedValue("[postpro]\norigin_program=1e20 nan .1234567\n"), "");
}

TEST_F(ContextRewrite, IgnoresFieldsThatAreSet) {
    const char* const content = "[header]\nname=A+B(1)\n[machine]\nproximity=abc\n";
    EXPECT_EQ(changedValue(content, {QStringLiteral("header.name")}),
              "machine.proximity 'abc': it is not a number");
    EXPECT_EQ(
        changedValue(content, {QStringLiteral("machine.proximity"), QStringLiteral("header.name")}),
        "");
}

}  // namespace
}  // namespace trv::testing
