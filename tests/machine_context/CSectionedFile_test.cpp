#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/machine_context/CSectionedFile.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>
#include <string>
#include <utility>

using namespace std::string_literals;
using trv::testing::TemporaryDirectory;
using trv::testing::writeBytes;

namespace {

CSectionedFile parsed(const std::string& text) {
    std::istringstream stream(text);
    CSectionedFile file;
    EXPECT_EQ(file.parse(stream), 0);
    return file;
}

/// The value of a key by exact names, or "<none>".
std::string valueOf(const CSectionedFile& file, const std::string& section,
                    const std::string& key) {
    std::string value = "<none>";
    file.value(section, true, key, true, value);
    return value;
}

/// The line of a key in the file, or -7.
int lineOf(const CSectionedFile& file, const std::string& section, const std::string& key) {
    std::string value;
    int line = -7;
    file.value(section, true, key, true, value, &line);
    return line;
}

int linesOf(const CSectionedFile& file, const std::string& section) {
    return file.section(section, true).lineCount();
}

std::string dumpOf(const CSectionedFile& file) {
    std::ostringstream stream;
    file.dump(stream);
    return stream.str();
}

}  // namespace

TEST(SectionedFile, FindsKeysInTheirSections) {
    const CSectionedFile file = parsed("[machine]\nname=MILL5\n[postpro]\nname=other\n");
    EXPECT_EQ(valueOf(file, "machine", "name"), "MILL5");
    EXPECT_EQ(valueOf(file, "postpro", "name"), "other");
    EXPECT_EQ(valueOf(file, "machine", "position"), "<none>");
    EXPECT_EQ(valueOf(file, "part", "name"), "<none>");
    EXPECT_EQ(valueOf(file, "", "name"), "<none>");
}

TEST(SectionedFile, WithoutContentHasNoSections) {
    for (const char* text : {"", "\n", "\n\n", "\r\n \t\n\v\f\n", "\r", "  "}) {
        const CSectionedFile file = parsed(text);
        EXPECT_EQ(dumpOf(file), "");
        EXPECT_EQ(linesOf(file, ""), 0);
        EXPECT_FALSE(file.hasUtf8Signature());
    }
    EXPECT_EQ(dumpOf(CSectionedFile()), "");
}

TEST(SectionedFile, AcceptsAHeaderOnlyInTheFirstColumnAndWithItsBracket) {
    const struct {
        const char* line;
        const char* section;
    } headers[] = {{"[a]", "a"},     {"[ a ]", "a"},    {"[\t\f\v\ra\r\v\f\t]", "a"},
                   {"[a]b]", "a"},   {"[a] tail", "a"}, {"[a]=v", "a"},
                   {"[[a]", "[a"},   {"[a b]", "a b"},  {"[#a]", "#a"},
                   {"[a=b]", "a=b"}, {"[A]", "A"},      {"[\xC3\xA4]", "\xC3\xA4"},
                   {"[]", ""},       {"[ ]", ""},       {"[a\x01]", "a\x01"}};
    for (const auto& header : headers) {
        const CSectionedFile file = parsed("[first]\n"s + header.line + "\nk=v\n");
        EXPECT_EQ(valueOf(file, header.section, "k"), "v") << header.line;
        EXPECT_EQ(linesOf(file, "first"), 0) << header.line;
        EXPECT_EQ(lineOf(file, header.section, "k"), 2) << header.line;
    }
    for (const char* line : {" [a]", "\t[a]", "[a", "a]", "", "a[b]", "\xEF\xBB\xBF[a]"}) {
        const CSectionedFile file = parsed("[first]\n"s + line + "\nk=v\n");
        EXPECT_EQ(valueOf(file, "first", "k"), "v") << line;
        EXPECT_EQ(linesOf(file, "first"), 2) << line;
    }
}

TEST(SectionedFile, SplitsAKeyLineAtItsFirstEqualsSignAndTrimsBothSides) {
    const struct {
        const char* line;
        const char* key;
        const char* value;
    } lines[] = {{"k=v", "k", "v"},
                 {"  k  =  v  ", "k", "v"},
                 {" \t\f\v\rk \t\f\v\r= \t\f\v\rv \t\f\v\r", "k", "v"},
                 {"a=b=c", "a", "b=c"},
                 {"k==", "k", "="},
                 {"k=", "k", ""},
                 {"k=   ", "k", ""},
                 {"=v", "", "v"},
                 {"=", "", ""},
                 {" = v", "", "v"},
                 {"  #k=v", "#k", "v"},
                 {"k=#v", "k", "#v"},
                 {"k=v # tail", "k", "v # tail"},
                 {";k=v", ";k", "v"},
                 {"//k=v", "//k", "v"},
                 {"k k=v v", "k k", "v v"},
                 {" [a]=v", "[a]", "v"},
                 {"k=[a]", "k", "[a]"},
                 {"\x01k=v\x1F", "\x01k", "v\x1F"},
                 {"\xA0k=v\xA0", "\xA0k", "v\xA0"},
                 {"k=\"v\"", "k", "\"v\""},
                 {"k=C:\\new", "k", "C:\\new"},
                 {"k=$X", "k", "$X"}};
    for (const auto& line : lines)
        EXPECT_EQ(valueOf(parsed("[s]\n"s + line.line + "\n"), "s", line.key), line.value)
            << line.line;
}

TEST(SectionedFile, KeepsLinesWithoutAKey) {
    const CSectionedFile file = parsed("[s]\n#k=v\n\nword\n# comment\n[open\nx=1");
    EXPECT_EQ(linesOf(file, "s"), 6);
    EXPECT_EQ(valueOf(file, "s", "#k"), "<none>");
    EXPECT_EQ(valueOf(file, "s", "k"), "<none>");
    EXPECT_EQ(valueOf(file, "s", "word"), "<none>");
    EXPECT_EQ(lineOf(file, "s", "x"), 6);
}

TEST(SectionedFile, UsesTheLastLineOfAKey) {
    const CSectionedFile file = parsed("[s]\nk=1\nK=upper\nj=0\n k = 2\nk=3\n");
    EXPECT_EQ(valueOf(file, "s", "k"), "3");
    EXPECT_EQ(lineOf(file, "s", "k"), 5);
    EXPECT_EQ(valueOf(file, "s", "K"), "upper");
    EXPECT_EQ(lineOf(file, "s", "K"), 2);
}

TEST(SectionedFile, ReplacesEarlierSectionsByTheLastOneOfThatName) {
    const CSectionedFile file =
        parsed("[machine]\nname=A\nonly=first\n[x]\n[machine]\nname=B\n[ machine ]\nname=C\n");
    EXPECT_EQ(valueOf(file, "machine", "name"), "C");
    EXPECT_EQ(valueOf(file, "machine", "only"), "<none>");
    EXPECT_EQ(lineOf(file, "machine", "name"), 7);
    EXPECT_EQ(file.section("machine", true).headerLine(), 6);
    EXPECT_EQ(linesOf(parsed("[machine]\nname=A\n[machine]"), "machine"), 0);
}

TEST(SectionedFile, CountsASectionWithoutLinesAsAbsent) {
    EXPECT_EQ(linesOf(parsed("[machine]\n[postpro]\nk=v"), "machine"), 0);
    EXPECT_EQ(linesOf(parsed("[machine]\n\n[postpro]\nk=v"), "machine"), 1);
    EXPECT_EQ(linesOf(parsed("[machine]"), "machine"), 0);
    EXPECT_EQ(linesOf(parsed("[machine]\n"), "machine"), 0);
    EXPECT_EQ(linesOf(parsed("[machine]\r\n"), "machine"), 0);
    EXPECT_EQ(linesOf(parsed("[machine]\n\r"), "machine"), 0);
    EXPECT_EQ(linesOf(parsed("[machine]\n\n"), "machine"), 1);
    EXPECT_EQ(linesOf(parsed("[machine]\n\r\n"), "machine"), 1);
    EXPECT_EQ(linesOf(parsed("[machine]\n "), "machine"), 1);
}

TEST(SectionedFile, ReadsTheLastLineWithAndWithoutItsNewline) {
    EXPECT_EQ(dumpOf(parsed("[s]\nk=v")), "[s]\nk=v\n-- Vars:1 --\nk={v}\n------------------\n");
    EXPECT_EQ(dumpOf(parsed("[s]\nk=v\n")), "[s]\nk=v\n-- Vars:1 --\nk={v}\n------------------\n");
    EXPECT_EQ(dumpOf(parsed("[s]\nk=v\n\n")),
              "[s]\nk=v\n\n-- Vars:1 --\nk={v}\n------------------\n");
}

TEST(SectionedFile, DropsOneCarriageReturnBeforeALineEnd) {
    EXPECT_EQ(dumpOf(parsed("[s]\r\nk=v\r\nw\r\r\n\r\nx\ry=1\r")),
              "[s]\nk=v\nw\r\n\nx\ry=1\n-- Vars:2 --\nk={v}\nx\ry={1}\n------------------\n");
}

TEST(SectionedFile, KeepsTheLinesAboveTheFirstHeaderUnlessAllAreBlank) {
    const CSectionedFile file = parsed("\nk=v\n[s]\nk=w\n");
    EXPECT_EQ(valueOf(file, "", "k"), "v");
    EXPECT_EQ(linesOf(file, ""), 2);
    EXPECT_EQ(lineOf(file, "", "k"), 1);
    EXPECT_EQ(file.section("", true).headerLine(), -1);
    EXPECT_EQ(linesOf(parsed("\n \t\r\n\n[s]\nk=w\n"), ""), 0);
    EXPECT_EQ(linesOf(parsed("word\n[s]\nk=w\n"), ""), 1);
    EXPECT_EQ(linesOf(parsed("#\n"), ""), 1);
}

TEST(SectionedFile, TreatsTheEmptyNameInBracketsLikeTheLinesAboveTheFirstHeader) {
    const CSectionedFile kept = parsed("k=v\n[]\n\n[s]\n");
    EXPECT_EQ(valueOf(kept, "", "k"), "v");
    const CSectionedFile replaced = parsed("k=v\n[]\nj=w\n");
    EXPECT_EQ(valueOf(replaced, "", "k"), "<none>");
    EXPECT_EQ(valueOf(replaced, "", "j"), "w");
    EXPECT_EQ(replaced.section("", true).headerLine(), 1);
    EXPECT_EQ(lineOf(replaced, "", "j"), 2);
}

TEST(SectionedFile, RemovesTheSignatureOnlyFromTheFirstLine) {
    const CSectionedFile file = parsed("\xEF\xBB\xBF[header]\nname=x\n");
    EXPECT_TRUE(file.hasUtf8Signature());
    EXPECT_EQ(valueOf(file, "header", "name"), "x");
    EXPECT_EQ(file.section("header", true).headerLine(), 0);

    const CSectionedFile signatureAlone = parsed("\xEF\xBB\xBF");
    EXPECT_TRUE(signatureAlone.hasUtf8Signature());
    EXPECT_EQ(dumpOf(signatureAlone), "");

    const CSectionedFile key = parsed("\xEF\xBB\xBFk=v");
    EXPECT_TRUE(key.hasUtf8Signature());
    EXPECT_EQ(valueOf(key, "", "k"), "v");

    const CSectionedFile later = parsed("\n\xEF\xBB\xBF[header]\nname=x\n");
    EXPECT_FALSE(later.hasUtf8Signature());
    EXPECT_EQ(valueOf(later, "", "name"), "x");
    EXPECT_EQ(valueOf(parsed("[s]\n\xEF\xBB\xBFk=v\n"), "s", "\xEF\xBB\xBFk"), "v");

    const CSectionedFile twice = parsed("\xEF\xBB\xBF\xEF\xBB\xBF[header]\nname=x\n");
    EXPECT_TRUE(twice.hasUtf8Signature());
    EXPECT_EQ(valueOf(twice, "header", "name"), "<none>");
    for (const char* part : {"\xEF", "\xEF\xBB", "\xEF\xBB[s]\nk=v"})
        EXPECT_FALSE(parsed(part).hasUtf8Signature());
}

TEST(SectionedFile, KeepsZeroBytes) {
    const CSectionedFile file = parsed("[s\0t]\nk\0l=v\0w\n[u]\n\0\n"s);
    EXPECT_EQ(valueOf(file, "s\0t"s, "k\0l"s), "v\0w"s);
    EXPECT_EQ(valueOf(file, "s", "k"), "<none>");
    EXPECT_EQ(linesOf(file, "u"), 1);
}

TEST(SectionedFile, FindsNamesWithoutRegardToCaseIfRequested) {
    const CSectionedFile file =
        parsed("[Machine]\nName=A\nname=b\n[machine]\nname=c\n[\xC3\x84]\nk=v");
    std::string value = "kept";
    EXPECT_FALSE(file.value("MACHINE", true, "Name", true, value));
    EXPECT_FALSE(file.value("Machine", true, "NAME", true, value));
    EXPECT_EQ(value, "kept");
    // In byte order capital letters are first.
    EXPECT_TRUE(file.value("MACHINE", false, "Name", true, value));
    EXPECT_EQ(value, "A");
    EXPECT_TRUE(file.value("machine", false, "NAME", false, value));
    EXPECT_EQ(value, "A");
    EXPECT_TRUE(file.value("machine", true, "NAME", false, value));
    EXPECT_EQ(value, "c");
    EXPECT_TRUE(file.value("Machine", true, "name", true, value));
    EXPECT_EQ(value, "b");
    EXPECT_FALSE(file.value("machine", false, "nam", false, value));
    EXPECT_FALSE(file.value("machine", false, "names", false, value));
    // Only ASCII letters are folded.
    EXPECT_FALSE(file.value("\xC3\xA4", false, "k", true, value));
    EXPECT_TRUE(file.value("\xC3\x84", false, "K", false, value));
}

TEST(SectionedFile, GivesLineNumbersOfTheSectionAndOfTheFile) {
    const CSectionedFile file = parsed("first\n[s]\n\n# c\nk=v\n");
    const CSectionedFile::Section& section = file.section("s", true);
    EXPECT_EQ(section.headerLine(), 1);
    EXPECT_EQ(section.lineCount(), 3);
    std::string value;
    int line = -7;
    EXPECT_TRUE(file.sectionValue(section, "k", true, value, &line));
    EXPECT_EQ(value, "v");
    EXPECT_EQ(line, 2);
    EXPECT_TRUE(file.value("s", true, "k", true, value, &line));
    EXPECT_EQ(line, 4);
    line = -7;
    EXPECT_FALSE(file.sectionValue(section, "K", true, value, &line));
    EXPECT_FALSE(file.value("s", true, "j", true, value, &line));
    EXPECT_EQ(line, -7);
    EXPECT_TRUE(file.sectionValue(section, "K", false, value));
}

TEST(SectionedFile, GivesAnEmptySectionForAMissingOne) {
    const CSectionedFile file = parsed("[s]\nk=v\n");
    const CSectionedFile::Section& missing = file.section("t", false);
    EXPECT_EQ(missing.lineCount(), 0);
    EXPECT_EQ(missing.headerLine(), -1);
    std::string value;
    EXPECT_FALSE(file.sectionValue(missing, "k", false, value));
}

TEST(SectionedFile, DumpsItsSectionsAndKeysInByteOrder) {
    EXPECT_EQ(dumpOf(parsed("[b]\nz=1\n# c\na = 2 \nz=3\n\n[B]\n[a]\nk={}\nlast")),
              "[B]\n-- Vars:0 --\n------------------\n"
              "[a]\nk={}\nlast\n-- Vars:1 --\nk={{}}\n------------------\n"
              "[b]\nz=1\n# c\na = 2 \nz=3\n\n-- Vars:2 --\na={2}\nz={3}\n------------------\n");
    EXPECT_EQ(dumpOf(parsed("k=v\n[s]\n")),
              "[]\nk=v\n-- Vars:1 --\nk={v}\n------------------\n"
              "[s]\n-- Vars:0 --\n------------------\n");
}

TEST(SectionedFile, IsCopiedAndMovedWithItsContent) {
    CSectionedFile copy;
    {
        CSectionedFile file = parsed("\xEF\xBB\xBF[s]\nk=v\n");
        copy = file;
        std::istringstream other("[t]\nk=w\n");
        ASSERT_EQ(file.parse(other), 0);
    }
    EXPECT_EQ(valueOf(copy, "s", "k"), "v");
    EXPECT_TRUE(copy.hasUtf8Signature());
    const CSectionedFile moved = std::move(copy);
    EXPECT_EQ(valueOf(moved, "s", "k"), "v");
}

TEST(SectionedFile, StartsEmptyAtEachParse) {
    CSectionedFile file = parsed("\xEF\xBB\xBF[s]\nk=v\n");
    std::istringstream other("[t]\nj=w\n");
    EXPECT_EQ(file.parse(other), 0);
    EXPECT_EQ(valueOf(file, "s", "k"), "<none>");
    EXPECT_EQ(valueOf(file, "t", "j"), "w");
    EXPECT_FALSE(file.hasUtf8Signature());
    EXPECT_EQ(file.parseFile(L"/missing/file"), -1);
    EXPECT_EQ(dumpOf(file), "");
}

TEST(SectionedFile, ReadsAFileByItsName) {
    const TemporaryDirectory directory;
    writeBytes(directory / "f", "[s]\r\nk=v\r\n");
    CSectionedFile file;
    EXPECT_EQ(file.parseFile((directory / "f").wstring()), 0);
    EXPECT_EQ(valueOf(file, "s", "k"), "v");
    writeBytes(directory / "Fr\xC3\xA4se", "[s]\nk=w\n");
    EXPECT_EQ(file.parseFile(directory.wide() + L"/Fr\u00E4se"), 0);
    EXPECT_EQ(valueOf(file, "s", "k"), "w");
    writeBytes(directory / "empty", "");
    EXPECT_EQ(file.parseFile((directory / "empty").wstring()), 0);
    EXPECT_EQ(dumpOf(file), "");
}

TEST(SectionedFile, FailsOnAFileThatDoesNotOpen) {
    const TemporaryDirectory directory;
    writeBytes(directory / "f", "[s]\nk=v\n");
    CSectionedFile file;
    EXPECT_EQ(file.parseFile((directory / "missing").wstring()), -1);
    EXPECT_EQ(file.parseFile(directory.wide()), -1);
    EXPECT_EQ(file.parseFile(L""), -1);
    EXPECT_EQ(file.parseFile((directory / "f").wstring() + L"\0x"s), -1);
    EXPECT_EQ(file.parseFile((directory / "f").wstring() + L"\0"s), -1);
}

TEST(SectionedFile, ReadsAnOpenFileFromItsPosition) {
    const TemporaryDirectory directory;
    writeBytes(directory / "f", "[s]\nk=v\n[t]\nj=w");
    std::FILE* stream = std::fopen((directory / "f").string().c_str(), "rb");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(std::fseek(stream, 8, SEEK_SET), 0);
    CSectionedFile file;
    EXPECT_EQ(file.parse(stream), 0);
    EXPECT_EQ(dumpOf(file), "[t]\nj=w\n-- Vars:1 --\nj={w}\n------------------\n");
    EXPECT_EQ(file.parse(stream), 0);
    EXPECT_EQ(dumpOf(file), "");
    EXPECT_EQ(std::fclose(stream), 0);
}

TEST(SectionedFile, ListsItsSectionsAndTheirKeysWithTheirLines) {
    std::istringstream stream("above=1\n[t]\n# x=1\nb=1\na=2\nb=3\n[s]\n");
    CSectionedFile file;
    ASSERT_EQ(file.parse(stream), 0);
    const auto text = [](const std::vector<CSectionedFile::Name>& names) {
        std::string list;
        for (const CSectionedFile::Name& name : names)
            list += std::string(name.text) + '@' + std::to_string(name.line) + ' ';
        return list;
    };
    EXPECT_EQ(text(file.sectionNames()), "@-1 s@6 t@1 ");
    EXPECT_EQ(text(file.keyNames(file.section("t", true))), "a@4 b@5 ");
    EXPECT_EQ(text(file.keyNames(file.section("", true))), "above@0 ");
    EXPECT_EQ(text(file.keyNames(file.section("s", true))), "");
    EXPECT_EQ(file.nameOf(file.section("T", false)), "t");
}
