#include <tests/assembly/sample_components.h>
#include <trvfiles/assembly/assembly_reader.h>

#include <QDomImplementation>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

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
        report = {};
        return trv::readDocument(document, version, data, report);
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

    CTrvAssemblyData data;
    int version = -1;
    trv::ReadReport report;
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
    EXPECT_EQ(report.fault.reason,
              QStringLiteral("the root element is <ComponentInfos>, not <ComponentInfo>"));
}

TEST_F(AssemblyReader, TakesEveryIntegerForAVersion) {
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

TEST_F(AssemblyReader, RefusesAVersionThatIsNoInteger) {
    for (const char* text : {"version='1.0'", "version='0x1'", "version=''", "version='2147483648'",
                             "version='one'", ""}) {
        EXPECT_EQ(read("<ComponentInfo " + std::string(text) +
                       "><Attributs/><Component/></ComponentInfo>"),
                  eFileIOContentError)
            << text;
        EXPECT_EQ(report.fault.reason,
                  QStringLiteral("the version of <ComponentInfo> is no integer"));
    }
}

TEST_F(AssemblyReader, NeedsAttributsInItsOwnSpelling) {
    EXPECT_EQ(read("<ComponentInfo version='1'><Attributes/><Component/></ComponentInfo>"),
              eFileIOContentError);
    EXPECT_EQ(report.fault.reason, QStringLiteral("<ComponentInfo> has no <Attributs>"));
    EXPECT_EQ(report.fault.line, 1);
}

TEST_F(AssemblyReader, NeedsARootComponent) {
    EXPECT_EQ(read("<ComponentInfo version='1'><Attributs><Dimension x='7'/></Attributs>"
                   "</ComponentInfo>"),
              eFileIOContentError);
    EXPECT_EQ(report.fault.reason, QStringLiteral("<ComponentInfo> has no <Component>"));
    // The dimension is taken before the root component is looked for.
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

TEST_F(AssemblyReader, LeavesTheDimensionWhereACoordinateIsNoNumber) {
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

TEST_F(AssemblyReader, TakesNumbersInEveryFormThatIsOne) {
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

TEST_F(AssemblyReader, StopsAtACoordinateThatIsNoNumber) {
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

TEST_F(AssemblyReader, TakesOnlyTheDigitOneForEnabled) {
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
        EXPECT_EQ(report.fault.reason,
                  QStringLiteral("the root component's <Orientation> is not complete"));
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
    EXPECT_EQ(report.leftOut, 1);
}

TEST_F(AssemblyReader, ReportsWhatItLeavesOutOnEveryLevel) {
    const std::string sound = "<Component><Data><File name='f'/></Data></Component>\n";
    const std::string broken = "<Component><Orientation><vec1/><vec2/></Orientation></Component>\n";
    ASSERT_EQ(readComponent("", "<Data>\n" + sound + "<Component><Data>\n" + sound + broken +
                                    "</Data></Component>\n" + broken + "</Data>"),
              eFileIOSuccess);
    EXPECT_EQ(report.leftOut, 2);
    EXPECT_EQ(report.firstLeftOutLine, 5);

    ASSERT_EQ(readComponent("", "<Data>" + sound + "</Data>"), eFileIOSuccess);
    EXPECT_EQ(report.leftOut, 0);
}

TEST_F(AssemblyReader, CountsAComponentThatIsLeftOutOnceWhateverIsBelowIt) {
    const std::string broken = "<Component><Orientation/></Component>";
    ASSERT_EQ(readComponent("", "<Data><Component><Orientation/><Data>" + broken + broken +
                                    "</Data></Component></Data>"),
              eFileIOSuccess);
    EXPECT_EQ(report.leftOut, 1);
    ASSERT_EQ(readComponent("", "<Data>" + broken + "<File/></Data>"), eFileIOSuccess);
    EXPECT_EQ(report.leftOut, 0);
}

TEST_F(AssemblyReader, ReadsTheChildrenThatAreThere) {
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

TEST_F(AssemblyReader, TakesTheFileAndIgnoresTheChildren) {
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

TEST_F(AssemblyReader, LooksForTheFileAmongTheDirectChildrenAlone) {
    ASSERT_EQ(
        readComponent("", "<Data><Other><File name='f'/></Other><Component name='a'/></Data>"),
        eFileIOSuccess);
    EXPECT_EQ(root().getGeometryFileName(), "");
    EXPECT_EQ(root().getComponents().size(), 1u);
}

TEST_F(AssemblyReader, TakesTheFirstElementOfEachName) {
    ASSERT_EQ(
        readComponent("", std::string("<Translation x='1'/><Translation x='2'/><Orientation>") +
                              identity + "</Orientation><Orientation/>" +
                              "<Data><Component/></Data><Data><File name='f'/></Data>"),
        eFileIOSuccess);
    EXPECT_THAT(translation(), ElementsAre(1, 0, 0));
    EXPECT_EQ(root().getComponents().size(), 1u);
    EXPECT_EQ(root().getGeometryFileName(), "");
}

TEST_F(AssemblyReader, KnowsNoNamespaces) {
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

}  // namespace
