// Notes on names and repetitions, as both readers of assemblies find them.

#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/assembly/assembly_reader.h>
#include <trvfiles/support/CFileFault.h>

#include <QBuffer>
#include <QByteArray>
#include <QDomDocument>
#include <gtest/gtest.h>

#include <string>

namespace {

using Kind = CFileFault::Note::Kind;

bool isReadPlain(const QByteArray& text, trv::Accepted accepted) {
    QBuffer device;
    device.setData(text);
    device.open(QIODevice::ReadOnly);
    CTrvAssemblyData data;
    int version = 0;
    return trv::readPlainDocument(device, accepted, version, data);
}

// A document with one root component, whose content begins at column 61 of line 1.
QByteArray documentOf(const std::string& content) {
    return QByteArray::fromStdString("<ComponentInfo version='1'><Attributs/><Component name='a'>" +
                                     content + "</Component></ComponentInfo>");
}

class AssemblyNotes : public ::testing::Test {
protected:
    // The notes as "LINE:COLUMN SUBJECT ATTRIBUTE: TEXT" lines. The plain reader must accept the
    // document if there are none, and leave it to the DOM if there are any.
    std::string notesOn(const QByteArray& text) {
        QDomDocument document;
        EXPECT_TRUE(document.setContent(text));
        fault_ = {};
        CTrvAssemblyData data;
        int version = 0;
        EXPECT_EQ(trv::readDocument(document, version, data, &fault_), eFileIOSuccess);
        EXPECT_EQ(isReadPlain(text, trv::Accepted::unaltered), fault_.notes.empty());
        EXPECT_TRUE(isReadPlain(text, trv::Accepted::complete));
        std::string lines;
        for (const CFileFault::Note& note : fault_.notes) {
            lines += std::to_string(note.line) + ':' + std::to_string(note.column) + ' ' +
                     note.subject + ' ' + note.attribute + ": " + note.text + '\n';
        }
        return lines;
    }

    CFileFault fault_;
};

TEST_F(AssemblyNotes, AreNotTakenOfADocumentThatIsAllRight) {
    EXPECT_EQ(notesOn("<ComponentInfo version='1'><Attributs><Dimension x='1' y='2' z='3'/>"
                      "</Attributs><Component name='a' comment='b' enabled='1'>"
                      "<Translation x='1' y='2' z='3'/><Orientation><vec1 x='1'/><vec2 y='1'/>"
                      "<vec3 z='1'/></Orientation><Data number='2'><Component><Data number='1'>"
                      "<File name='f'/></Data></Component><Component/></Data></Component>"
                      "</ComponentInfo>"),
              "");
}

TEST_F(AssemblyNotes, NameAnElementWithAnotherCase) {
    EXPECT_EQ(notesOn(documentOf("\n<translation x='a'/><Data><file name='f'/></Data>")),
              "2:19 translation : <translation> in <Component> is ignored: the name is spelled "
              "<Translation>\n"
              "2:41 file : <file> in <Data> is ignored: the name is spelled <File>\n");
    EXPECT_EQ(fault_.notes[0].kind, Kind::unknownName);
}

TEST_F(AssemblyNotes, NameAnElementThatTheFormatDoesNotHave) {
    EXPECT_EQ(notesOn("<ComponentInfo version='1'>\n<Note/><Attributs>\n<Size><Dimension/></Size>"
                      "</Attributs><Component><Orientation>\n<vec4/><vec1/><vec2/><vec3/>"
                      "</Orientation></Component></ComponentInfo>"),
              "2:6 Note : <Note> in <ComponentInfo> is ignored: the format has no such element "
              "there\n"
              "3:6 Size : <Size> in <Attributs> is ignored: the format has no such element there\n"
              "4:6 vec4 : <vec4> in <Orientation> is ignored: the format has no such element "
              "there\n");
}

TEST_F(AssemblyNotes, NameAnElementInOneThatHasNone) {
    EXPECT_EQ(notesOn(documentOf("<Translation>\n<x a='1'/></Translation>")),
              "2:9 x : <x> in <Translation> is ignored: the format has no such element there\n");
    EXPECT_EQ(notesOn(documentOf("<Data><File name='f'>\n<Component><a/></Component></File>"
                                 "</Data>")),
              "2:11 Component : <Component> in <File> is ignored: the format has no such element "
              "there\n");
}

TEST_F(AssemblyNotes, NameAnAttribute) {
    EXPECT_EQ(notesOn(documentOf("\n<Translation z='1' X='5' unit='mm'/>")),
              "2:35 X X: attribute \"X\" of <Translation> is ignored: the name is spelled "
              "\"x\"\n"
              "2:35 unit unit: attribute \"unit\" of <Translation> is ignored: the format has no "
              "such attribute there\n");
    EXPECT_EQ(fault_.notes[0].kind, Kind::unknownName);
    EXPECT_EQ(notesOn("<ComponentInfo version='1' Version='2'><Attributs/><Component Name='b'>"
                      "<Data Number='1'><Component><Data><File Name='f'/></Data></Component></Data>"
                      "</Component></ComponentInfo>"),
              "1:39 Version Version: attribute \"Version\" of <ComponentInfo> is ignored: the "
              "name is spelled \"version\"\n"
              "1:71 Name Name: attribute \"Name\" of <Component> is ignored: the name is spelled "
              "\"name\"\n"
              "1:88 Number Number: attribute \"Number\" of <Data> is ignored: the name is spelled "
              "\"number\"\n"
              "1:120 Name Name: attribute \"Name\" of <File> is ignored: the name is spelled "
              "\"name\"\n");
}

TEST_F(AssemblyNotes, DoNotNameAttributesOfOtherNamespaces) {
    EXPECT_EQ(notesOn("<ComponentInfo xmlns='urn:x' version='1'><Attributs/><Component/>"
                      "</ComponentInfo>"),
              "");
}

TEST_F(AssemblyNotes, NameARepetition) {
    EXPECT_EQ(
        notesOn(documentOf("<Translation/><Data/>\n<Translation x='a'/><Data><File/></Data>")),
        "2:19 Translation : a further <Translation> in <Component> is ignored: the first one "
        "counts\n"
        "2:26 Data : a further <Data> in <Component> is ignored: the first one counts\n");
    EXPECT_EQ(fault_.notes[0].kind, Kind::repeated);
    EXPECT_EQ(notesOn("<ComponentInfo version='1'><Attributs/>\n<Attributs/><Component/>\n"
                      "<Component/></ComponentInfo>"),
              "2:11 Attributs : a further <Attributs> in <ComponentInfo> is ignored: the first one "
              "counts\n"
              "3:11 Component : a further <Component> in <ComponentInfo> is ignored: the first one "
              "counts\n");
    EXPECT_EQ(notesOn(documentOf("<Data><File name='f'/>\n<File name='g'/></Data>")),
              "2:15 File : a further <File> in <Data> is ignored: the first one counts\n");
}

TEST_F(AssemblyNotes, CountTheComponentsThatAFileHides) {
    EXPECT_EQ(notesOn(documentOf("<Data><Component><a/></Component>\n<File name='f'/></Data>")),
              "2:15 a : the <File> of component \"a\" hides 1 component beside it, which is "
              "ignored\n");
    EXPECT_EQ(fault_.notes[0].kind, Kind::hiddenByFile);
    EXPECT_EQ(notesOn(documentOf("<Data>\n<File name='f'/><Component><a/></Component>"
                                 "<Component/></Data>")),
              "2:15 a : the <File> of component \"a\" hides 2 components beside it, which are "
              "ignored\n");
}

TEST_F(AssemblyNotes, NameTheAttributeOfAValue) {
    EXPECT_EQ(notesOn(documentOf("\n<Translation y='-14O'/>")),
              "2:22 Translation y: y of <Translation> is not a number: \"-14O\"; it and those "
              "after it are 0\n");
    EXPECT_EQ(notesOn("<ComponentInfo version='1'><Attributs/><Component enabled='true'/>"
                      "</ComponentInfo>"),
              "1:65  enabled: component \"\" is disabled: enabled is \"true\"\n");
}

TEST_F(AssemblyNotes, HaveWhatTheyAreAboutForPrograms) {
    notesOn(documentOf("<translation/><Data Number='1'/><Data/>"));
    ASSERT_EQ(fault_.notes.size(), 3U);
    EXPECT_EQ(fault_.notes[0].parent, "Component");
    EXPECT_EQ(fault_.notes[0].expected, "Translation");
    EXPECT_EQ(fault_.notes[1].attribute, "Number");
    EXPECT_EQ(fault_.notes[1].parent, "Data");
    EXPECT_EQ(fault_.notes[1].expected, "number");
    EXPECT_EQ(fault_.notes[2].parent, "Component");
    EXPECT_EQ(fault_.notes[2].expected, "");
    notesOn(
        documentOf("<Translation x='1' y='2,5'/><Data><Component enabled='yes'/><Component/>"
                   "</Data>"));
    ASSERT_EQ(fault_.notes.size(), 2U);
    EXPECT_EQ(fault_.notes[0].value, "2,5");
    EXPECT_EQ(fault_.notes[1].value, "yes");
    notesOn(documentOf("<Data><Component/><Component/><File name='f'/></Data>"));
    ASSERT_EQ(fault_.notes.size(), 1U);
    EXPECT_EQ(fault_.notes[0].count, 2);
}

}  // namespace
