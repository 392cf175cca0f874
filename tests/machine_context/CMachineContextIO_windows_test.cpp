// Machine context files with text mode, open handles and attributes on Windows.

#include <tests/catalogue/catalogue_files.h>
#include <tests/common/channel_log.h>
#include <tests/common/file_bytes.h>
#include <tests/common/held_file_windows.h>
#include <tests/common/temporary_directory.h>
#include <tests/machine_context/context_samples.h>
#include <trvfiles/catalogue/CMachineContextUtils.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

using namespace std::string_literals;
using namespace trv::testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

constexpr char oldText[] = "[header]\r\nname=old\r\n";

class MachineContextOnWindows : public ::testing::Test {
protected:
    std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(directory_.path()))
            found.push_back(entry.path().filename().u8string());
        return found;
    }

    /// Expects that the file cannot be written, that nothing is reported, and that the directory
    /// does not change.
    void expectOldFile() const {
        const ChannelLog log;
        EXPECT_EQ(writeContext(path_, allFields()), eFileIOOpenError);
        EXPECT_THAT(log.fatals(), IsEmpty());
        EXPECT_THAT(log.errors(), IsEmpty());
        EXPECT_THAT(names(), ElementsAre("f.mctx"));
    }

    CMachineContextData read(const std::string& bytes) const {
        writeBytes(path_, bytes);
        CMachineContextData data = prefilled();
        EXPECT_EQ(readContext(path_, data), eFileIOSuccess);
        return data;
    }

    TemporaryDirectory directory_;
    std::filesystem::path path_ = directory_ / "f.mctx";
};

}  // namespace

TEST_F(MachineContextOnWindows, IsWrittenWithCrLf) {
    const std::string expected =
        "[header]\r\nversion=2\r\ncomment=first op\r\nname=Setup A\r\n"
        "[machine]\r\nname=MILL5\r\nposition=POS1\r\nproximity=10.000000\r\n"
        "[postpro]\r\norigin_program=12.500000 0.000000 -3.000000\r\n"
        "reference_axis=transfo.dat\r\n"
        "[part]\r\nsurface_group=FACES\r\n"
        "[clamping_system]\r\nname=VISE\r\nproximity=2.500000\r\n";
    EXPECT_EQ(writeContext(path_, allFields()), eFileIOSuccess);
    EXPECT_EQ(bytesOf(path_), expected);
    EXPECT_EQ(writeContext(path_, allFields()), eFileIOSuccess);
    EXPECT_EQ(bytesOf(path_), expected);
}

TEST_F(MachineContextOnWindows, KeepsNoLineEndOfAText) {
    CMachineContextData data = allFields();
    data.setComment("a\r\nb\nc\rd");
    EXPECT_EQ(writeContext(path_, data), eFileIOSuccess);
    EXPECT_NE(bytesOf(path_).find("\r\ncomment=a  b c d\r\nname=Setup A\r\n"), std::string::npos);
}

TEST_F(MachineContextOnWindows, IsReadWithLinesOfBothKinds) {
    CMachineContextData expected = prefilled();
    expected.setName("n");
    expected.setComment("c");
    expected.setSurfaceGroup("s");
    EXPECT_EQ(ContextFields(read("[header]\r\nname=n\ncomment=c\r\r\n[part]\nsurface_group=s")),
              ContextFields(expected));
}

TEST_F(MachineContextOnWindows, EndsAtCtrlZ) {
    CMachineContextData expected = prefilled();
    expected.setName("n");
    for (const char* end : {"\x1A", "\x1Arest", "\x1A\r\n[part]\r\nsurface_group=s\r\n",
                            "\r\n\x1A[part]\r\nsurface_group=s\r\n"}) {
        EXPECT_EQ(ContextFields(read("[header]\r\nname=n"s + end)), ContextFields(expected)) << end;
    }
    EXPECT_EQ(ContextFields(read("\x1A[header]\r\nname=n\r\n")), ContextFields(prefilled()));
}

TEST_F(MachineContextOnWindows, OfAValueWithCtrlZIsReadUpToThere) {
    CMachineContextData data = allFields();
    data.setMachinePosition(
        "a\x1A"
        "b");
    EXPECT_EQ(writeContext(path_, data), eFileIOSuccess);
    EXPECT_NE(bytesOf(path_).find("\r\nposition=a\x1A"
                                  "b\r\nproximity=10.000000\r\n"),
              std::string::npos);
    CMachineContextData expected = prefilled();
    expected.setComment("first op");
    expected.setName("Setup A");
    expected.setMachineName("MILL5");
    expected.setMachinePosition("a");
    EXPECT_EQ(ContextFields(read(bytesOf(path_))), ContextFields(expected));
}

TEST_F(MachineContextOnWindows, IsNotReplacedWhileAnotherHandleKeepsItOpen) {
    for (const DWORD sharing : {0, FILE_SHARE_READ, FILE_SHARE_READ | FILE_SHARE_WRITE}) {
        writeBytes(path_, oldText);
        {
            const HeldFile held(path_, sharing);
            ASSERT_TRUE(held.isOpen());
            expectOldFile();
        }
        EXPECT_EQ(bytesOf(path_), oldText);
        EXPECT_EQ(writeContext(path_, allFields()), eFileIOSuccess);
    }
}

TEST_F(MachineContextOnWindows, IsNotReplacedIfItIsReadOnly) {
    writeBytes(path_, oldText);
    ASSERT_NE(::SetFileAttributesW(path_.c_str(), FILE_ATTRIBUTE_READONLY), 0);
    expectOldFile();
    EXPECT_EQ(bytesOf(path_), oldText);
    EXPECT_NE(::GetFileAttributesW(path_.c_str()) & FILE_ATTRIBUTE_READONLY, 0U);
    ::SetFileAttributesW(path_.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(MachineContextOnWindows, WhoseTemporaryFileIsKeptOpenIsReportedAndGivesTwo) {
    writeBytes(path_, oldText);
    writeBytes(directory_ / "f.mctx.messages.tmp", "other");
    const HeldFile held(directory_ / "f.mctx.messages.tmp", FILE_SHARE_READ);
    const ChannelLog log;
    EXPECT_EQ(writeContext(path_, allFields()), eFileIOOpenError);
    EXPECT_THAT(log.fatals(),
                ElementsAre(::testing::StartsWith("Store messages : error opening file '")));
    EXPECT_EQ(bytesOf(path_), oldText);
    EXPECT_EQ(bytesOf(directory_ / "f.mctx.messages.tmp"), "other");
}

TEST_F(MachineContextOnWindows, IsReadAsFarAsOtherHandlesShareIt) {
    ASSERT_EQ(writeContext(path_, allFields()), eFileIOSuccess);
    CMachineContextData data = prefilled();
    {
        const HeldFile held(path_, 0);
        EXPECT_EQ(readContext(path_, data), eFileIOOpenError);
        EXPECT_EQ(ContextFields(data), ContextFields(prefilled()));
    }
    const HeldFile held(path_, FILE_SHARE_READ);
    EXPECT_EQ(readContext(path_, data), eFileIOSuccess);
    EXPECT_EQ(ContextFields(data), ContextFields(allFields()));
}

TEST_F(MachineContextOnWindows, ThatCannotBeCreatedHasItsReferenceFileRemoved) {
    writeBytes(directory_ / "[MACHINE_POSITION_1].mctx", oldText);
    const HeldFile held(directory_ / "[MACHINE_POSITION_1].mctx", FILE_SHARE_READ);
    std::wstring context = L"c";
    std::wstring reference = L"r";
    EXPECT_FALSE(CMachineContextUtils::sCreateDefaultMachineContext(directory_.wide(), 1, &context,
                                                                    &reference));
    EXPECT_EQ(contentsOf(directory_.path()),
              (Contents{{"[MACHINE_POSITION_1].mctx", "[header]\nname=old\n"},
                        {"transfo.dat", identityAxis}}));
    EXPECT_EQ(context, L"c");
    EXPECT_EQ(reference, L"r");
}

TEST_F(MachineContextOnWindows, IsFoundUnderDirectoriesWrittenWithBackslashes) {
    std::filesystem::create_directories(directory_ / "A/B");
    writeBytes(directory_ / "A/B/b.MCTX", oldText);
    std::wstring start = directory_.path().wstring();
    std::replace(start.begin(), start.end(), L'/', L'\\');
    EXPECT_THAT(CMachineContextUtils::sGetFavoriteMachineContext(start),
                ElementsAre(directory_.wide() + L"/A/B/B.mctx"));
}
