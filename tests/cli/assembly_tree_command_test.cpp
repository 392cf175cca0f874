#include <tests/cli/project_directory.h>

#include <gtest/gtest.h>

#include <sstream>

namespace trv::testing {
namespace {

class AssemblyTree : public ProjectDirectory {};

TEST_F(AssemblyTree, PrintsTheComponents) {
    const Answer answer = answerTo(words("assembly tree") + QStringList(file("a", setupXml)));
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.err, "");
    EXPECT_EQ(answer.out,
              u8"Setup, at 10 0 0\n"
              u8"├── Vise: vise, small.stl, at 0 5 0.1 -- left, \"old\"\n"
              u8"└── Part (disabled): part.stl, at 0 0 0, turned 90° about z\n");
}

TEST_F(AssemblyTree, PrintsAxisVectors) {
    const Answer answer =
        answerTo(words("assembly tree --matrix --match part") + QStringList(file("a", setupXml)));
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.out,
              u8"Setup, at 10 0 0\n"
              u8"└── Part (disabled): part.stl, at 0 0 0, axes 0 1 0 / -1 0 0 / 0 0 1\n");
}

TEST_F(AssemblyTree, IndentsComponentsOnRequest) {
    const Answer answer = answerTo(words("assembly tree --no-guides --match part") +
                                   QStringList(file("a", setupXml)));
    EXPECT_EQ(answer.out,
              u8"Setup, at 10 0 0\n"
              u8"    Part (disabled): part.stl, at 0 0 0, turned 90° about z\n");
}

TEST_F(AssemblyTree, PrintsAFileOfMaxDepth) {
    const Answer answer =
        answerTo(words("assembly tree") + QStringList(file("a", chainXml(999, "f"))));
    EXPECT_EQ(answer.status, 0);
    const std::string last =
        "\n" + std::string(std::size_t{4} * 997, ' ') + u8"└── L: f, at 0 0 0\n";
    EXPECT_EQ(answer.out.substr(answer.out.size() - last.size()), last);
}

TEST_F(AssemblyTree, StopsAtADepth) {
    const QStringList name(file("a", setupXml));
    EXPECT_EQ(answerTo(words("assembly tree --depth 0") + name).out, "Setup, at 10 0 0\n");
    EXPECT_EQ(answerTo(words("assembly tree --depth 1 --matrix") + name).out,
              answerTo(words("assembly tree --matrix") + name).out);
}

TEST_F(AssemblyTree, IsNegativeIfNothingMatches) {
    const QStringList name(file("a", setupXml));
    const Answer answer = answerTo(words("assembly tree --match none") + name);
    EXPECT_EQ(answer.status, 1);
    EXPECT_EQ(answer.out, "");
    EXPECT_EQ(answer.err, "");
    EXPECT_EQ(answerTo(words("assembly tree --json --match none") + name).status, 1);
    EXPECT_EQ(answerTo(words("assembly tree --json --match VISE") + name).status, 0);
    // One of the files is enough.
    EXPECT_EQ(answerTo(words("assembly tree --match vise") + name +
                       QStringList(file("b", chainXml(2, "f"))))
                  .status,
              0);
}

TEST_F(AssemblyTree, PrintsCounts) {
    const QStringList name(file("a", setupXml));
    const Answer answer = answerTo(words("assembly tree --summary") + name);
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.out,
              "Components        3\n"
              "Component number  2\n"
              "Placed files      1\n");
    EXPECT_EQ(
        answerTo(words("assembly tree --summary --json") + name).out,
        "{\"componentCount\":3,\"componentNumber\":2,\"dimension\":[100,50,20.5],\"file\":\"" +
            text("a") + "\",\"kind\":\"assembly\",\"placedFiles\":1}\n");
}

TEST_F(AssemblyTree, PrintsTheJsonOfShow) {
    const QStringList name(file("a", setupXml));
    EXPECT_EQ(answerTo(words("assembly tree --json") + name).out,
              answerTo(words("show --json") + name).out);
    const std::string selected = answerTo(words("assembly tree --json --depth 0") + name).out;
    EXPECT_NE(selected.find("\"name\":\"Setup\""), std::string::npos);
    EXPECT_EQ(selected.find("\"name\":\"Vise\""), std::string::npos);
}

TEST_F(AssemblyTree, FitsTheTerminalAndHasColoursThere) {
    std::ostringstream out;
    std::ostringstream err;
    const QStringList call =
        words("assembly tree --color=always --match vise") + QStringList(file("a", setupXml));
    EXPECT_EQ(cli::run(call, {out, err, 30, 0}), 0);
    EXPECT_EQ(out.str(), u8"Setup, at 10 0 0\n└── Vise: \x1b[36mvise, small.stl\x1b[0m, at…\n");
    out.str("");
    EXPECT_EQ(cli::run(words("assembly tree --color=never --match vise") + QStringList(path("a")),
                       {out, err, 40, 0}),
              0);
    EXPECT_EQ(out.str(), u8"Setup, at 10 0 0\n└── Vise: vise, small.stl, at 0 5 0.1 -…\n");
}

TEST_F(AssemblyTree, RejectsWrongOptions) {
    const QStringList name(file("a", setupXml));
    const auto mistake = [&](const char* options) {
        const Answer answer = answerTo(words("assembly tree") + words(options) + name);
        EXPECT_EQ(answer.status, 2);
        EXPECT_EQ(answer.out, "");
        return answer.err.substr(0, answer.err.find('\n'));
    };
    const std::string before = "trvfiles assembly tree: ";
    EXPECT_EQ(mistake("--depth=-1"), before + "--depth takes a whole number from 0 on, not '-1'");
    EXPECT_EQ(mistake("--depth x"), before + "--depth takes a whole number from 0 on, not 'x'");
    EXPECT_EQ(mistake("--match="), before + "--match takes a text");
    EXPECT_EQ(mistake("--color=red"), before + "--color takes auto, always or never, not 'red'");
    EXPECT_EQ(mistake("--summary --depth 1"), before + "--summary excludes --depth and --match");
    EXPECT_EQ(mistake("--summary --match a"), before + "--summary excludes --depth and --match");
}

TEST_F(AssemblyTree, PrintsTheFilesThatCanBeRead) {
    const Answer answer =
        answerTo(words("assembly tree --depth 0") +
                 QStringList({file("a", setupXml), path("missing"), file("b", chainXml(1, "f"))}));
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.err,
              "trvfiles: " + text("missing") + ": eFileIOOpenError: No such file or directory\n");
    EXPECT_EQ(answer.out, "==> " + text("a") + " <==\nSetup, at 10 0 0\n\n==> " + text("b") +
                              " <==\nL: f, at 0 0 0\n");
}

TEST_F(AssemblyTree, PrintsOneDocumentForSeveralFiles) {
    const Answer answer = answerTo(words("assembly tree --summary --json") +
                                   QStringList({file("a", setupXml), path("missing")}));
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.out,
              "{\"files\":[{\"componentCount\":3,\"componentNumber\":2,"
              "\"dimension\":[100,50,20.5],\"file\":\"" +
                  text("a") + "\",\"kind\":\"assembly\",\"placedFiles\":1}]}\n");
}

}  // namespace
}  // namespace trv::testing
