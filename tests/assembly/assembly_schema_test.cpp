// The schema docs/schemas/assembly.xsd beside the reader: it accepts what the reader reads without
// a note, with the exceptions that docs/file-formats.md lists.

#include <tests/assembly/sample_components.h>
#include <tests/assembly/schema_validation.h>
#include <tests/assembly/written_assemblies.h>
#include <tests/common/file_bytes.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/assembly/CTrvAssemblyIO.h>
#include <trvfiles/support/CFileFault.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

namespace trv::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::UnorderedElementsAre;

// The names of what the reader notes; of the cause alone if it rejects the document.
std::set<std::string> readerNotes(const std::string& document) {
    CTrvAssemblyData data;
    CFileFault fault;
    const EFileIOStatus status = CTrvAssemblyIO::readBytes(document, data, &fault);
    if (status != eFileIOSuccess) return {fileFaultCauseName(fault.cause)};
    std::set<std::string> names;
    for (const CFileFault::Note& note : fault.notes)
        names.insert(fileNoteKindName(note.kind));
    return names;
}

std::string documentWith(const std::string& rootComponent) {
    return "<ComponentInfo version='1'><Attributs/>" + rootComponent + "</ComponentInfo>";
}

// A root component with this content.
std::string with(const std::string& content) {
    return documentWith("<Component name='a'>" + content + "</Component>");
}

std::string withCoordinate(const std::string& text) {
    return with("<Translation x='" + text + "'/>");
}

std::string withVersion(const std::string& text) {
    return "<ComponentInfo version='" + text + "'><Attributs/><Component/></ComponentInfo>";
}

struct Altered {
    std::string document;
    std::string note;
};

const std::vector<Altered>& alteredDocuments() {
    static const std::vector<Altered> documents = {
        // Names.
        {with("<translation/>"), "unknown-name"},
        {with("<Data><file/></Data>"), "unknown-name"},
        {with("<Data><component/></Data>"), "unknown-name"},
        {with("<Name/>"), "unknown-name"},
        {with("<File/>"), "unknown-name"},
        {with("<vec1/>"), "unknown-name"},
        {with("<Data><Translation/></Data>"), "unknown-name"},
        {with("<Data><File><Component/></File></Data>"), "unknown-name"},
        {with("<Translation><x/></Translation>"), "unknown-name"},
        {with("<Translation><x xmlns='urn:trvfiles:none'/></Translation>"), "unknown-name"},
        {with("<Orientation><vec1/><vec2/><vec3/><vec4/></Orientation>"), "unknown-name"},
        {with("<p:Data xmlns:p='urn:x'/>"), "unknown-name"},
        {"<ComponentInfo version='1'><Attributs><Size/></Attributs><Component/></ComponentInfo>",
         "unknown-name"},
        {"<ComponentInfo version='1'><Attributs/><Attributes/><Component/></ComponentInfo>",
         "unknown-name"},
        {"<ComponentInfo version='1'><Attributs x='1'/><Component/></ComponentInfo>",
         "unknown-name"},
        {"<ComponentInfo version='1' name='a'><Attributs/><Component/></ComponentInfo>",
         "unknown-name"},
        {documentWith("<Component Name='a'/>"), "unknown-name"},
        {with("<Translation X='1'/>"), "unknown-name"},
        {with("<Translation x='1' unit='mm'/>"), "unknown-name"},
        {with("<Orientation x='1'><vec1/><vec2/><vec3/></Orientation>"), "unknown-name"},
        {with("<Data Number='1'/>"), "unknown-name"},
        {with("<Data><File Name='a'/></Data>"), "unknown-name"},
        // Elements that occur twice.
        {"<ComponentInfo version='1'><Attributs/><Attributs/><Component/></ComponentInfo>",
         "element-repeated"},
        {"<ComponentInfo version='1'><Attributs><Dimension/><Dimension/></Attributs><Component/>"
         "</ComponentInfo>",
         "element-repeated"},
        {documentWith("<Component/><Component/>"), "element-repeated"},
        {with("<Translation/><Data/><Translation/>"), "element-repeated"},
        {with("<Data/><Data/>"), "element-repeated"},
        {with("<Orientation><vec1/><vec2/><vec3/><vec1/></Orientation>"), "element-repeated"},
        {with("<Data><File name='a'/><File name='a'/></Data>"), "element-repeated"},
        // Components beside a file.
        {with("<Data><File name='a'/><Component/></Data>"), "hidden-by-file"},
        {with("<Data><Component/><File name='a'/></Data>"), "hidden-by-file"},
        {with("<Data><Component/><File/></Data>"), "hidden-by-file"},
        // Components that are left out.
        {with("<Data><Component><Orientation/></Component></Data>"), "left-out"},
        {with("<Data><Component><Orientation><vec1/><vec3/></Orientation></Component></Data>"),
         "left-out"},
        // Numbers.
        {withCoordinate(""), "not-a-number"},
        {withCoordinate(" "), "not-a-number"},
        {withCoordinate("1,5"), "not-a-number"},
        {withCoordinate("1 2"), "not-a-number"},
        {withCoordinate("0x10"), "not-a-number"},
        {withCoordinate("1.5mm"), "not-a-number"},
        {withCoordinate("."), "not-a-number"},
        {withCoordinate("+"), "not-a-number"},
        {withCoordinate("e5"), "not-a-number"},
        {withCoordinate("1e"), "not-a-number"},
        {withCoordinate("1e1.5"), "not-a-number"},
        {withCoordinate("--1"), "not-a-number"},
        {withCoordinate("-nan"), "not-a-number"},
        {withCoordinate("infinity"), "not-a-number"},
        {withCoordinate("1e400"), "not-a-number"},
        {withCoordinate("-1.7976931348623159e308"), "not-a-number"},
        {withCoordinate("1e-400"), "not-a-number"},
        {withCoordinate("-0.1e-399"), "not-a-number"},
        {"<ComponentInfo version='1'><Attributs><Dimension z='a'/></Attributs><Component/>"
         "</ComponentInfo>",
         "not-a-number"},
        {with("<Orientation><vec1/><vec2 y='1O'/><vec3/></Orientation>"), "not-a-number"},
        // Flags.
        {documentWith("<Component enabled='true'/>"), "not-a-flag"},
        {documentWith("<Component enabled='2'/>"), "not-a-flag"},
        {documentWith("<Component enabled=''/>"), "not-a-flag"},
        {documentWith("<Component enabled=' 1'/>"), "not-a-flag"},
        {documentWith("<Component enabled='01'/>"), "not-a-flag"},
        // Text between elements.
        {with("text"), "text-ignored"},
        {with("<Data>&lt;</Data>"), "text-ignored"},
        {with("<Data><![CDATA[a]]></Data>"), "text-ignored"},
        {with("<Translation>1 2 3</Translation>"), "text-ignored"},
        {with("<Data><File>a.stl</File></Data>"), "text-ignored"},
        // What no XML parser accepts.
        {with("<Translation x='1' x='2'/>"), "attribute-repeated"},
        {with("<Data><File name='a\xC3'/></Data>"), "not-text"},
        // Documents that the reader rejects.
        {"<ComponentInfo version='1'><Attributs/><Component/>", "not-well-formed"},
        {"<componentinfo version='1'><Attributs/><Component/></componentinfo>",
         "root-element-wrong"},
        {"<Component/>", "root-element-wrong"},
        {"<ComponentInfo><Attributs/><Component/></ComponentInfo>", "version-not-an-integer"},
        {withVersion(""), "version-not-an-integer"},
        {withVersion("1.0"), "version-not-an-integer"},
        {withVersion("0x1"), "version-not-an-integer"},
        {withVersion("2147483648"), "version-not-an-integer"},
        {withVersion("1 2"), "version-not-an-integer"},
        {"<ComponentInfo version='1'><Component/></ComponentInfo>", "element-missing"},
        {"<ComponentInfo version='1'><Attributs/></ComponentInfo>", "element-missing"},
        {with("<Orientation><vec1/><vec2/></Orientation>"), "orientation-incomplete"},
    };
    return documents;
}

const std::vector<std::string>& plainDocuments() {
    static const std::vector<std::string> documents = {
        documentWith("<Component/>"),
        "<?xml version='1.0' encoding='UTF-8'?>\n<!-- a --><?target data?>\n" +
            documentWith("<!-- b --><Component><?target?></Component>") + "\n<!-- c -->\n",
        "<!DOCTYPE ComponentInfo SYSTEM 'missing.dtd'>" + documentWith("<Component/>"),
        // The order of elements and of attributes.
        "<ComponentInfo version='1'><Component><Data><File/></Data><Orientation><vec3 z='1' y='0'/>"
        "<vec1 x='1'/><vec2 y='1'/></Orientation><Translation z='3' x='1' y='2'/></Component>"
        "<Attributs><Dimension z='3' y='2' x='1'/></Attributs></ComponentInfo>",
        documentWith("<Component enabled='0' comment='b' name='a'/>"),
        documentWith("<Component enabled='1' comment='' name=''/>"),
        // Blanks between tags.
        "<ComponentInfo\n version = '1' >\n\t<Attributs > <Dimension > \r\n</Dimension></Attributs>"
        "<Component> <Translation>\n</Translation><Data>\n<File>&#32;</File> </Data></Component> "
        "</ComponentInfo>",
        // What Data may have.
        with("<Data/>"),
        with("<Data number=''/>"),
        with("<Data number='many'><Component/></Data>"),
        with("<Data number='7'><Component/><Component/></Data>"),
        with("<Data><File name=''/></Data>"),
        with("<Data><Component><Data><Component><Data><File name='a'/></Data></Component></Data>"
             "</Component></Data>"),
        // Texts.
        documentWith("<Component name='&lt;&amp;&quot;&#x9;&#xA;&#xD; \u00D8 \U0001F600'/>"),
        // Other namespaces.
        "<ComponentInfo xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' "
        "xsi:noNamespaceSchemaLocation='assembly.xsd' version='1'><Attributs xml:lang='de'/>"
        "<Component xmlns:p='urn:x' p:id='7'><Translation p:unit='mm'/><Data p:a='1'>"
        "<File p:b='2'/></Data></Component></ComponentInfo>",
        // Numbers.
        withCoordinate("1.5"),
        withCoordinate("-.5"),
        withCoordinate("5."),
        withCoordinate("+2"),
        withCoordinate("1e3"),
        withCoordinate("-1.5E-3"),
        withCoordinate("007"),
        withCoordinate(" 1 "),
        withCoordinate("&#9;1&#10;"),
        withCoordinate("0"),
        withCoordinate("-0.0"),
        withCoordinate("0e400"),
        withCoordinate(".0e-9999"),
        withCoordinate("1.7976931348623157e308"),
        withCoordinate("-1.7976931348623157e+308"),
        withCoordinate("4.9e-324"),
        withCoordinate("inf"),
        withCoordinate("-INF"),
        withCoordinate("+Inf"),
        withCoordinate("NaN"),
        withCoordinate(" nan "),
        withVersion("2"),
        withVersion("-3"),
        withVersion("+1"),
        withVersion("01"),
        withVersion(" 1 "),
        withVersion("2147483647"),
    };
    return documents;
}

std::vector<std::string> documentsOf(const std::vector<Altered>& altered) {
    std::vector<std::string> documents;
    for (const Altered& each : altered)
        documents.push_back(each.document);
    return documents;
}

TEST(AssemblySchema, RejectsWhatTheReaderAltersOrRejects) {
    const SchemaAnswer answer = askSchema(documentsOf(alteredDocuments()));
    for (std::size_t i = 0; i < alteredDocuments().size(); ++i) {
        const auto& [document, note] = alteredDocuments()[i];
        EXPECT_THAT(readerNotes(document), Contains(note)) << document;
        EXPECT_FALSE(answer.accepted[i]) << document;
    }
    // Otherwise it would reject every document.
    EXPECT_THAT(answer.output, Not(HasSubstr("Schemas parser error")));
}

TEST(AssemblySchema, AcceptsWhatTheReaderTakesAsItIs) {
    const SchemaAnswer answer = askSchema(plainDocuments());
    for (std::size_t i = 0; i < plainDocuments().size(); ++i) {
        EXPECT_THAT(readerNotes(plainDocuments()[i]), ElementsAre()) << plainDocuments()[i];
        EXPECT_TRUE(answer.accepted[i]) << plainDocuments()[i];
    }
    EXPECT_THAT(answer.output, Not(HasSubstr("error")));
}

// Every kind of note on an assembly is in a table, so that a new one is not forgotten.
TEST(AssemblySchema, IsComparedForEachKindOfNote) {
    using Kind = CFileFault::Note::Kind;
    const std::set<Kind> ofOtherFiles = {Kind::missingSection, Kind::missingRow,    Kind::notAffine,
                                         Kind::notOrthonormal, Kind::misplacedTags, Kind::singular};
    // A test of its own is below.
    std::set<std::string> compared = {"reference-cut"};
    for (const Altered& altered : alteredDocuments())
        compared.insert(altered.note);
    for (int i = 0; *fileNoteKindName(static_cast<Kind>(i)) != '\0'; ++i) {
        const Kind kind = static_cast<Kind>(i);
        if (ofOtherFiles.count(kind) > 0) continue;
        EXPECT_THAT(compared, Contains(fileNoteKindName(kind)));
    }
}

TEST(AssemblySchema, CannotRejectTheseDocuments) {
    const std::vector<Altered> documents = {
        {documentWith("<Component name='&#xE0041;'/>"), "reference-cut"},
        {"<!DOCTYPE a [<!ENTITY e 'f'>]>" + documentWith("<Component/>"), "entity-declared"},
    };
    const SchemaAnswer answer = askSchema(documentsOf(documents));
    for (const Altered& altered : documents)
        EXPECT_THAT(readerNotes(altered.document), ElementsAre(altered.note));
    EXPECT_THAT(answer.accepted, ElementsAre(true, true)) << answer.output;
}

TEST(AssemblySchema, LimitsNoDepth) {
    std::string deep = "<Component/>";
    for (int i = 0; i < 1000; ++i)
        deep = "<Component><Data>" + deep + "</Data></Component>";
    EXPECT_THAT(readerNotes(documentWith(deep)), ElementsAre("too-deep"));
    const SchemaAnswer answer = askSchema({documentWith(deep)});
    EXPECT_THAT(answer.accepted, ElementsAre(true)) << answer.output.substr(0, 2000);
}

TEST(AssemblySchema, RejectsTheseDocumentsThoughTheReaderTakesThem) {
    const std::vector<std::string> documents = {
        "<ComponentInfo xmlns='urn:x' version='1'><Attributs/><Component/></ComponentInfo>",
        documentWith("<Component undeclared:a='1'/>"),
        with("<![CDATA[ ]]>"),
        withCoordinate("\u00A0"
                       "1"),
        withVersion("1\u2003"),
        documentWith("<Component name='\x01'/>"),
    };
    const SchemaAnswer answer = askSchema(documents);
    for (std::size_t i = 0; i < documents.size(); ++i) {
        EXPECT_THAT(readerNotes(documents[i]), ElementsAre()) << documents[i];
        EXPECT_FALSE(answer.accepted[i]) << documents[i];
    }
}

TEST(AssemblySchema, AcceptsTheAssembliesOfTheSampleProject) {
    const std::string project = TRV_SAMPLE_PROJECT "/project/";
    const SchemaAnswer answer =
        askSchema({bytesOf(project + "bracket.xml"), bytesOf(project + "bracket-rev-b.xml")});
    EXPECT_THAT(answer.accepted, ElementsAre(true, true)) << answer.output;
}

TEST(WrittenAssemblies, AreRememberedUntilTheEndOfTheTest) {
    EXPECT_THAT(writtenAssemblies(), ElementsAre());
    std::string first;
    std::string second;
    CTrvAssemblyIO::writeBytes(first, assemblyOf(leaf("a", "a.stl")));
    CTrvAssemblyIO::writeBytes(second, assemblyOf(leaf("b\x01", "b.stl")));
    CTrvAssemblyIO::writeBytes(second, assemblyOf(leaf("b\x01", "b.stl")));
    EXPECT_THAT(writtenAssemblies(), UnorderedElementsAre(first, second));
    EXPECT_THAT(second, HasSubstr("name=\"b\x01\""));
}

}  // namespace
}  // namespace trv::testing
