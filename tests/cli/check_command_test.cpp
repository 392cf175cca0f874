#include <tests/cli/answer.h>
#include <tests/cli/samples.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace trv::testing {
namespace {

class CheckCommand : public ::testing::Test {
protected:
    QString file(const char* name, std::string_view bytes) const {
        writeBytes(directory_ / name, bytes);
        return QString::fromStdString(path(name));
    }

    std::string path(const char* name) const { return (directory_ / name).generic_string(); }

    // A file about which there is one warning.
    QString warned(const char* name) const {
        return file(name, "0\n1 0 0 0\n0 1 0 0\n0 0 1 0\n0 0 0 2\n");
    }

    std::string warning(const char* name) const {
        return path(name) + ":5:1: warning: the fourth row of the matrix is not 0 0 0 1\n";
    }

    TemporaryDirectory directory_;
};

TEST_F(CheckCommand, SummarisesAFileWithoutFaults) {
    const Answer answer = answerTo(words("check") + QStringList(file("a", setupXml)));
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.err, "");
    EXPECT_EQ(answer.out, path("a") + ": ok (assembly, 3 components, 1 placed file)\n");
}

TEST_F(CheckCommand, PrintsWhatIsWrongOnStandardError) {
    const QStringList names = {file("one", setupXml), QString::fromStdString(path("missing")),
                               warned("two"), file("three", identityAxis)};
    const Answer answer = answerTo(words("check") + names);
    EXPECT_EQ(answer.status, 1);
    EXPECT_EQ(answer.err, path("missing") +
                              ": error: eFileIOOpenError: No such file or directory\n" +
                              warning("two"));
    EXPECT_EQ(answer.out, path("one") + ": ok (assembly, 3 components, 1 placed file)\n" +
                              path("missing") + ": error\n" + path("two") +
                              ": 1 warning (axis, identity)\n" + path("three") +
                              ": ok (axis, identity)\n"
                              "4 files: 2 ok, 1 with warnings, 1 with errors\n");
}

TEST_F(CheckCommand, CountsWarningsIfItIsStrict) {
    const QStringList names(warned("a"));
    EXPECT_EQ(answerTo(words("check") + names).status, 0);
    const Answer strict = answerTo(words("check --strict") + names);
    EXPECT_EQ(strict.status, 1);
    EXPECT_EQ(strict.err, warning("a"));
    EXPECT_EQ(answerTo(words("check --strict") + QStringList(file("b", setupXml))).status, 0);
}

TEST_F(CheckCommand, IsSilentAboutGoodFilesIfItIsQuiet) {
    const Answer answer =
        answerTo(words("check --quiet") + QStringList({file("a", setupXml), warned("b")}));
    EXPECT_EQ(answer.out, path("b") + ": 1 warning (axis, identity)\n");
    EXPECT_EQ(answer.err, warning("b"));
    EXPECT_EQ(answerTo(words("check --quiet") + QStringList(file("a", setupXml))).out, "");
}

TEST_F(CheckCommand, PrintsOneJsonDocument) {
    const std::string a = path("a");
    const QStringList names = {file("b", identityAxis), warned("a")};
    const Answer answer = answerTo(words("check --json") + names);
    const std::string rest =
        "{\"diagnostics\":[{\"code\":\"not-affine\",\"column\":1,\"line\":5,"
        "\"severity\":\"warning\"}],"
        "\"file\":\"" +
        a + "\",\"kind\":\"axis\",\"status\":\"eFileIOSuccess\"}]}\n";
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.err, "");
    EXPECT_EQ(answer.out, "{\"files\":[{\"diagnostics\":[],\"file\":\"" + path("b") +
                              "\",\"kind\":\"axis\",\"status\":\"eFileIOSuccess\"}," + rest);
    EXPECT_EQ(answerTo(words("check --json --quiet") + names).out, "{\"files\":[" + rest);
}

// An assembly with lines about each of which there are two warnings.
std::string warnings(int lines) {
    std::string text = "<ComponentInfo version=\"1\"><Attributs/><Component/>\n";
    for (int i = 0; i < lines; ++i)
        text += "x<Attributs/>\n";
    return text + "</ComponentInfo>";
}

std::size_t linesOf(const std::string& text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

TEST_F(CheckCommand, PrintsTheFirstHundredWarningsOfAFile) {
    const QStringList names = {file("a", warnings(50)), file("b", warnings(51))};
    const Answer answer = answerTo(words("check") + names);
    EXPECT_EQ(linesOf(answer.err), 201U);
    const std::string more = path("b") + ": 2 more warnings; --all prints them\n";
    EXPECT_EQ(answer.err.substr(answer.err.size() - more.size()), more);
    EXPECT_EQ(answer.out, path("a") + ": 100 warnings (assembly, 1 component, 0 placed files)\n" +
                              path("b") +
                              ": 102 warnings (assembly, 1 component, 0 placed files)\n"
                              "2 files: 0 ok, 2 with warnings\n");
}

TEST_F(CheckCommand, PrintsAllWarningsIfAsked) {
    const QStringList names(file("a", warnings(60)));
    EXPECT_EQ(linesOf(answerTo(words("check --all") + names).err), 120U);
    const std::string json = answerTo(words("check --json") + names).out;
    std::size_t count = 0;
    for (std::size_t at = 0; (at = json.find("\"code\":", at)) != std::string::npos; ++at)
        ++count;
    EXPECT_EQ(count, 120U);
}

TEST_F(CheckCommand, PrintsTheErrorAfterManyWarnings) {
    std::string text = "<ComponentInfo version=\"1\">\n";
    for (int i = 0; i < 101; ++i)
        text += "<a b='1' b='2'/>\n";
    const QStringList names(file("a", text));
    const Answer answer = answerTo(words("check") + names);
    EXPECT_EQ(linesOf(answer.err), 102U);
    EXPECT_NE(answer.err.find(": error: eFileIOContentError: "), std::string::npos);
}

TEST_F(CheckCommand, FindsReferencesToMissingFilesIfAsked) {
    const QStringList names(file("a",
                                 "[machine]\nname=m.mac\nposition=\n[header]\nx\n[postpro]\n"
                                 "origin_program=1 2 3\n[clamping_system]\nx\n"));
    EXPECT_EQ(answerTo(words("check") + names).err, "");
    const Answer answer = answerTo(words("check --references --strict") + names);
    EXPECT_EQ(answer.err, path("a") + ":2:6: warning: machine file \"m.mac\" does not exist\n");
    EXPECT_EQ(answer.status, 1);
}

TEST_F(CheckCommand, ChecksTheProjectFilesOfADirectory) {
    std::filesystem::create_directories(directory_ / "sub");
    file("b", identityAxis);
    file("a", setupXml);
    file("note", "note");
    file("empty", "");
    file("sub/c", identityAxis);
    const QStringList directory(QString::fromStdString(directory_.path().generic_string()));
    const Answer flat = answerTo(words("check") + directory);
    EXPECT_EQ(flat.err, "");
    EXPECT_EQ(flat.out, path("a") + ": ok (assembly, 3 components, 1 placed file)\n" + path("b") +
                            ": ok (axis, identity)\n2 files: 2 ok\n");
    EXPECT_EQ(flat.status, 0);
    EXPECT_EQ(answerTo(words("check --recursive --quiet") + directory).out, "");
    const std::string all = path("a") + ": ok (assembly, 3 components, 1 placed file)\n" +
                            path("b") + ": ok (axis, identity)\n" + path("sub/c") +
                            ": ok (axis, identity)\n3 files: 3 ok\n";
    for (const char* call : {"check --recursive --jobs 1", "check --recursive --jobs 16"})
        EXPECT_EQ(answerTo(words(call) + directory).out, all);
    // A file that is named has to be of a kind.
    EXPECT_EQ(answerTo(words("check") + QStringList(file("note", "note"))).status, 1);
}

TEST_F(CheckCommand, PrintsManyFilesInTheirOrder) {
    std::string expected;
    for (int i = 100; i < 300; ++i) {
        const std::string name = "f" + std::to_string(i);
        file(name.c_str(), i % 7 == 0 ? setupXml : identityAxis);
        expected +=
            path(name.c_str()) + (i % 7 == 0 ? ": ok (assembly, 3 components, 1 placed file)\n"
                                             : ": ok (axis, identity)\n");
    }
    const QStringList directory(QString::fromStdString(directory_.path().generic_string()));
    EXPECT_EQ(answerTo(words("check --jobs 8") + directory).out, expected + "200 files: 200 ok\n");
}

TEST_F(CheckCommand, RejectsANumberOfThreadsThatIsNone) {
    for (const char* jobs : {"0", "-1", "x", "", "257"}) {
        const Answer answer = answerTo({QStringLiteral("check"), QStringLiteral("--jobs"),
                                        QString::fromLatin1(jobs), QStringLiteral("a")});
        EXPECT_EQ(answer.status, 2);
        EXPECT_EQ(answer.err, "trvfiles check: '" + std::string(jobs) +
                                  "' is not a number of threads from 1 to 256\n"
                                  "Try 'trvfiles check --help'.\n");
    }
}

TEST_F(CheckCommand, RequiresAFile) {
    const Answer answer = answerTo(words("check"));
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.err, "trvfiles check: a file name is missing\nTry 'trvfiles check --help'.\n");
}

}  // namespace
}  // namespace trv::testing
