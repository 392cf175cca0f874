#include <tests/cli/project_directory.h>
#include <trvfiles/facade/CQvFilesIO.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

namespace trv::testing {
namespace {

class AssemblyList : public ProjectDirectory {};

constexpr const char* csvHeader =
    "file,x,y,z,vec1x,vec1y,vec1z,vec2x,vec2y,vec2z,vec3x,vec3y,vec3z,assembly,path\r\n";

TEST_F(AssemblyList, PrintsThePlacedFiles) {
    const Answer answer = answerTo(words("assembly list") + QStringList(file("a", setupXml)));
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.out, "vise, small.stl, at 10 5 0.1, axes 1 0 0 / 0 1 0 / 0 0 1\n");
}

TEST_F(AssemblyList, PrintsCsv) {
    const Answer answer = answerTo(words("assembly list --csv") + QStringList(file("a", setupXml)));
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.out, csvHeader + ("\"vise, small.stl\",10,5,0.1,1,0,0,0,1,0,0,0,1," +
                                       text("a") + ",Setup/Vise[0]\r\n"));
}

TEST_F(AssemblyList, PrintsOneTableForSeveralFiles) {
    const Answer answer = answerTo(
        words("assembly list --csv") +
        QStringList({path("missing"), file("a", chainXml(1, "f")), file("b", chainXml(2, "=g"))}));
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.err,
              "trvfiles: " + text("missing") + ": eFileIOOpenError: No such file or directory\n");
    EXPECT_EQ(answer.out,
              csvHeader + ("f,0,0,0,1,0,0,0,1,0,0,0,1," + text("a") + ",L\r\n" +
                           "\"'=g\",0,0,0,1,0,0,0,1,0,0,0,1," + text("b") + ",L/L[0]\r\n"));
}

TEST_F(AssemblyList, PrintsRawCsv) {
    const Answer answer =
        answerTo(words("assembly list --csv --raw") + QStringList(file("a", chainXml(1, "=g"))));
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.out, csvHeader + ("=g,0,0,0,1,0,0,0,1,0,0,0,1," + text("a") + ",L\r\n"));
}

TEST_F(AssemblyList, NamesSeveralFiles) {
    const Answer answer =
        answerTo(words("assembly list") +
                 QStringList({file("a", chainXml(1, "f")), file("b", chainXml(1, "g"))}));
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.out, "==> " + text("a") +
                              " <==\nf, at 0 0 0, axes 1 0 0 / 0 1 0 / 0 0 1\n\n==> " + text("b") +
                              " <==\ng, at 0 0 0, axes 1 0 0 / 0 1 0 / 0 0 1\n");
}

TEST_F(AssemblyList, PrintsOneDocumentForSeveralFiles) {
    const QString one =
        file("a", "<ComponentInfo version=\"1\"><Attributs/><Component/></ComponentInfo>");
    EXPECT_EQ(answerTo(words("assembly list --json") + QStringList(one)).out,
              "{\"file\":\"" + text("a") + "\",\"placements\":[]}\n");
    EXPECT_EQ(answerTo(words("assembly list --json") + QStringList({one, one})).out,
              "{\"files\":[{\"file\":\"" + text("a") + "\",\"placements\":[]},{\"file\":\"" +
                  text("a") + "\",\"placements\":[]}]}\n");
}

TEST_F(AssemblyList, PrintsJsonInFullPrecision) {
    CTrvAssemblyData data = assembly(leaf("a", "f"));
    const double translation[] = {0.1 + 0.2, 1e300, -1.0 / 3};
    data.getRootComponent().setTranslation(translation);
    ASSERT_EQ(CQvFilesIO(directory_.text()).writeTrvAssembly("a", data), eFileIOSuccess);
    const Answer answer =
        answerTo(words("assembly list") + QStringList(path("a")) + words("--json"));
    EXPECT_EQ(answer.status, 0);
    const QJsonArray read = QJsonDocument::fromJson(QByteArray::fromStdString(answer.out))
                                .object()
                                .value(QStringLiteral("placements"))
                                .toArray()
                                .at(0)
                                .toObject()
                                .value(QStringLiteral("translation"))
                                .toArray();
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(read.at(i).toDouble(), translation[i]);
}

TEST_F(AssemblyList, AcceptsOnlyOneForm) {
    const QStringList name(file("a", setupXml));
    const Answer answer = answerTo(words("assembly list --csv --json") + name);
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.out, "");
    EXPECT_EQ(answer.err,
              "trvfiles assembly list: --json and --csv exclude each other\n"
              "Try 'trvfiles assembly list --help'.\n");
    EXPECT_EQ(answerTo(words("assembly list --raw") + name).err,
              "trvfiles assembly list: --raw is only for --csv\n"
              "Try 'trvfiles assembly list --help'.\n");
}

TEST_F(AssemblyList, ReportsThatAFileIsMissing) {
    for (const char* command : {"assembly list", "assembly list --json", "assembly list --csv"}) {
        const Answer answer = answerTo(words(command) + QStringList(path("missing")));
        EXPECT_EQ(answer.status, 2);
        EXPECT_EQ(answer.out, "");
        EXPECT_EQ(answer.err, "trvfiles: " + text("missing") +
                                  ": eFileIOOpenError: No such file or directory\n");
    }
}

}  // namespace
}  // namespace trv::testing
