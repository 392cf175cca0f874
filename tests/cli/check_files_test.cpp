#include <cli/check_files.h>
#include <tests/cli/samples.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>

#include <QJsonDocument>
#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace trv::cli {
namespace {

class CheckFiles : public ::testing::Test {
protected:
    FileReport check(std::string_view bytes, const CheckOptions& options = {}) const {
        testing::writeBytes(directory_ / "a", bytes);
        return checkFile(QString::fromStdString((directory_ / "a").generic_string()), options);
    }

    // The diagnostics without the name of the file.
    std::string problems(std::string_view bytes) const {
        std::ostringstream stream;
        for (const Diagnostic& diagnostic : check(bytes).diagnostics)
            printDiagnostic(QStringLiteral("a"), diagnostic, 0, stream);
        return stream.str();
    }

    testing::TemporaryDirectory directory_;
};

std::string assembly(const std::string& content) {
    return "<ComponentInfo version=\"1\">\n<Attributs/>\n<Component name=\"a\">\n" + content +
           "\n</Component>\n</ComponentInfo>\n";
}

TEST_F(CheckFiles, FindsNothingInFilesThatAreAllRight) {
    for (const char* bytes :
         {testing::setupXml, testing::turnedAxis, testing::identityAxis, testing::setupContext}) {
        EXPECT_EQ(problems(bytes), "");
    }
}

TEST_F(CheckFiles, FindsCoordinatesThatAreNotNumbers) {
    EXPECT_EQ(
        problems(assembly("  <Translation x=\"1\" y=\"-14O\"/>")),
        "a:4:25: warning: y of <Translation> is not a number: \"-14O\"; it and those after it "
        "are 0\n");
    EXPECT_EQ(problems(assembly("<Orientation><vec1 x=\"1\"/>\n<vec2\n y=\"1,5\"/>\n"
                                "<vec3/></Orientation>")),
              "a:6:5: warning: y of <vec2> is not a number: \"1,5\" has a decimal comma, not a "
              "point; it and those after it are 0\n");
}

TEST_F(CheckFiles, FindsNamesThatTheFormatDoesNotHave) {
    EXPECT_EQ(problems(assembly("  <translation x=\"1\"/>\n<Data Number=\"0\"/>")),
              "a:4:3: warning: <translation> in <Component> is ignored: the name is spelled "
              "<Translation>\n"
              "a:5:7: warning: attribute \"Number\" of <Data> is ignored: the name is spelled "
              "\"number\"\n");
}

TEST_F(CheckFiles, FindsElementsThatDoNotCount) {
    EXPECT_EQ(
        problems(assembly("<Data><Component/><File name=\"f\"/></Data>\n<Data/>")),
        "a:4:19: warning: the <File> of component \"a\" hides 1 component beside it, which is "
        "ignored\n"
        "a:5:1: warning: a further <Data> in <Component> is ignored: the first one counts\n");
}

TEST_F(CheckFiles, FindsComponentsThatAreLeftOutOrDisabled) {
    EXPECT_EQ(problems(assembly("<Data>\n<Component name=\"b\"><Orientation/></Component>\n"
                                "<Component name=\"c\" enabled=\"true\"/></Data>")),
              "a:5:1: warning: component \"b\" is left out: its <Orientation> is not complete\n"
              "a:6:30: warning: component \"c\" is disabled: enabled is \"true\"\n");
}

TEST_F(CheckFiles, FindsBytesThatAreNotText) {
    EXPECT_EQ(problems(assembly("<Data><File name=\"\xFF\"/></Data>")),
              "a:4:19: warning: bytes that are not text are read as U+FFFD\n");
}

TEST_F(CheckFiles, CountsBytesThatAreNotText) {
    EXPECT_EQ(problems(assembly("<Data><File name=\"\xFF\"/></Data>\n<!-- \xFE\xFE -->")),
              "a:4:19: warning: bytes that are not text are read as U+FFFD, 3 times\n");
}

TEST_F(CheckFiles, FindsTextBetweenElements) {
    EXPECT_EQ(problems(assembly("  one &amp; two\n <Data>\n<![CDATA[ in ]]>\n<File name=\"f\">x"
                                "</File></Data> &y;")),
              "a:4:3: warning: text in <Component> is ignored: \"one & two\"\n"
              "a:6:1: warning: text in <Data> is ignored: \"in\"\n"
              "a:7:16: warning: text in <File> is ignored: \"x\"\n"
              "a:7:32: warning: text in <Component> is ignored: \"&y;\"\n");
    EXPECT_EQ(problems(assembly("<Extra>text</Extra>")),
              "a:4:1: warning: <Extra> in <Component> is ignored: the format has no such element "
              "there\n");
}

TEST_F(CheckFiles, FindsAttributesThatOccurTwice) {
    EXPECT_EQ(problems(assembly("<Translation x=\"1\" y=\"2\" x=\"3\" z=\"4\"\n x=\"5\"/>")),
              "a:5:2: warning: attribute \"x\" of <Translation> occurs 3 times: the last one "
              "counts\n");
    EXPECT_EQ(check(assembly("<Data><File name=\"f\" name=\"\"/></Data>")).summary.toStdString(),
              "assembly, 1 component, 0 placed files");
}

TEST_F(CheckFiles, FindsReferencesThatAreCut) {
    EXPECT_EQ(problems(assembly("<Data><File name=\"&#65;&#xE0042;\"/></Data>")),
              "a:4:19: warning: \"&#xE0042;\" in attribute \"name\" of <File> is read as U+0042\n");
    EXPECT_EQ(problems(assembly("<Data><File name=\"&#xFFFD;&#65;\"/></Data>")), "");
}

TEST_F(CheckFiles, FindsUnknownSectionsAndKeys) {
    EXPECT_EQ(problems("[machine]\nname=M\nposition=\nodd=1\nName=x\n[postpro]\n"
                       "origin_program=1 2 3\n[header]\nversion=2\n[clamping_system]\nx\n"
                       "[Part]\nsurface_group=s\n[extra]\nname=1\n[Machine]\nname=2\n"),
              "a:4:1: warning: machine.odd is ignored: machine contexts do not have it\n"
              "a:5:1: warning: machine.Name is ignored: the name is spelled \"name\"\n"
              "a:12:1: warning: section [Part] is ignored: the name is spelled \"part\"\n"
              "a:14:1: warning: section [extra] is ignored: machine contexts do not have it\n"
              "a:16:1: warning: section [Machine] is ignored: the name is spelled \"machine\"\n");
}

TEST_F(CheckFiles, FindsAxesThatDoNotSpanSpace) {
    EXPECT_EQ(problems("0\n1 0 0 0\n0 0 0 0\n0 0 1 0\n0 0 0 1\n"),
              "a:2:1: warning: the axes do not span space: they are read as zeros\n");
}

TEST_F(CheckFiles, FindsWhatIsWrongWithAnAxisFile) {
    EXPECT_EQ(problems("0\n2 0 0 0\n0 1 0 0\n0 0 1 0\n0 0 0 1\n"),
              "a:2:1: warning: the axes are not orthonormal: their inverse is read, which differs "
              "from what was written\n");
    EXPECT_EQ(problems("0\n1 0 0 5\n0 1 0 6\n0 0 1 7\n 1 0 0 -5\n0 1 0 -6\n0 0 1 -7\n0 0 0 1\n"
                       "  #1 2 3\n"),
              "a:5:2: warning: a row of the matrix is missing: the first row of the next block "
              "takes its place\n"
              "a:9:3: warning: the tags are ignored: they are read from line 10 only\n");
}

TEST_F(CheckFiles, FindsWhatIsWrongWithAMachineContext) {
    EXPECT_EQ(
        problems("[machine]\nname=M\nposition=\nproximity = 2,5\n"
                 "[postpro]\norigin_program=1 2\n[header]\n"),
        "a:4:13: warning: machine.proximity is not a number: \"2,5\" has a decimal comma, not "
        "a point; the number at its beginning is read\n"
        "a:6:16: warning: postpro.origin_program is not three numbers: \"1 2\"; it is "
        "ignored\n"
        "a:7:1: warning: section [header] has no lines\n"
        "a: warning: section [clamping_system] is missing\n");
}

TEST_F(CheckFiles, FindsNamesInAnotherCaseInAMachineContext) {
    EXPECT_EQ(problems("[Header]\nname=x\n[machine]\nname=M\nposition=\n Proximity = 1\n"
                       "[postpro]\norigin_program=1 2 3\n[clamping_system]\nx\n"),
              "a:1:1: warning: section [header] is missing: the name is in another case here\n"
              "a:6:2: warning: machine.proximity is not read: its key is in another case here\n");
}

TEST_F(CheckFiles, ReportsWhyAFileCannotBeRead) {
    EXPECT_EQ(problems("<ComponentInfo version=\"1\">\n<a></b>"),
              "a:2:7: error: eFileIOContentError: tag mismatch: <a> of line 2 is not closed\n");
    EXPECT_EQ(problems("<ComponentInfo version=\"1\">\n<Attributs>\n"),
              "a:3:1: error: eFileIOContentError: unexpected end of file: <Attributs> of line 2 is "
              "not closed\n");
    EXPECT_EQ(problems("\n  <a/>"),
              "a:2:3: error: eFileIOStructureError: the root element is <a>, not "
              "<ComponentInfo>\n");
    EXPECT_EQ(problems("0\n1 0 0 0\n0 1 x\n"),
              "a:3:5: error: eFileIOContentError: four numbers are expected\n");
    EXPECT_EQ(problems("0\n1 0 0 0\n"),
              "a:3: error: eFileIOContentError: four numbers are expected\n");
    EXPECT_EQ(problems("\n\n[machine]\nname=M\n"),
              "a:3:1: error: eFileIOContentError: section [machine] has no \"position\"\n"
              "a: warning: section [header] is missing\n");
    EXPECT_EQ(problems(""), "a: error: eFileIOContentError: the file is empty\n");
    EXPECT_EQ(problems("note"),
              "a: error: eFileIOContentError: neither an assembly, nor an axis file, nor a machine "
              "context\n");
}

TEST_F(CheckFiles, FindsReferencesToMissingFilesIfAsked) {
    CheckOptions options;
    options.checksReferences = true;
    const std::string bytes = assembly("<Data><File name=\"no.stl\"/></Data>");
    EXPECT_TRUE(check(bytes).diagnostics.empty());
    const FileReport report = check(bytes, options);
    ASSERT_EQ(report.diagnostics.size(), 1U);
    EXPECT_EQ(report.diagnostics[0].code.toStdString(), "reference-missing");
    EXPECT_EQ(report.diagnostics[0].text.toStdString(), "geometry file \"no.stl\" does not exist");
    EXPECT_EQ(report.diagnostics[0].place.line, 4);
    EXPECT_EQ(report.diagnostics[0].place.column, 19);
    const FileReport context = check(testing::setupContext, options);
    ASSERT_EQ(context.diagnostics.size(), 3U);
    EXPECT_EQ(context.diagnostics[2].text.toStdString(),
              "reference axis file \"transfo.dat\" does not exist");
    EXPECT_EQ(context.diagnostics[2].place.line, 11);
    EXPECT_EQ(context.diagnostics[2].place.column, 16);
}

TEST_F(CheckFiles, QuotesTheLineOnlyForATerminal) {
    CheckOptions options;
    options.showsSource = true;
    const std::string bytes = assembly(" <translation/>\r");
    EXPECT_EQ(check(bytes, options).diagnostics.at(0).sourceLine.toStdString(), " <translation/>");
    EXPECT_EQ(check(bytes).diagnostics.at(0).sourceLine.toStdString(), "");
}

TEST_F(CheckFiles, DistinguishesOtherFilesFromThoseThatCannotBeRead) {
    EXPECT_TRUE(isNoProjectFile(check("note")));
    EXPECT_TRUE(isNoProjectFile(check("")));
    EXPECT_FALSE(isNoProjectFile(check(testing::setupXml)));
    EXPECT_FALSE(isNoProjectFile(check("<a/>")));
    EXPECT_FALSE(isNoProjectFile(checkFile(QStringLiteral("missing"), {})));
    EXPECT_FALSE(isNoProjectFile(unlistedDirectory(QStringLiteral("a"), QStringLiteral("why"))));
}

TEST_F(CheckFiles, GiveAVerdict) {
    FileReport report = check(testing::setupXml);
    report.name = QStringLiteral("a\tb");
    EXPECT_EQ(verdictText(report).toStdString(),
              "a\\x09b: ok (assembly, 3 components, 1 placed file)");
    report.diagnostics.resize(1);
    EXPECT_EQ(verdictText(report).toStdString(),
              "a\\x09b: 1 warning (assembly, 3 components, 1 placed file)");
    report.diagnostics.resize(2);
    EXPECT_EQ(verdictText(report).toStdString(),
              "a\\x09b: 2 warnings (assembly, 3 components, 1 placed file)");
    report.status = eFileIOContentError;
    EXPECT_EQ(verdictText(report).toStdString(), "a\\x09b: error");
}

TEST_F(CheckFiles, HaveJson) {
    FileReport report = check("<a/>");
    report.name = QStringLiteral("a");
    EXPECT_EQ(QJsonDocument(reportJson(report)).toJson(QJsonDocument::Compact).toStdString(),
              "{\"diagnostics\":[{\"code\":\"root-element-wrong\",\"column\":1,\"line\":1,"
              "\"severity\":\"error\",\"subject\":\"a\"}],\"file\":\"a\","
              "\"kind\":\"assembly\","
              "\"status\":\"eFileIOStructureError\"}");
}

}  // namespace
}  // namespace trv::cli
