// The command on machine contexts, with Ctrl-Z and open handles on Windows.

#include <cli/context_rewrite.h>
#include <tests/cli/project_directory.h>
#include <tests/common/held_file_windows.h>

namespace trv::testing {
namespace {

class ContextCommandOnWindows : public ProjectDirectory {
protected:
    cli::RewriteLoss loss(const std::string& content, const QStringList& newFields = {}) const {
        return cli::rewriteLoss(file("a.mctx", content), newFields);
    }
    Answer setName() const {
        return answerTo(words("context set") + QStringList(path("a.mctx")) +
                        words("header.name=new"));
    }
};

TEST_F(ContextCommandOnWindows, TreatsTextAfterCtrlZAsLost) {
    const cli::RewriteLoss lines = loss(
        "[header]\r\nname=x\r\n\r\n\x1A"
        "[part]\r\nsurface_group=s\r\n");
    EXPECT_EQ(lines.line, 4);
    EXPECT_EQ(lines.lineText.toStdString(), "\x1A[part]");
    const cli::RewriteLoss value = loss("[header]\r\nname=x\x1A\r\ncomment=c\r\n");
    EXPECT_EQ(value.line, 3);
    EXPECT_EQ(value.field.toStdString(), "header.name");
    EXPECT_EQ(value.reason.toStdString(), "code 26 ends the file on Windows");
}

TEST_F(ContextCommandOnWindows, TreatsTextAfterCtrlZOfASetFieldAsLost) {
    const QStringList newFields(QStringLiteral("header.name"));
    const cli::RewriteLoss after = loss("[header]\r\nname=x\x1A\r\ncomment=c\r\n", newFields);
    EXPECT_EQ(after.line, 3);
    EXPECT_EQ(after.lineText.toStdString(), "comment=c");
    EXPECT_EQ(after.reason.toStdString(), "");
    EXPECT_EQ(loss("[header]\r\nname=x\x1Ay", newFields).line, 0);
}

TEST_F(ContextCommandOnWindows, DoesNotOverwriteTextAfterCtrlZ) {
    const std::string content = "[header]\r\nname=x\x1A\r\ncomment=c\r\n";
    file("a.mctx", content);
    const Answer answer = setName();
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.err, "trvfiles: " + text("a.mctx") +
                              ": line 3 would be lost: 'comment=c'; --drop-unknown drops such "
                              "lines\n");
    EXPECT_EQ(bytesOf(directory_ / "a.mctx"), content);
}

TEST_F(ContextCommandOnWindows, LosesNothingOfAFileWithCrLf) {
    const std::string written =
        "[header]\r\nversion=2\r\nname=x\r\n[machine]\r\nname=m\r\nposition=\r\n";
    EXPECT_EQ(loss(written).line, 0);
    EXPECT_EQ(loss(written).reason.toStdString(), "");
}

TEST_F(ContextCommandOnWindows, ReportsThatAFileIsKeptOpen) {
    file("a.mctx", setupContext);
    {
        const HeldFile held(directory_ / "a.mctx", FILE_SHARE_READ);
        const Answer answer = setName();
        EXPECT_EQ(answer.status, 2);
        EXPECT_EQ(answer.out, "");
        EXPECT_EQ(answer.err,
                  "trvfiles: " + text("a.mctx") + ": eFileIOOpenError: Permission denied\n");
    }
    EXPECT_EQ(bytes("a.mctx"), setupContext);
    EXPECT_EQ(names().size(), 1U);
    EXPECT_EQ(setName().status, 0);
    EXPECT_EQ(bytesOf(directory_ / "a.mctx").substr(0, 23), "[header]\r\nversion=2\r\nco");
}

}  // namespace
}  // namespace trv::testing
