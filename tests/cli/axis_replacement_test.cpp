#include <cli/axis_replacement.h>
#include <tests/cli/answer.h>
#include <tests/cli/project_directory.h>
#include <tests/common/child_process.h>
#include <tests/common/system.h>

namespace trv::testing {
namespace {

class AxisReplacement : public ProjectDirectory {
protected:
    std::string reason(std::string_view content) const {
        return cli::whyNotAnAxisFile(file("f", content)).toStdString();
    }

    /// Expects that axis write and axis invert keep the file, and returns what they say.
    std::string refusal(std::string_view content) const {
        file("in", identityAxis);
        file("f", content);
        const Answer written = answerTo(words("axis write") + QStringList(path("f")));
        const Answer inverted =
            answerTo(words("axis invert") + QStringList({path("in"), path("f")}));
        EXPECT_EQ(written.status, 2);
        EXPECT_EQ(written.out, "");
        EXPECT_EQ(inverted.status, 2);
        EXPECT_EQ(inverted.err, written.err);
        EXPECT_EQ(bytesOf(directory_ / "f"), content);
        EXPECT_EQ(names(), (std::vector<std::string>{"f", "in"}));
        const std::string start = "trvfiles: " + text("f") + ": not replaced: ";
        EXPECT_EQ(written.err.substr(0, start.size()), start);
        return written.err.substr(std::min(start.size(), written.err.size()));
    }
};

TEST_F(AxisReplacement, SaysWhatAFileIs) {
    EXPECT_EQ(reason(setupXml), "it is an assembly");
    EXPECT_EQ(reason(setupContext), "it is a machine context");
    EXPECT_EQ(reason(""), "the file is empty");
    EXPECT_EQ(reason("notes"), "neither an assembly, nor an axis file, nor a machine context");
    EXPECT_EQ(reason("0\nnotes\n"),
              "it is a faulty axis file: eFileIOContentError: line 2: four numbers are expected");
}

TEST_F(AxisReplacement, AcceptsAnAxisFileAndAFreeName) {
    EXPECT_EQ(reason(identityAxis), "");
    EXPECT_EQ(reason("any\n1 0 0 0\n0 1 0 0\n0 0 1 0\n0 0 0 1\n"), "");
    EXPECT_EQ(cli::whyNotAnAxisFile(path("missing")).toStdString(), "");
    EXPECT_EQ(cli::whyNotAnAxisFile(path("missing/f")).toStdString(), "");
}

TEST_F(AxisReplacement, SaysWhyAFileCannotBeRead) {
    if (!can_fork) GTEST_SKIP() << "rights are given up in a child process";
    file("f", identityAxis);
    std::filesystem::permissions(directory_.path(), std::filesystem::perms(0777));
    std::filesystem::permissions(directory_ / "f", std::filesystem::perms::none);
    EXPECT_TRUE(passesInChild([&] {
        ASSERT_TRUE(becomeOrdinaryUser());
        EXPECT_EQ(
            answerTo(words("axis write") + QStringList(path("f"))).err,
            "trvfiles: " + text("f") + ": not replaced: Permission denied; --force replaces it\n");
    }));
    EXPECT_EQ(bytes("f"), identityAxis);
}

TEST_F(AxisReplacement, KeepsAFileOfAnotherKind) {
    EXPECT_EQ(refusal(setupXml), "it is an assembly; --force replaces it\n");
    EXPECT_EQ(refusal(setupContext), "it is a machine context; --force replaces it\n");
    EXPECT_EQ(refusal(""), "the file is empty; --force replaces it\n");
    EXPECT_EQ(refusal("notes"),
              "neither an assembly, nor an axis file, nor a machine context; --force replaces "
              "it\n");
    EXPECT_EQ(refusal("1\n1 2 3\n"),
              "it is a faulty axis file: eFileIOContentError: line 2: four numbers are expected; "
              "--force replaces it\n");
}

TEST_F(AxisReplacement, ReplacesAnyFileByForce) {
    EXPECT_EQ(answerTo(words("axis write --force") + QStringList(file("f", setupXml))).err, "");
    EXPECT_EQ(bytes("f"), identityAxis);
    const QStringList files = {file("in", turnedAxis), file("f", setupContext)};
    EXPECT_EQ(answerTo(words("axis invert --force") + files).err, "");
    EXPECT_EQ(bytes("f").substr(0, 36), "      1\n      0.000000      1.000000");
}

TEST_F(AxisReplacement, ReplacesNoDirectoryByForce) {
    file("d/f", identityAxis);
    const Answer answer = answerTo(words("axis write --force") + QStringList(path("d")));
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.err, "trvfiles: " + text("d") + ": eFileIOOpenError: Is a directory\n");
    EXPECT_EQ(bytes("d/f"), identityAxis);
    EXPECT_EQ(names(), std::vector<std::string>{"d"});
}

}  // namespace
}  // namespace trv::testing
