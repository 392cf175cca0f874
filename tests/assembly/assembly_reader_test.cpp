#include <tests/assembly/sample_components.h>
#include <trvfiles/assembly/assembly_reader.h>
#include <trvfiles/support/CFileFault.h>

#include <QBuffer>
#include <QDomImplementation>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace {

using ::testing::ElementsAre;
using trv::testing::Vector3;

class AssemblyReader : public ::testing::Test {
protected:
    void SetUp() override {
        QDomImplementation::setInvalidDataPolicy(QDomImplementation::ReturnNullNode);
    }

    EFileIOStatus read(const std::string& text) {
        QDomDocument document;
        EXPECT_TRUE(document.setContent(QByteArray::fromStdString(text))) << text;
        fault = {};
        CTrvAssemblyData plainData = data;
        const EFileIOStatus status = trv::readDocument(document, version, data, &fault);
        expectThatThePlainReaderAgrees(text, plainData, status);
        return status;
    }

    // The plain reader accepts a document only if it gives the same record.
    void expectThatThePlainReaderAgrees(const std::string& text, CTrvAssemblyData& plainData,
                                        EFileIOStatus status) {
        QBuffer device;
        device.setData(QByteArray::fromStdString(text));
        device.open(QIODevice::ReadOnly);
        int plainVersion = 0;
        isPlain = trv::readPlainDocument(device, trv::Accepted::complete, plainVersion, plainData);
        if (!isPlain) return;
        EXPECT_EQ(status, eFileIOSuccess) << text;
        EXPECT_EQ(plainVersion, version) << text;
        EXPECT_EQ(plainData, data) << text;
    }

    // An assembly whose root component has the given attributes and content.
    EFileIOStatus readComponent(const std::string& attributes, const std::string& content) {
        return read("<ComponentInfo version='1'><Attributs/><Component " + attributes + ">" +
                    content + "</Component></ComponentInfo>");
    }

    const CTrvAssemblyComponentData& root() {
        return static_cast<const CTrvAssemblyData&>(data).getRootComponent();
    }

    Vector3 translation() {
        Vector3 vector;
        root().getTranslation(vector.data());
        return vector;
    }

    Vector3 dimension() {
        Vector3 vector;
        data.getDimension(vector.data());
        return vector;
    }

    std::vector<int> leftOutLines() const {
        std::vector<int> lines;
        for (const CFileFault::Note& note : fault.notes) {
            if (note.kind == CFileFault::Note::Kind::leftOut) lines.push_back(note.line);
        }
        return lines;
    }

    CTrvAssemblyData data;
    bool isPlain = false;
    int version = -1;
    CFileFault fault;
};

constexpr const char* identity = "<vec1 x='1'/><vec2 y='1'/><vec3 z='1'/>";

TEST_F(AssemblyReader, ReadsTheSmallestAssembly) {
    EXPECT_EQ(read("<ComponentInfo version='1'><Attributs/><Component/></ComponentInfo>"),
              eFileIOSuccess);
    EXPECT_EQ(version, 1);
    EXPECT_EQ(root(), CTrvAssemblyComponentData());
    EXPECT_THAT(dimension(), ElementsAre(0, 0, 0));
}

TEST_F(AssemblyReader, RefusesAnotherRoot) {
    for (const char* name : {"componentinfo", "Component", "p:ComponentInfo", "ComponentInfos"}) {
        EXPECT_EQ(
            read("<" + std::string(name) + " version='1'><Attributs/><Component/></" + name + ">"),
            eFileIOStructureError)
            << name;
    }
    EXPECT_EQ(fault.reason, "the root element is <ComponentInfos>, not <ComponentInfo>");
    EXPECT_EQ(fault.cause, CFileFault::Cause::wrongRoot);
    EXPECT_EQ(fault.subject, "ComponentInfos");
}

TEST_F(AssemblyReader, AcceptsEveryIntegerAsAVersion) {
    const struct {
        const char* text;
        int value;
    } versions[] = {{"2", 2},
                    {"0", 0},
                    {"-3", -3},
                    {" 1 ", 1},
                    {"+1", 1},
                    {"01", 1},
                    {"2147483647", 2147483647}};
    for (const auto& each : versions) {
        EXPECT_EQ(read("<ComponentInfo version='" + std::string(each.text) +
                       "'><Attributs/><Component/></ComponentInfo>"),
                  eFileIOSuccess)
            << each.text;
        EXPECT_EQ(version, each.value);
    }
}

TEST_F(AssemblyReader, RefusesAVersionThatIsNotAnInteger) {
    for (const char* text : {"version='1.0'", "version='0x1'", "version=''", "version='2147483648'",
                             "version='one'", ""}) {
        EXPECT_EQ(read("<ComponentInfo " + std::string(text) +
                       "><Attributs/><Component/></ComponentInfo>"),
                  eFileIOContentError)
            << text;
        EXPECT_EQ(fault.reason, "the version of <ComponentInfo> is no integer");
        EXPECT_EQ(fault.cause, CFileFault::Cause::wrongVersion);
    }
}

TEST_F(AssemblyReader, NeedsAttributsInItsOwnSpelling) {
    EXPECT_EQ(read("<ComponentInfo version='1'><Attributes/><Component/></ComponentInfo>"),
              eFileIOContentError);
    EXPECT_EQ(fault.reason, "<ComponentInfo> has no <Attributs>");
    EXPECT_EQ(fault.cause, CFileFault::Cause::missingElement);
    EXPECT_EQ(fault.subject, "Attributs");
    EXPECT_EQ(fault.line, 1);
}

TEST_F(AssemblyReader, NeedsARootComponent) {
    EXPECT_EQ(read("<ComponentInfo version='1'><Attributs><Dimension x='7'/></Attributs>"
                   "</ComponentInfo>"),
              eFileIOContentError);
    EXPECT_EQ(fault.reason, "<ComponentInfo> has no <Component>");
    EXPECT_EQ(fault.cause, CFileFault::Cause::missingElement);
    EXPECT_EQ(fault.subject, "Component");
    // The reader sets the dimension before it searches the root component.
    EXPECT_THAT(dimension(), ElementsAre(7, 0, 0));
}

TEST_F(AssemblyReader, KeepsTheOldRootAfterAFailure) {
    data = trv::testing::assemblyOf(trv::testing::leaf("old", "old.stl"), {1, 2, 3});
    EXPECT_EQ(read("<ComponentInfo version='1'><Attributs><Dimension x='7'/></Attributs>"
                   "<Component name='new'><Orientation/></Component></ComponentInfo>"),
              eFileIOStructureError);
    EXPECT_EQ(root().getName(), "old");
    EXPECT_THAT(dimension(), ElementsAre(7, 0, 0));
}

TEST_F(AssemblyReader, ReadsAMissingCoordinateOfTheDimensionAsZero) {
    EXPECT_EQ(read("<ComponentInfo version='1'><Attributs><Dimension y='2' z='3'/></Attributs>"
                   "<Component/></ComponentInfo>"),
              eFileIOSuccess);
    EXPECT_THAT(dimension(), ElementsAre(0, 2, 3));
}

TEST_F(AssemblyReader, KeepsTheDimensionIfACoordinateIsNotANumber) {
    for (const char* coordinates : {"x=''", "x='1' y='a'", "x='1' y='2' z='3,5'"}) {
        data = trv::testing::assemblyOf({}, {7, 8, 9});
        EXPECT_EQ(read("<ComponentInfo version='1'><Attributs><Dimension " +
                       std::string(coordinates) + "/></Attributs><Component/></ComponentInfo>"),
                  eFileIOSuccess);
        EXPECT_THAT(dimension(), ElementsAre(7, 8, 9)) << coordinates;
    }
}

TEST_F(AssemblyReader, LeavesTheDimensionThatTheDocumentLacks) {
    const double earlier[] = {7, 8, 9};
    data.setDimension(earlier);
    for (const char* attributes : {"<Attributs/>", "<Attributs><dimension x='1'/></Attributs>",
                                   "<Attributs/><Dimension x='1'/>"}) {
        EXPECT_EQ(read("<ComponentInfo version='1'>" + std::string(attributes) +
                       "<Component/></ComponentInfo>"),
                  eFileIOSuccess);
        EXPECT_THAT(dimension(), ElementsAre(7, 8, 9)) << attributes;
    }
}

TEST_F(AssemblyReader, AcceptsNumbersInEveryValidForm) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const struct {
        const char* text;
        double value;
    } numbers[] = {{" 1.5 ", 1.5},
                   {".5", 0.5},
                   {"5.", 5},
                   {"+inf", infinity},
                   {"inf", infinity},
                   {"-inf", -infinity},
                   {"1e3", 1000},
                   {"0.10000000000000001", 0.1},
                   {"4.9406564584124654e-324", 4.9406564584124654e-324}};
    for (const auto& each : numbers) {
        ASSERT_EQ(
            readComponent("", "<Translation y='1' z='2' x='" + std::string(each.text) + "'/>"),
            eFileIOSuccess);
        EXPECT_THAT(translation(), ElementsAre(each.value, 1, 2)) << each.text;
    }
    ASSERT_EQ(readComponent("", "<Translation x='NaN' y='1'/>"), eFileIOSuccess);
    EXPECT_TRUE(std::isnan(translation()[0]));
    EXPECT_EQ(translation()[1], 1);
}

TEST_F(AssemblyReader, StopsAtACoordinateThatIsNotANumber) {
    for (const char* text :
         {"-nan", "infinity", "0x10", "1,5", "1 2", "1e400", "1e-400", "", "a"}) {
        ASSERT_EQ(readComponent("", "<Translation x='1' y='" + std::string(text) + "' z='3'/>"),
                  eFileIOSuccess);
        EXPECT_THAT(translation(), ElementsAre(1, 0, 0)) << text;
    }
}

TEST_F(AssemblyReader, ReadsTextsAndFlags) {
    ASSERT_EQ(readComponent("name='Spannb\u00fcchse' comment='&lt;&#9;&#1;&gt;' enabled='1'", ""),
              eFileIOSuccess);
    EXPECT_EQ(root().getName(), "Spannb\u00fcchse");
    EXPECT_EQ(root().getComment(), "<\t\x01>");
    EXPECT_TRUE(root().isEnabled());
}

TEST_F(AssemblyReader, EndsTextsAtTheirFirstNul) {
    ASSERT_EQ(readComponent("name='ab&#0;cd'", ""), eFileIOSuccess);
    EXPECT_EQ(root().getName(), "ab");
}

TEST_F(AssemblyReader, TreatsOnlyTheDigitOneAsEnabled) {
    for (const char* text : {"0", "false", "no", "true", "yes", "2", "01", " 1", ""}) {
        ASSERT_EQ(readComponent("enabled='" + std::string(text) + "'", ""), eFileIOSuccess);
        EXPECT_FALSE(root().isEnabled()) << text;
    }
    ASSERT_EQ(readComponent("", ""), eFileIOSuccess);
    EXPECT_TRUE(root().isEnabled());
}

TEST_F(AssemblyReader, ReadsAnOrientationThatIsComplete) {
    ASSERT_EQ(readComponent("",
                            "<Orientation><vec3 z='3'/><vec1 x='1' y='bad' z='9'/>"
                            "<vec2 x='0' y='2'/></Orientation>"),
              eFileIOSuccess);
    Vector3 vectors[3];
    root().getOrientation(vectors[0].data(), vectors[1].data(), vectors[2].data());
    EXPECT_THAT(vectors[0], ElementsAre(1, 0, 0));
    EXPECT_THAT(vectors[1], ElementsAre(0, 2, 0));
    EXPECT_THAT(vectors[2], ElementsAre(0, 0, 3));
}

TEST_F(AssemblyReader, RefusesARootWhoseOrientationIsIncomplete) {
    for (const char* vectors :
         {"", "<vec1/>", "<vec1/><vec2/>", "<vec2/><vec3/>", "<vec1/><vec3/>"}) {
        EXPECT_EQ(readComponent("", "<Orientation>" + std::string(vectors) + "</Orientation>"),
                  eFileIOStructureError)
            << vectors;
        EXPECT_EQ(fault.reason, "the root component's <Orientation> is not complete");
        EXPECT_EQ(fault.cause, CFileFault::Cause::incompleteOrientation);
    }
}

TEST_F(AssemblyReader, DropsAChildWhoseOrientationIsIncomplete) {
    ASSERT_EQ(readComponent("",
                            "<Data number='3'><Component name='a'/>"
                            "<Component name='b'><Orientation><vec1/><vec2/></Orientation>"
                            "<Data><Component name='c'/></Data></Component>"
                            "<Component name='d'/></Data>"),
              eFileIOSuccess);
    ASSERT_EQ(root().getComponents().size(), 2u);
    EXPECT_EQ(root().getComponents()[0].getName(), "a");
    EXPECT_EQ(root().getComponents()[1].getName(), "d");
    EXPECT_EQ(leftOutLines().size(), 1u);
}

TEST_F(AssemblyReader, ReportsWhatItLeavesOutOnEveryLevel) {
    const std::string sound = "<Component><Data><File name='f'/></Data></Component>\n";
    const std::string broken = "<Component><Orientation><vec1/><vec2/></Orientation></Component>\n";
    ASSERT_EQ(readComponent("", "<Data>\n" + sound + "<Component><Data>\n" + sound + broken +
                                    "</Data></Component>\n" + broken + "</Data>"),
              eFileIOSuccess);
    EXPECT_THAT(leftOutLines(), ElementsAre(5, 7));

    ASSERT_EQ(readComponent("", "<Data>" + sound + "</Data>"), eFileIOSuccess);
    EXPECT_TRUE(leftOutLines().empty());
}

TEST_F(AssemblyReader, CountsAComponentThatIsLeftOutOnceWhateverIsBelowIt) {
    const std::string broken = "<Component><Orientation/></Component>";
    ASSERT_EQ(readComponent("", "<Data><Component><Orientation/><Data>" + broken + broken +
                                    "</Data></Component></Data>"),
              eFileIOSuccess);
    EXPECT_EQ(leftOutLines().size(), 1u);
    ASSERT_EQ(readComponent("", "<Data>" + broken + "<File/></Data>"), eFileIOSuccess);
    EXPECT_TRUE(leftOutLines().empty());
}

TEST_F(AssemblyReader, ReadsTheExistingChildren) {
    ASSERT_EQ(readComponent("",
                            "<Data number='7'><Other/><Component name='a'/><Other/>"
                            "<Component name='b'/></Data>"),
              eFileIOSuccess);
    ASSERT_EQ(root().getComponents().size(), 2u);
    EXPECT_EQ(root().getComponents()[1].getName(), "b");
}

TEST_F(AssemblyReader, ReadsChildrenInDocumentOrderOnEveryLevel) {
    ASSERT_EQ(readComponent("name='r'",
                            "<Data><Component name='a'><Data><Component name='aa'/>"
                            "<Component name='ab'/></Data></Component>"
                            "<Component name='b'/><Component name='c'><Data>"
                            "<Component name='ca'/></Data></Component></Data>"),
              eFileIOSuccess);
    using trv::testing::group;
    const auto named = [](const char* name) { return trv::testing::leaf(name, ""); };
    EXPECT_EQ(root(), group("r", {group("a", {named("aa"), named("ab")}), named("b"),
                                  group("c", {named("ca")})}));
}

TEST_F(AssemblyReader, ReadsTheFileAndIgnoresTheChildren) {
    ASSERT_EQ(
        readComponent("", "<Data><Component name='a'/><File name='f.stl'/><File name='g'/></Data>"),
        eFileIOSuccess);
    EXPECT_EQ(root().getGeometryFileName(), "f.stl");
    EXPECT_TRUE(root().getComponents().empty());
}

TEST_F(AssemblyReader, IgnoresTheChildrenBesideAFileWithoutAName) {
    ASSERT_EQ(readComponent("", "<Data><File/><Component name='a'/></Data>"), eFileIOSuccess);
    EXPECT_EQ(root().getGeometryFileName(), "");
    EXPECT_TRUE(root().getComponents().empty());
    ASSERT_EQ(readComponent("", "<Data><File name=''/><Component name='a'/></Data>"),
              eFileIOSuccess);
    EXPECT_EQ(root().getGeometryFileName(), "");
    EXPECT_TRUE(root().getComponents().empty());
}

TEST_F(AssemblyReader, SearchesTheFileOnlyAmongTheDirectChildren) {
    ASSERT_EQ(
        readComponent("", "<Data><Other><File name='f'/></Other><Component name='a'/></Data>"),
        eFileIOSuccess);
    EXPECT_EQ(root().getGeometryFileName(), "");
    EXPECT_EQ(root().getComponents().size(), 1u);
}

TEST_F(AssemblyReader, UsesTheFirstElementOfEachName) {
    ASSERT_EQ(
        readComponent("", std::string("<Translation x='1'/><Translation x='2'/><Orientation>") +
                              identity + "</Orientation><Orientation/>" +
                              "<Data><Component/></Data><Data><File name='f'/></Data>"),
        eFileIOSuccess);
    EXPECT_THAT(translation(), ElementsAre(1, 0, 0));
    EXPECT_EQ(root().getComponents().size(), 1u);
    EXPECT_EQ(root().getGeometryFileName(), "");
}

TEST_F(AssemblyReader, SupportsNoNamespaces) {
    EXPECT_EQ(read("<ComponentInfo xmlns='urn:x' version='1'><Attributs/><Component/>"
                   "</ComponentInfo>"),
              eFileIOSuccess);
    EXPECT_EQ(read("<ComponentInfo version='1'><p:Attributs/><Component/></ComponentInfo>"),
              eFileIOContentError);
}

TEST_F(AssemblyReader, ReadsManyChildrenInTheTimeThatTheyTake) {
    std::string children;
    for (int i = 0; i < 20000; ++i)
        children += "<Component/>";
    ASSERT_EQ(readComponent("", "<Data>" + children + "</Data>"), eFileIOSuccess);
    EXPECT_EQ(root().getComponents().size(), 20000u);
}

using Kind = CFileFault::Note::Kind;

MATCHER_P5(IsNote, kind, line, column, subject, text, "") {
    return arg.kind == kind && arg.line == line && arg.column == column && arg.subject == subject &&
           arg.text == text;
}

TEST_F(AssemblyReader, NotesNothingInASoundDocument) {
    ASSERT_EQ(readComponent("name='a' enabled='0'", "<Translation x='1'/><Orientation>" +
                                                        std::string(identity) +
                                                        "</Orientation><Data><Component/></Data>"),
              eFileIOSuccess);
    EXPECT_EQ(fault.reason, "");
    EXPECT_EQ(fault.line, 0);
    EXPECT_TRUE(fault.notes.empty());
}

TEST_F(AssemblyReader, NotesAComponentThatItLeavesOut) {
    ASSERT_EQ(readComponent("",
                            "<Data>\n  <Component name='St\u00fcck'><Orientation/>"
                            "</Component></Data>"),
              eFileIOSuccess);
    EXPECT_THAT(fault.notes,
                ElementsAre(IsNote(Kind::leftOut, 2, 26, "St\u00fcck",
                                   "component \"St\u00fcck\" is left out: its <Orientation> is "
                                   "not complete")));
}

TEST_F(AssemblyReader, NotesACoordinateThatIsNotANumber) {
    ASSERT_EQ(read("<ComponentInfo version='1'><Attributs>\n<Dimension x='1' y='2,5'/>\n"
                   "</Attributs><Component>\n<Translation z='1e400'/><Orientation>\n"
                   "<vec1 x='a'/><vec2/><vec3/></Orientation></Component></ComponentInfo>"),
              eFileIOSuccess);
    EXPECT_THAT(
        fault.notes,
        ElementsAre(IsNote(Kind::notANumber, 2, 25, "Dimension",
                           "y of <Dimension> is not a number: \"2,5\" has a decimal comma, not a "
                           "point; the whole dimension is ignored"),
                    IsNote(Kind::notANumber, 4, 23, "Translation",
                           "z of <Translation> is not a number: \"1e400\"; it and those after it "
                           "are 0"),
                    IsNote(Kind::notANumber, 5, 12, "vec1",
                           "x of <vec1> is not a number: \"a\"; it and those after it are 0")));
}

TEST_F(AssemblyReader, NotesAnEnabledThatIsNeitherZeroNorOne) {
    ASSERT_EQ(readComponent("name='a' enabled='true'",
                            "<Data>\n<Component name='b' enabled='0'/>"
                            "<Component name='c' enabled=''/></Data>"),
              eFileIOSuccess);
    EXPECT_THAT(
        fault.notes,
        ElementsAre(
            IsNote(Kind::notAFlag, 1, 74, "a", "component \"a\" is disabled: enabled is \"true\""),
            IsNote(Kind::notAFlag, 2, 64, "c", "component \"c\" is disabled: enabled is \"\"")));
}

TEST_F(AssemblyReader, NotesNothingElseAboutAComponentThatItLeavesOut) {
    ASSERT_EQ(readComponent("",
                            "<Data><Component name='b' enabled='x'><Translation x='y'/>"
                            "<Orientation><vec1 x='z'/></Orientation></Component></Data>"),
              eFileIOSuccess);
    ASSERT_EQ(fault.notes.size(), 1u);
    EXPECT_EQ(fault.notes[0].kind, Kind::leftOut);
}

TEST_F(AssemblyReader, NotesNothingAboutWhatIsInComponentsThatAFileHides) {
    ASSERT_EQ(readComponent("name='a' enabled='x'",
                            "\n<Translation y='b'/><Data><Component enabled='c'/>"
                            "<File name='f'/><Component enabled='d'/></Data>"),
              eFileIOSuccess);
    EXPECT_THAT(
        fault.notes,
        ElementsAre(
            IsNote(Kind::notAFlag, 1, 71, "a", "component \"a\" is disabled: enabled is \"x\""),
            IsNote(Kind::notANumber, 2, 19, "Translation",
                   "y of <Translation> is not a number: \"b\"; it and those after it are 0"),
            IsNote(Kind::hiddenByFile, 2, 65, "a",
                   "the <File> of component \"a\" hides 2 components beside it, which are "
                   "ignored")));
}

TEST_F(AssemblyReader, KeepsTheNotesThatItHasGotAndThoseOfAFailure) {
    QDomDocument document;
    ASSERT_TRUE(
        document.setContent(QByteArray("<ComponentInfo version='1'><Attributs/>"
                                       "<Component enabled='2'><Orientation/></Component>"
                                       "</ComponentInfo>")));
    fault.notes.resize(1);
    EXPECT_EQ(trv::readDocument(document, version, data, &fault), eFileIOStructureError);
    EXPECT_EQ(fault.reason, "the root component's <Orientation> is not complete");
    EXPECT_EQ(fault.line, 1);
    EXPECT_EQ(fault.column, 62);
    EXPECT_EQ(fault.systemError, 0);
    ASSERT_EQ(fault.notes.size(), 2u);
    EXPECT_EQ(fault.notes[1].kind, Kind::notAFlag);
}

TEST_F(AssemblyReader, ReadsTheSameWithoutAFault) {
    QDomDocument document;
    ASSERT_TRUE(document.setContent(
        QByteArray("<ComponentInfo version='1'><Attributs/><Component enabled='2'><Data>"
                   "<Component><Orientation/></Component></Data></Component></ComponentInfo>")));
    EXPECT_EQ(trv::readDocument(document, version, data), eFileIOSuccess);
    EXPECT_FALSE(root().isEnabled());
    EXPECT_TRUE(root().getComponents().empty());
    ASSERT_TRUE(document.setContent(QByteArray("<a/>")));
    EXPECT_EQ(trv::readDocument(document, version, data), eFileIOStructureError);
}

}  // namespace
