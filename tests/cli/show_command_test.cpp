#include <tests/cli/answer.h>
#include <tests/cli/samples.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>

#include <gtest/gtest.h>

namespace trv::testing {
namespace {

class ShowCommand : public ::testing::Test {
protected:
    Answer show(const char* name, std::string_view bytes, const QStringList& options = {}) const {
        writeBytes(directory_ / name, bytes);
        return answerTo(words("show") + options + QStringList(QString::fromStdString(path(name))));
    }

    std::string path(const char* name) const { return (directory_ / name).generic_string(); }

    TemporaryDirectory directory_;
};

TEST_F(ShowCommand, ShowsAnAssemblyWhateverItsName) {
    const Answer answer = show("a.ref", setupXml);
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.err, "");
    EXPECT_EQ(answer.out, "Assembly file " + path("a.ref") +
                              "\n\n"
                              "Dimension         100 x 50 x 20.5\n"
                              "Components        3\n"
                              "Component number  2\n"
                              "Placed files      1\n"
                              "\n"
                              "Setup, at 10 0 0\n"
                              u8"├── Vise: vise, small.stl, at 0 5 0.1 -- left, \"old\"\n"
                              u8"└── Part (disabled): part.stl, at 0 0 0, turned 90° about z\n");
}

TEST_F(ShowCommand, ShowsAnAxisFileAsAxisShowDoes) {
    const Answer answer = show("a.xml", turnedAxis);
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.out.substr(0, 10), "Axis file ");
    EXPECT_EQ(answer.out, answerTo({QStringLiteral("axis"), QStringLiteral("show"),
                                    QString::fromStdString(path("a.xml"))})
                              .out);
}

TEST_F(ShowCommand, ShowsAMachineContextWhateverItsName) {
    const Answer answer = show("a.xml", setupContext);
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.err, "");
    EXPECT_EQ(answer.out, "Machine context file " + path("a.xml") +
                              "\n\n"
                              "Name                Setup A\n"
                              "Comment             first op\n"
                              "Machine             MILL5\n"
                              "Position            POS1\n"
                              "Machine proximity   10\n"
                              "Program origin      12.5 0 -3\n"
                              "Reference axis      transfo.dat\n"
                              "Surface group       TOP\n"
                              "Clamping system     VISE\n"
                              "Clamping proximity  2.5\n");
}

TEST_F(ShowCommand, LeavesOutTheNameOnRequest) {
    const QStringList option(QStringLiteral("--no-filename"));
    EXPECT_EQ(show("a", setupXml, option).out.substr(0, 42),
              "Assembly file\n\nDimension         100 x 50 ");
    EXPECT_EQ(show("a", turnedAxis, option).out.substr(0, 19), "Axis file\n\nMatrix\n ");
    EXPECT_EQ(show("a", setupContext, option).out.substr(0, 49),
              "Machine context file\n\nName                Setup A");
    EXPECT_EQ(show("b", setupXml, option).out, show("c", setupXml, option).out);
    EXPECT_NE(show("a", setupContext, words("--no-filename --json"))
                  .out.find("\"file\":\"" + path("a") + "\""),
              std::string::npos);
}

TEST_F(ShowCommand, IndentsComponentsOnRequest) {
    const std::string guided = show("a", setupXml).out;
    const std::string indented =
        show("a", setupXml, QStringList(QStringLiteral("--no-guides"))).out;
    EXPECT_NE(guided.find(u8"\n└── Part"), std::string::npos);
    EXPECT_NE(indented.find("\n    Part"), std::string::npos);
    EXPECT_EQ(indented.find(u8"──"), std::string::npos);
}

TEST_F(ShowCommand, PrintsJsonOfEveryKind) {
    const QStringList json(QStringLiteral("--json"));
    EXPECT_EQ(show("a", setupXml, json).out.substr(0, 18), "{\"componentCount\":");
    EXPECT_NE(show("a", setupXml, json).out.find("\"kind\":\"assembly\""), std::string::npos);
    EXPECT_NE(show("a", turnedAxis, json).out.find("\"kind\":\"axis\""), std::string::npos);
    EXPECT_NE(show("a", setupContext, json).out.find("\"kind\":\"machineContext\""),
              std::string::npos);
}

TEST_F(ShowCommand, ReportsAnUnknownKindOfFile) {
    const Answer answer = show("note.txt", "a note\n");
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.out, "");
    EXPECT_EQ(answer.err, "trvfiles: " + path("note.txt") +
                              ": eFileIOContentError: neither an assembly, nor an axis file, nor a "
                              "machine context\n");
    EXPECT_EQ(show("empty", "").err,
              "trvfiles: " + path("empty") + ": eFileIOContentError: the file is empty\n");
}

TEST_F(ShowCommand, ReportsThePlaceOfAFault) {
    EXPECT_EQ(
        show("a", "<ComponentInfo version=\"1\">\n<a></b>").err,
        "trvfiles: " + path("a") +
            ": eFileIOContentError: line 2, column 7: tag mismatch: <a> of line 2 is not closed\n");
    EXPECT_EQ(show("a", "[header]\nname=x\n[machine]\nname=y\n").err,
              "trvfiles: " + path("a") +
                  ": eFileIOContentError: line 3: section [machine] has no \"position\"\n");
    const Answer answer = show("a", "1\n1 2 3 4\n");
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.out, "");
    EXPECT_EQ(answer.err, "trvfiles: " + path("a") +
                              ": eFileIOContentError: line 3: four numbers are expected\n");
}

TEST_F(ShowCommand, ShowsSeveralFilesAndReportsTheOthers) {
    writeBytes(directory_ / "c", setupContext);
    writeBytes(directory_ / "a", identityAxis);
    const auto name = [this](const char* file) { return QString::fromStdString(path(file)); };
    const Answer answer =
        answerTo(words("show") + QStringList({name("c"), name("missing"), name("a")}));
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.err,
              "trvfiles: " + path("missing") + ": eFileIOOpenError: No such file or directory\n");
    EXPECT_EQ(answer.out.substr(0, 20), "Machine context file");
    EXPECT_NE(answer.out.find("proximity  2.5\n\nAxis file " + path("a") + "\n\nMatrix\n"),
              std::string::npos);
    const Answer json = answerTo(words("show --json") + QStringList({name("a"), name("missing")}));
    EXPECT_EQ(json.status, 2);
    EXPECT_EQ(json.out.substr(0, 18), "{\"files\":[{\"file\":");
    EXPECT_EQ(json.out.substr(json.out.size() - 4), "}]}\n");
}

TEST_F(ShowCommand, ColoursOnRequest) {
    EXPECT_NE(
        show("a", setupXml, words("--color=always")).out.find("\x1b[36mvise, small.stl\x1b[0m"),
        std::string::npos);
    EXPECT_EQ(show("a", setupXml, words("--color=red")).status, 2);
}

}  // namespace
}  // namespace trv::testing
