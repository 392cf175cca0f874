#include <tests/assembly/random_assemblies.h>
#include <tests/assembly/sample_components.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <tests/facade/memory_equality.h>
#include <trvfiles/assembly/CTrvAssemblyIO.h>
#include <trvfiles/assembly/component_body.h>
#include <trvfiles/facade/CQvFilesIO.h>
#include <trvfiles/support/CFileFault.h>
#include <trvfiles/support/platform.h>
#include <trvfiles/text/text_conversion.h>

#include <QDomImplementation>
#include <QFile>
#include <QString>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

using trv::ComponentBody;
using trv::testing::assemblyOf;
using trv::testing::bytesOf;
using trv::testing::chain;
using trv::testing::group;
using trv::testing::leaf;
using trv::testing::writeBytes;

class AssemblyFile : public ::testing::Test {
protected:
    EFileIOStatus readBytes(const std::string& bytes) {
        writeBytes(directory / "read.xml", bytes);
        trv::testing::expectAssemblyAsInMemory(directory / "read.xml");
        return facade.readTrvAssembly("read.xml", data);
    }

    std::string writtenBytes(const CTrvAssemblyData& assembly) {
        EXPECT_EQ(facade.writeTrvAssembly("written.xml", assembly), eFileIOSuccess);
        std::string inMemory;
        EXPECT_EQ(CQvFilesIO::sWriteTrvAssemblyToMemory(inMemory, assembly), eFileIOSuccess);
        EXPECT_EQ(inMemory, bytesOf(directory / "written.xml"));
        return inMemory;
    }

    trv::testing::TemporaryDirectory directory;
    CQvFilesIO facade{directory.text()};
    CTrvAssemblyData data;
};

CTrvAssemblyData vise() {
    return assemblyOf(group("Setup", {leaf("Vise", "vise.stl"), leaf("Part", "part.stl")}),
                      {100, 50, 20});
}

bool sameBits(const double* one, const double* other) {
    for (int i = 0; i < 3; ++i) {
        // -0 is written as 0.
        const double a = one[i] + 0.0;
        const double b = other[i] + 0.0;
        if (std::memcmp(&a, &b, sizeof a) != 0) return false;
    }
    return true;
}

// The text that comes back. Bytes that are not text are replaced.
std::string readable(const std::string& text) {
    return trv::toNarrow(trv::fromNarrow(text));
}

void expectSameTree(const ComponentBody& one, const ComponentBody& other) {
    EXPECT_EQ(readable(one.name), other.name);
    EXPECT_EQ(readable(one.comment), other.comment);
    EXPECT_EQ(readable(one.geometryFileName), other.geometryFileName);
    EXPECT_EQ(one.enabled, other.enabled);
    EXPECT_TRUE(sameBits(one.translation, other.translation));
    EXPECT_TRUE(sameBits(one.vec1, other.vec1));
    EXPECT_TRUE(sameBits(one.vec2, other.vec2));
    EXPECT_TRUE(sameBits(one.vec3, other.vec3));
    ASSERT_EQ(one.components.size(), other.components.size());
    for (std::size_t i = 0; i < one.components.size(); ++i) {
        expectSameTree(one.components[i], other.components[i]);
    }
}

TEST_F(AssemblyFile, ReadsWhatWasWrittenToTheBit) {
    trv::testing::RandomAssemblies assemblies(2);
    for (int i = 0; i < 100; ++i) {
        const CTrvAssemblyData written = assemblies.next();
        ASSERT_EQ(facade.writeTrvAssembly("a.xml", written), eFileIOSuccess);
        ASSERT_EQ(facade.readTrvAssembly("a.xml", data), eFileIOSuccess);
        double size[2][3];
        written.getDimension(size[0]);
        data.getDimension(size[1]);
        EXPECT_TRUE(sameBits(size[0], size[1]));
        expectSameTree(ComponentBody::of(written.getRootComponent()),
                       ComponentBody::of(data.getRootComponent()));
    }
}

TEST_F(AssemblyFile, ReadsWhatWasWrittenAsAnEqualRecord) {
    ASSERT_EQ(facade.writeTrvAssembly("a.xml", vise()), eFileIOSuccess);
    ASSERT_EQ(facade.readTrvAssembly("a.xml", data), eFileIOSuccess);
    EXPECT_EQ(data, vise());
}

TEST_F(AssemblyFile, IsTheSameThroughEveryFunctionOfTheFacade) {
    const std::wstring path = directory.wide() + L"/w.xml";
    ASSERT_EQ(facade.writeTrvAssembly(std::wstring(L"w.xml"), vise()), eFileIOSuccess);
    ASSERT_EQ(CQvFilesIO::sReadTrvAssembly(path, data), eFileIOSuccess);
    EXPECT_EQ(data, vise());

    CTrvAssemblyData other = assemblyOf(leaf("other", "o.stl"));
    ASSERT_EQ(CQvFilesIO::sWriteTrvAssembly(path, other), eFileIOSuccess);
    ASSERT_EQ(facade.readTrvAssembly(std::wstring(L"w.xml"), data), eFileIOSuccess);
    EXPECT_EQ(data, other);
    ASSERT_EQ(facade.readTrvAssembly("w.xml", data), eFileIOSuccess);
    EXPECT_EQ(data, other);
}

TEST_F(AssemblyFile, LosesTheChildrenOfAComponentWithAFile) {
    CTrvAssemblyComponentData both = group("g", {leaf("a", "a.stl")});
    both.setGeometryFileName("g.stl");
    ASSERT_EQ(facade.writeTrvAssembly("a.xml", assemblyOf(both)), eFileIOSuccess);
    ASSERT_EQ(facade.readTrvAssembly("a.xml", data), eFileIOSuccess);
    EXPECT_EQ(data.getRootComponent(), leaf("g", "g.stl"));
}

TEST_F(AssemblyFile, HasTheSameBytesEveryTime) {
    const std::string bytes = writtenBytes(vise());
    EXPECT_EQ(bytes.substr(0, 72),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"  ?>\n<ComponentInfo version=\"1\">\n   ");
    EXPECT_EQ(bytes.find('\r'), std::string::npos);
    EXPECT_EQ(bytes.back(), '\n');
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(writtenBytes(vise()), bytes);
    // The assembly that was read is written again.
    ASSERT_EQ(readBytes(bytes), eFileIOSuccess);
    EXPECT_EQ(writtenBytes(data), bytes);
}

TEST_F(AssemblyFile, GivesOpenErrorsForWhatCannotBeRead) {
    data = vise();
    EXPECT_EQ(facade.readTrvAssembly("missing.xml", data), eFileIOOpenError);
    EXPECT_EQ(facade.readTrvAssembly("", data), eFileIOOpenError);
    EXPECT_EQ(facade.readTrvAssembly(static_cast<const char*>(nullptr), data), eFileIOOpenError);
    EXPECT_EQ(facade.readTrvAssembly(std::wstring(), data), eFileIOOpenError);
    EXPECT_EQ(CQvFilesIO::sReadTrvAssembly(L"", data), eFileIOOpenError);
    EXPECT_EQ(CQvFilesIO::sReadTrvAssembly(directory.wide(), data), eFileIOOpenError);
    EXPECT_EQ(data, vise());
}

TEST_F(AssemblyFile, GivesOpenErrorsForWhatCannotBeWritten) {
    EXPECT_EQ(facade.writeTrvAssembly("missing/a.xml", vise()), eFileIOOpenError);
    EXPECT_EQ(facade.writeTrvAssembly("", vise()), eFileIOOpenError);
    EXPECT_EQ(facade.writeTrvAssembly(static_cast<const char*>(nullptr), vise()), eFileIOOpenError);
    EXPECT_EQ(CQvFilesIO::sWriteTrvAssembly(L"", vise()), eFileIOOpenError);
    EXPECT_EQ(CQvFilesIO::sWriteTrvAssembly(directory.wide(), vise()), eFileIOOpenError);
}

TEST_F(AssemblyFile, DoesNotOpenANameWithAZeroInside) {
    using namespace std::string_literals;
    ASSERT_EQ(facade.writeTrvAssembly("a", vise()), eFileIOSuccess);
    EXPECT_EQ(facade.readTrvAssembly(L"a\0b"s, data), eFileIOOpenError);
    EXPECT_EQ(facade.writeTrvAssembly(L"a\0b"s, assemblyOf(leaf("b", "b"))), eFileIOOpenError);
    EXPECT_EQ(CQvFilesIO::sReadTrvAssembly(directory.wide() + L"/a\0"s, data), eFileIOOpenError);
    ASSERT_EQ(facade.readTrvAssembly("a", data), eFileIOSuccess);
    EXPECT_EQ(data, vise());
}

TEST_F(AssemblyFile, KeepsTheOldFileIfTheRecordCannotBeWritten) {
    ASSERT_EQ(facade.writeTrvAssembly("a.xml", vise()), eFileIOSuccess);
    const std::string before = bytesOf(directory / "a.xml");
    EXPECT_EQ(facade.writeTrvAssembly("a.xml", CTrvAssemblyData()), eFileIOContentError);
    EXPECT_EQ(facade.writeTrvAssembly("a.xml", assemblyOf(leaf("\uFFFF", "a"))),
              eFileIOContentError);
    EXPECT_EQ(facade.writeTrvAssembly("a.xml", assemblyOf(chain(1000))), eFileIOContentError);
    EXPECT_EQ(bytesOf(directory / "a.xml"), before);
    EXPECT_EQ(facade.writeTrvAssembly("new.xml", CTrvAssemblyData()), eFileIOContentError);
    EXPECT_FALSE(std::filesystem::exists(directory / "new.xml"));
}

TEST_F(AssemblyFile, TruncatesALongerOldFile) {
    ASSERT_EQ(facade.writeTrvAssembly("a.xml", vise()), eFileIOSuccess);
    const CTrvAssemblyData small = assemblyOf(leaf("a", "a"));
    ASSERT_EQ(facade.writeTrvAssembly("a.xml", small), eFileIOSuccess);
    ASSERT_EQ(facade.readTrvAssembly("a.xml", data), eFileIOSuccess);
    EXPECT_EQ(data, small);
}

TEST_F(AssemblyFile, RefusesEveryTruncationOfAFile) {
    const std::string bytes = writtenBytes(vise());
    const std::size_t rootEnd = bytes.rfind('>') + 1;
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        const EFileIOStatus status = readBytes(bytes.substr(0, length));
        ASSERT_EQ(status, length < rootEnd ? eFileIOContentError : eFileIOSuccess) << length;
    }
}

TEST_F(AssemblyFile, ReturnsAStatusForRandomBytes) {
    std::mt19937 random(3);
    const std::string valid = writtenBytes(vise());
    for (int i = 0; i < 2000; ++i) {
        std::string bytes = valid;
        for (int changes = 1 + static_cast<int>(random() % 8); changes > 0; --changes) {
            bytes[random() % bytes.size()] = static_cast<char>(random());
        }
        const EFileIOStatus status = readBytes(bytes);
        EXPECT_TRUE(status == eFileIOSuccess || status == eFileIOContentError ||
                    status == eFileIOStructureError);
        std::string noise(random() % 64, '\0');
        for (char& c : noise)
            c = static_cast<char>(random());
        EXPECT_NE(readBytes(noise), eFileIOSuccess);
    }
}

TEST_F(AssemblyFile, IsRefusedForACharacterThatXmlDoesNotAllow) {
    const std::string before = "<ComponentInfo version='1'><Attributs/>";
    const std::string after = "<Component name='a'/></ComponentInfo>";
    using namespace std::string_literals;
    for (const std::string& bad :
         {"\0"s, "\x01"s, "\x1F"s, "\xEF\xBF\xBE"s, "\xEF\xBF\xBF"s, "<!--\x01-->"s,
          "<!--\xEF\xBF\xBE-->"s, "<![CDATA[\x02]]>"s, "<?p \xEF\xBF\xBF?>"s, "&#1;"s, "&#xFFFE;"s,
          "&#xD800;"s, "&#0;"s, "&#x110000;"s}) {
        EXPECT_EQ(readBytes(before + bad + after), eFileIOContentError) << bad;
        EXPECT_EQ(data, CTrvAssemblyData()) << bad;
    }
}

TEST_F(AssemblyFile, IsRefusedForWhatQtCannotHoldBeforeItsRootIsRead) {
    const auto nested = [](int levels, const std::string& open, const std::string& close,
                           std::string text = "") {
        for (int i = 0; i < levels; ++i)
            text = open + text + close;
        return text;
    };
    const auto groups = [&](int levels) {
        return "<!DOCTYPE a [<!ELEMENT a " + nested(levels, "(", ")", "b") + ">]><a/>";
    };
    EXPECT_EQ(readBytes("<a/>"), eFileIOStructureError);
    EXPECT_EQ(readBytes("<!DOCTYPE a [<!ENTITY e 'x'>]><a/>"), eFileIOContentError);
    EXPECT_EQ(readBytes(nested(2000, "<a>", "</a>")), eFileIOStructureError);
    EXPECT_EQ(readBytes(nested(2001, "<a>", "</a>")), eFileIOContentError);
    EXPECT_EQ(readBytes(groups(2000)), eFileIOStructureError);
    EXPECT_EQ(readBytes(groups(2001)), eFileIOContentError);
    EXPECT_EQ(readBytes("<a>\x01</a>"), eFileIOContentError);
}

TEST_F(AssemblyFile, IsReadWithACharacterBeyondTheFirstPlaneInAComment) {
    ASSERT_EQ(readBytes("<!--\U0001F600--><ComponentInfo version='1'><Attributs/>\U0001F600"
                        "<![CDATA[\U0001F600]]><?p \U0001F600?>&#x1F600;&#x10000;"
                        "<Component name='a'/></ComponentInfo>"),
              eFileIOSuccess);
    EXPECT_EQ(data.getRootComponent().getName(), "a");
}

TEST_F(AssemblyFile, ReadsAnAttributeOfAHundredMegabytes) {
    constexpr std::size_t length = 100'000'000;
    ASSERT_EQ(readBytes("<ComponentInfo version='1'><Attributs/><Component name='" +
                        std::string(length, 'n') + "'/></ComponentInfo>"),
              eFileIOSuccess);
    EXPECT_EQ(data.getRootComponent().getName().size(), length);
}

TEST_F(AssemblyFile, IsWrittenAndReadWithTheMaxNestingOnASmallStack) {
    constexpr std::size_t stack = std::size_t{512} << 10;
    trv::platform::call_on_stack(stack, [&] {
        const CTrvAssemblyData deepest = assemblyOf(chain(999));
        EXPECT_EQ(facade.writeTrvAssembly("deep.xml", deepest), eFileIOSuccess);
        CTrvAssemblyData read;
        EXPECT_EQ(facade.readTrvAssembly("deep.xml", read), eFileIOSuccess);
        EXPECT_EQ(read, deepest);
        EXPECT_EQ(read.getComponentNumber(), 1u);
        EXPECT_EQ(read.getComponentFileList().size(), 1u);
    });
}

TEST_F(AssemblyFile, IsRefusedOneLevelBeyondTheMaxNesting) {
    std::string bytes = writtenBytes(assemblyOf(chain(999)));
    ASSERT_EQ(readBytes(bytes), eFileIOSuccess);
    const std::string file = "<File name=\"end.stl\"/>";
    bytes.replace(bytes.find(file), file.size(), "<Component><Data/></Component>");
    EXPECT_EQ(readBytes(bytes), eFileIOContentError);
}

TEST_F(AssemblyFile, SetsThePolicyForInvalidDataAtEveryCall) {
    const std::wstring path = directory.wide() + L"/a.xml";
    const std::function<EFileIOStatus()> calls[] = {
        [&] { return facade.writeTrvAssembly("a.xml", vise()); },
        [&] { return facade.writeTrvAssembly(std::wstring(L"a.xml"), vise()); },
        [&] { return CQvFilesIO::sWriteTrvAssembly(path, vise()); },
        [&] { return facade.readTrvAssembly("a.xml", data); },
        [&] { return facade.readTrvAssembly(std::wstring(L"a.xml"), data); },
        [&] { return CQvFilesIO::sReadTrvAssembly(path, data); }};
    for (const auto& call : calls) {
        for (const auto policy :
             {QDomImplementation::AcceptInvalidChars, QDomImplementation::DropInvalidChars}) {
            QDomImplementation::setInvalidDataPolicy(policy);
            EXPECT_EQ(call(), eFileIOSuccess);
            EXPECT_EQ(QDomImplementation::invalidDataPolicy(), QDomImplementation::ReturnNullNode);
        }
    }
    QDomImplementation::setInvalidDataPolicy(QDomImplementation::DropInvalidChars);
    EXPECT_EQ(facade.readTrvAssembly("missing.xml", data), eFileIOOpenError);
    EXPECT_EQ(QDomImplementation::invalidDataPolicy(), QDomImplementation::ReturnNullNode);
    QDomImplementation::setInvalidDataPolicy(QDomImplementation::DropInvalidChars);
    EXPECT_EQ(CQvFilesIO::sWriteTrvAssembly(L"", data), eFileIOOpenError);
    EXPECT_EQ(QDomImplementation::invalidDataPolicy(), QDomImplementation::ReturnNullNode);
}

TEST_F(AssemblyFile, ReportsWhyItWasNotRead) {
    QDomImplementation::setInvalidDataPolicy(QDomImplementation::ReturnNullNode);
    CFileFault fault;
    const auto reasonFor = [&](const char* bytes) {
        writeBytes(directory / "a.xml", bytes);
        trv::testing::expectAssemblyAsInMemory(directory / "a.xml");
        CTrvAssemblyIO file(QString::fromStdString(directory.text() + "/a.xml"));
        EXPECT_NE(file.read(data, &fault), eFileIOSuccess);
        EXPECT_EQ(fault.systemError, 0);
        return fault.reason;
    };
    EXPECT_EQ(reasonFor("<ComponentInfo version='1'>\n <Attributs/>\n</ComponentInfo>"),
              "<ComponentInfo> has no <Component>");
    EXPECT_EQ(fault.line, 1);
    EXPECT_EQ(fault.column, 27);
    EXPECT_EQ(reasonFor("<a>\n</b>"), "tag mismatch");
    EXPECT_EQ(fault.line, 2);
    EXPECT_EQ(fault.column, 4);
    CTrvAssemblyIO missing(QString::fromStdString(directory.text() + "/missing.xml"));
    EXPECT_EQ(missing.read(data, &fault), eFileIOOpenError);
    EXPECT_EQ(fault.reason, "No such file or directory");
    EXPECT_EQ(fault.systemError, ENOENT);
    EXPECT_EQ(fault.line, 0);
    EXPECT_EQ(fault.column, 0);
}

TEST_F(AssemblyFile, ReportsAReadThatFails) {
    const bool hasFile = std::filesystem::exists("/proc/self/mem");
    if (!hasFile || trv::platform::backslash_separates()) {
        GTEST_SKIP() << "there is no file here that breaks off with this reason";
    }
    CFileFault fault;
    CTrvAssemblyIO file(QStringLiteral("/proc/self/mem"));
    EXPECT_EQ(file.read(data, &fault), eFileIOContentError);
    EXPECT_EQ(fault.reason, "Input/output error");
    EXPECT_EQ(fault.systemError, EIO);
}

TEST_F(AssemblyFile, ReportsThatANameIsNotAFileName) {
    for (const QString& name : {QString(), QStringLiteral(""), QStringLiteral("a") + QChar(0)}) {
        CFileFault fault;
        fault.reason = "old";
        fault.line = 7;
        fault.column = 7;
        fault.notes.resize(7);
        EXPECT_EQ(CTrvAssemblyIO(name).read(data, &fault), eFileIOOpenError);
        EXPECT_EQ(fault.reason, "not a valid file name");
        EXPECT_EQ(fault.line, 0);
        EXPECT_EQ(fault.column, 0);
        EXPECT_TRUE(fault.notes.empty());
        EXPECT_EQ(CTrvAssemblyIO(name).read(data), eFileIOOpenError);
    }
    CFileFault fault;
    EXPECT_EQ(CTrvAssemblyIO(QStringLiteral("missing.xml")).read(data, &fault), eFileIOOpenError);
    EXPECT_NE(fault.reason, "not a valid file name");
}

TEST_F(AssemblyFile, NotesWhatItReadsDifferently) {
    writeBytes(directory / "a.xml",
               "<ComponentInfo version='1'><Attributs/>\n<Component name='\xFF' enabled='x'/>\n"
               "</ComponentInfo>");
    CFileFault fault;
    CTrvAssemblyIO file(QString::fromStdString(directory.text() + "/a.xml"));
    EXPECT_EQ(file.read(data, &fault), eFileIOSuccess);
    ASSERT_EQ(fault.notes.size(), 2u);
    EXPECT_EQ(fault.notes[0].kind, CFileFault::Note::Kind::notText);
    EXPECT_EQ(fault.notes[0].line, 2);
    EXPECT_EQ(fault.notes[0].column, 18);
    EXPECT_EQ(fault.notes[1].kind, CFileFault::Note::Kind::notAFlag);
    EXPECT_EQ(fault.notes[1].line, 2);
}

// The scanner reads such a document too, but has no notes.
TEST_F(AssemblyFile, NotesWhatItReadsDifferentlyInAPlainDocument) {
    writeBytes(directory / "a.xml",
               "<ComponentInfo version='1'><Attributs/>\n<Component enabled='x'><Data>\n"
               "<Component name='b'><Translation x='1,5'/></Component></Data></Component>\n"
               "</ComponentInfo>");
    CFileFault fault;
    CTrvAssemblyIO file(QString::fromStdString(directory.text() + "/a.xml"));
    EXPECT_EQ(file.read(data, &fault), eFileIOSuccess);
    ASSERT_EQ(fault.notes.size(), 2u);
    EXPECT_EQ(fault.notes[0].kind, CFileFault::Note::Kind::notAFlag);
    EXPECT_EQ(fault.notes[0].line, 2);
    EXPECT_EQ(fault.notes[1].kind, CFileFault::Note::Kind::notANumber);
    EXPECT_EQ(fault.notes[1].line, 3);
    CTrvAssemblyData again;
    EXPECT_EQ(file.read(again), eFileIOSuccess);
    EXPECT_EQ(again, data);
}

TEST_F(AssemblyFile, ReportsWhyItIsNotWritten) {
    CFileFault fault;
    const auto write = [&](const CTrvAssemblyComponentData& root, const char* name) {
        const QString path = QString::fromStdString(directory.text() + "/" + name);
        return CTrvAssemblyIO(path).write(assemblyOf(root), &fault);
    };
    EXPECT_EQ(write(leaf("a", ""), "a.xml"), eFileIOContentError);
    EXPECT_EQ(fault.reason, "component \"a\" has neither a geometry file nor components");
    EXPECT_EQ(fault.systemError, 0);
    EXPECT_EQ(write(group("g", {leaf("b\uFFFE", "f")}), "a.xml"), eFileIOContentError);
    EXPECT_EQ(fault.reason,
              "component \"b\uFFFE\" has a text with U+FFFE or U+FFFF, which XML does "
              "not allow");
    EXPECT_EQ(write(leaf("c", "f\uFFFF"), "a.xml"), eFileIOContentError);
    EXPECT_EQ(fault.reason,
              "component \"c\" has a text with U+FFFE or U+FFFF, which XML does not allow");
    EXPECT_EQ(write(chain(1000), "a.xml"), eFileIOContentError);
    EXPECT_THAT(fault.reason, ::testing::EndsWith(" is nested too deeply"));
    EXPECT_EQ(write(leaf("a", "f"), "missing/a.xml"), eFileIOOpenError);
    EXPECT_NE(fault.reason, "");
    EXPECT_EQ(write(leaf("a", "f"), "a.xml"), eFileIOSuccess);
    EXPECT_EQ(fault.reason, "");
    EXPECT_EQ(fault.systemError, 0);
}

TEST_F(AssemblyFile, ReportsThatTheDiskIsFull) {
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "there is no full device here";
    CFileFault fault;
    CTrvAssemblyIO file(QStringLiteral("/dev/full"));
    EXPECT_EQ(file.write(assemblyOf(leaf("a", "f")), &fault), eFileIOShortWrite);
    EXPECT_EQ(fault.reason, "No space left on device");
    EXPECT_EQ(fault.systemError, ENOSPC);
}

TEST_F(AssemblyFile, AcceptsNamesBeyondAscii) {
    ASSERT_EQ(facade.writeTrvAssembly(std::wstring(L"Spannb\u00fcchse \u6f22.xml"), vise()),
              eFileIOSuccess);
    EXPECT_TRUE(std::filesystem::exists(directory / "Spannb\u00fcchse \u6f22.xml"));
    ASSERT_EQ(facade.readTrvAssembly(std::wstring(L"Spannb\u00fcchse \u6f22.xml"), data),
              eFileIOSuccess);
    EXPECT_EQ(data, vise());
}

TEST_F(AssemblyFile, HandlesAHundredThousandComponents) {
    std::vector<CTrvAssemblyComponentData> groups;
    for (int i = 0; i < 1000; ++i) {
        groups.push_back(
            group("group", std::vector<CTrvAssemblyComponentData>(100, leaf("leaf", "leaf.stl"))));
    }
    const CTrvAssemblyData large = assemblyOf(group("large", std::move(groups)));
    ASSERT_EQ(facade.writeTrvAssembly("large.xml", large), eFileIOSuccess);
    ASSERT_EQ(facade.readTrvAssembly("large.xml", data), eFileIOSuccess);
    EXPECT_EQ(data, large);
    EXPECT_EQ(data.getComponentFileList().size(), 100'000u);
}

TEST(CTrvAssemblyIO, IsDeletedThroughItsVirtualDestructor) {
    static_assert(std::has_virtual_destructor_v<CTrvAssemblyIO>);
    const std::unique_ptr<CTrvAssemblyIO> file(new CTrvAssemblyIO(QStringLiteral("a.xml")));
    EXPECT_NE(file, nullptr);
}

}  // namespace
