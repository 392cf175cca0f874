#include <tests/cli/answer.h>
#include <tests/cli/samples.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/facade/CQvFilesIO.h>

#include <gtest/gtest.h>

namespace trv::testing {
namespace {

class AssemblyCommands : public ::testing::Test {
protected:
    QString file(const char* name, std::string_view bytes) const {
        writeBytes(directory_ / name, bytes);
        return path(name);
    }

    QString file(const char* name, const CTrvAssemblyData& data) const {
        EXPECT_EQ(CQvFilesIO(directory_.text()).writeTrvAssembly(name, data), eFileIOSuccess);
        return path(name);
    }

    QString path(const char* name) const {
        return QString::fromStdString((directory_ / name).generic_string());
    }

    TemporaryDirectory directory_;
};

TEST_F(AssemblyCommands, DiffOfEqualFilesIsDone) {
    const QString name = file("a", setupXml);
    const Answer answer = answerTo(words("assembly diff") + QStringList({name, name}));
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.out, "The assemblies are equal\n");
    EXPECT_EQ(answer.err, "");
}

TEST_F(AssemblyCommands, DiffOfUnequalFilesIsNegative) {
    const Answer answer = answerTo(
        words("assembly diff") + QStringList({file("a", chain(2, "f")), file("b", chain(2, "g"))}));
    EXPECT_EQ(answer.status, 1);
    EXPECT_EQ(answer.out, "L/L[0]: file \"f\" -> \"g\"\n");
    EXPECT_EQ(answer.err, "");
}

TEST_F(AssemblyCommands, DiffOfTheOrderIsNegative) {
    const QString first = file("a", assembly(component("r", {leaf("a", "f"), leaf("b", "g")})));
    const QString second = file("b", assembly(component("r", {leaf("b", "g"), leaf("a", "f")})));
    const Answer answer = answerTo(words("assembly diff") + QStringList({first, second}));
    EXPECT_EQ(answer.status, 1);
    EXPECT_EQ(answer.out, "r/a[0]: moved among its siblings to [1]\n");
}

TEST_F(AssemblyCommands, DiffPrintsJson) {
    const QString first = file("a", chain(2, "f"));
    const QString second = file("b", chain(2, "g"));
    const Answer different = answerTo(words("assembly diff --json") + QStringList({first, second}));
    EXPECT_EQ(different.status, 1);
    EXPECT_EQ(different.err, "");
    EXPECT_EQ(different.out,
              "{\"files\":[\"" + first.toStdString() + "\",\"" + second.toStdString() +
                  "\"],\"differences\":[{\"change\":\"changed\",\"field\":\"geometryFile\","
                  "\"first\":\"f\",\"path\":\"L/L[0]\",\"second\":\"g\"}],\"notes\":[],"
                  "\"equal\":false}\n");
    const Answer equal = answerTo(words("assembly diff --json") + QStringList({first, first}));
    EXPECT_EQ(equal.status, 0);
    EXPECT_EQ(equal.out, "{\"files\":[\"" + first.toStdString() + "\",\"" + first.toStdString() +
                             "\"],\"differences\":[],\"notes\":[],\"equal\":true}\n");
}

TEST_F(AssemblyCommands, DiffOfTheThirdVectorIsDone) {
    const double vec1[] = {1, 0, 0};
    const double vec2[] = {0, 1, 0};
    const double vec3[] = {0, 0, -1};
    CTrvAssemblyData other = assembly(leaf("a", "f"));
    other.getRootComponent().setOrientation(vec1, vec2, vec3);
    const Answer answer =
        answerTo(words("assembly diff") +
                 QStringList({file("a", assembly(leaf("a", "f"))), file("b", other)}));
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.out,
              "note: a: vec3 0 0 1 -> 0 0 -1, which does not count\n"
              "The assemblies are equal\n");
}

TEST_F(AssemblyCommands, DiffReportsWhichFileCannotBeRead) {
    const Answer answer =
        answerTo(words("assembly diff") + QStringList({file("a", setupXml), file("b", "<b/>")}));
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.out, "");
    EXPECT_EQ(answer.err, "trvfiles: " + path("b").toStdString() +
                              ": eFileIOStructureError: line 1, column 3: the root element is <b>, "
                              "not <ComponentInfo>\n");
}

TEST_F(AssemblyCommands, DiffRequiresTwoFiles) {
    EXPECT_EQ(answerTo(words("assembly diff a")).err,
              "trvfiles assembly diff: a file name is missing\n"
              "Try 'trvfiles assembly diff --help'.\n");
    EXPECT_EQ(answerTo(words("assembly diff a b c")).err,
              "trvfiles assembly diff: 'c' is one file name too many\n"
              "Try 'trvfiles assembly diff --help'.\n");
}

}  // namespace
}  // namespace trv::testing
