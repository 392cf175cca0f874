#include <trvfiles/assembly/tag_notes.h>

#include <gtest/gtest.h>

#include <string>

namespace trv {
namespace {

// The notes as "LINE:COLUMN SUBJECT ATTRIBUTE VALUE COUNT" lines.
std::string notesOn(const char* tag) {
    std::vector<CFileFault::Note> notes;
    addTagNotes(QString::fromUtf8(tag), {3, 7}, notes);
    std::string lines;
    for (const CFileFault::Note& note : notes) {
        lines += std::to_string(note.line) + ':' + std::to_string(note.column) + ' ' +
                 note.subject + ' ' + note.attribute + ' ' + note.value + ' ' +
                 std::to_string(note.count) + '\n';
    }
    return lines;
}

TEST(TagNotes, AreNotTakenOfATagThatIsReadAsItIs) {
    EXPECT_EQ(notesOn("<a b='1' c='&#xFFFD;&amp;&lt;'/>"), "");
    EXPECT_EQ(notesOn("<a>"), "");
}

TEST(TagNotes, CountAnAttributeThatOccursSeveralTimes) {
    EXPECT_EQ(notesOn("<a b='1' c='1' b='2' d='' c='3' b='4'>"), "3:7 a b  3\n3:7 a c  2\n");
    EXPECT_EQ(notesOn("<a b='1' B='2'>"), "");
}

TEST(TagNotes, NameTheFirstReferenceThatIsCut) {
    EXPECT_EQ(notesOn("<a b='&#65;&#65536;&#x10FFFF;' c='&#65535;'/>"), "3:7 a b &#65536; 0\n");
}

TEST(TagNotes, LeaveMalformedTagsToTheParser) {
    EXPECT_EQ(notesOn("<a b='&#65536;' b=c>"), "");
    EXPECT_EQ(notesOn("<a b='&#65536' c='&#;'>"), "");
}

}  // namespace
}  // namespace trv
