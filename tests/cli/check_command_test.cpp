#include <tests/cli/answer.h>
#include <tests/cli/samples.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>

#include <gtest/gtest.h>

namespace trv::testing {
namespace {

class CheckCommand : public ::testing::Test {
protected:
    QString file(const char* name, std::string_view bytes) const {
        writeBytes(directory_ / name, bytes);
        return QString::fromStdString(path(name));
    }

    std::string path(const char* name) const { return (directory_ / name).generic_string(); }

    // The line about one file, without its name.
    std::string verdict(std::string_view bytes, int status) const {
        const Answer answer = answerTo(words("check") + QStringList(file("a", bytes)));
        EXPECT_EQ(answer.status, status);
        EXPECT_EQ(answer.err, "");
        const std::string name = path("a") + ": ";
        EXPECT_EQ(answer.out.substr(0, name.size()), name);
        return answer.out.substr(std::min(name.size(), answer.out.size()));
    }

    TemporaryDirectory directory_;
};

TEST_F(CheckCommand, SummarisesAFileWithoutFaults) {
    EXPECT_EQ(verdict(setupXml, 0), "ok (assembly, 3 components, 1 placed file)\n");
    EXPECT_EQ(verdict(turnedAxis, 0), "ok (axis, orthonormal, tags 3 0 7)\n");
    EXPECT_EQ(verdict(identityAxis, 0), "ok (axis, identity)\n");
    EXPECT_EQ(verdict(setupContext, 0),
              "ok (machine context \"Setup A\", machine MILL5, position POS1)\n");
}

TEST_F(CheckCommand, NamesTheSectionsThatAMachineContextLacks) {
    EXPECT_EQ(verdict("[machine]\nname=M\nposition=\n", 0),
              "ok (machine context \"\", machine M, no position, no section [header], no section "
              "[postpro], no section [clamping_system])\n");
}

TEST_F(CheckCommand, MentionsComponentsThatAreLeftOut) {
    EXPECT_EQ(verdict("<ComponentInfo version=\"1\"><Attributs/><Component><Data>\n"
                      "<Component/>\n"
                      "<Component><Orientation/></Component>\n"
                      "<Component><Orientation><vec1/></Orientation></Component>\n"
                      "</Data></Component></ComponentInfo>",
                      0),
              "ok (assembly, 2 components, 0 placed files, 2 left out for an incomplete "
              "<Orientation>, first in line 3)\n");
}

TEST_F(CheckCommand, ReportsWhatIsWrongWithAFaultyFile) {
    EXPECT_EQ(verdict("<ComponentInfo version=\"1\">\n<a></b>", 1),
              "eFileIOContentError: line 2, column 7: tag mismatch\n");
    EXPECT_EQ(verdict("<a/>", 1),
              "eFileIOStructureError: line 1, column 3: the root element is <a>, not "
              "<ComponentInfo>\n");
    EXPECT_EQ(verdict("0\n1 0 0 0\n0 1 0\n", 1),
              "eFileIOContentError: line 3: four numbers are expected\n");
    EXPECT_EQ(verdict("[header]\n\n\n[machine]\nname=M\n", 1),
              "eFileIOContentError: line 4: section [machine] has no \"position\"\n");
    EXPECT_EQ(verdict("[machine]\nposition=M\n", 1),
              "eFileIOContentError: line 1: section [machine] has no \"name\"\n");
    EXPECT_EQ(verdict("[postpro]\nreference_axis=a\n", 1),
              "eFileIOContentError: line 1: section [postpro] has no \"origin_program\"\n");
    EXPECT_EQ(verdict("", 1), "eFileIOContentError: the file is empty\n");
    EXPECT_EQ(
        verdict("note", 1),
        "eFileIOContentError: neither an assembly, nor an axis file, nor a machine context\n");
}

TEST_F(CheckCommand, ContinuesAfterAFaultyFile) {
    const QStringList names = {file("one", setupXml), QString::fromStdString(path("missing")),
                               QString::fromStdString(directory_.text()),
                               file("two", identityAxis)};
    const Answer answer = answerTo(words("check") + names);
    EXPECT_EQ(answer.status, 1);
    EXPECT_EQ(answer.err, "");
    EXPECT_EQ(answer.out, path("one") + ": ok (assembly, 3 components, 1 placed file)\n" +
                              path("missing") + ": eFileIOOpenError: No such file or directory\n" +
                              directory_.text() + ": eFileIOOpenError: Is a directory\n" +
                              path("two") + ": ok (axis, identity)\n");
}

TEST_F(CheckCommand, RequiresAFile) {
    const Answer answer = answerTo(words("check"));
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.err,
              "trvfiles check: A file name is missing.\nTry 'trvfiles check --help'.\n");
}

}  // namespace
}  // namespace trv::testing
