#include <tests/common/channel_log.h>
#include <tests/common/current_directory.h>
#include <tests/common/death_test.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <tests/environment/installation.h>
#include <tests/machine_context/context_samples.h>
#include <trvfiles/environment/variables.h>
#include <trvfiles/support/platform.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace fs = std::filesystem;
using namespace std::string_literals;
using namespace trv::testing;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

namespace {

class MachineContextMembers : public ChildProcessTest {
protected:
    /// Writes and reads through a facade by a narrow name, and expects this file in the directory.
    void expectRoundTrip(CQvFilesIO facade, const std::string& name, const fs::path& file) const {
        SCOPED_TRACE(name);
        EXPECT_EQ(facade.writeMachineContext(name.c_str(), allFields()), eFileIOSuccess);
        EXPECT_EQ(textOf(file), text);
        expectRead([&](CMachineContextData& data) {
            return facade.readMachineContext(name.c_str(), data);
        });
        fs::remove(file);
    }

    void expectRoundTrip(CQvFilesIO facade, const std::wstring& name, const fs::path& file) const {
        SCOPED_TRACE(::testing::PrintToString(name));
        EXPECT_EQ(facade.writeMachineContext(name, allFields()), eFileIOSuccess);
        EXPECT_EQ(textOf(file), text);
        expectRead(
            [&](CMachineContextData& data) { return facade.readMachineContext(name, data); });
        fs::remove(file);
    }

    template <class Read>
    static void expectRead(const Read& read) {
        CMachineContextData data = prefilled();
        EXPECT_EQ(read(data), eFileIOSuccess);
        EXPECT_EQ(ContextFields(data), ContextFields(allFields()));
    }

    TemporaryDirectory directory;
    CQvFilesIO files{directory.wide()};
    const std::string text = textOf(fs::path(TRV_TEST_DATA) / "machine_context/all_fields.mctx");
};

}  // namespace

TEST_F(MachineContextMembers, ResolveANameAgainstTheirDirectory) {
    fs::create_directory(directory / "sub");
    expectRoundTrip(files, "f.mctx", directory / "f.mctx");
    expectRoundTrip(files, L"f.mctx", directory / "f.mctx");
    expectRoundTrip(files, "sub/f.mctx", directory / "sub/f.mctx");
    expectRoundTrip(files, L"sub\\f.mctx", directory / "sub/f.mctx");
    expectRoundTrip(files, "missing/../f.mctx", directory / "f.mctx");
    expectRoundTrip(files, L"./sub/./..//f.mctx", directory / "f.mctx");
    expectRoundTrip(CQvFilesIO(directory.text() + "/sub"), "../f.mctx", directory / "f.mctx");
    expectRoundTrip(CQvFilesIO((directory.text() + "/").c_str()), L"f.mctx", directory / "f.mctx");
}

TEST_F(MachineContextMembers, DoNotChangeAnAbsoluteName) {
    const TemporaryDirectory other;
    expectRoundTrip(files, other.text() + "/f.mctx", other / "f.mctx");
    expectRoundTrip(files, other.wide() + L"/f.mctx", other / "f.mctx");
    expectRoundTrip(CQvFilesIO("/missing"), other.wide() + L"/f.mctx", other / "f.mctx");
}

TEST_F(MachineContextMembers, ResolveARelativeDirectoryAtEachCall) {
    const TemporaryDirectory other;
    CQvFilesIO here("");
    const CQvFilesIO null(static_cast<const char*>(nullptr));
    for (const TemporaryDirectory* current : {&std::as_const(directory), &other}) {
        const CurrentDirectory inside(current->path());
        expectRoundTrip(here, "f.mctx", *current / "f.mctx");
        expectRoundTrip(null, L"f.mctx", *current / "f.mctx");
        fs::create_directory(*current / "d");
        expectRoundTrip(CQvFilesIO("d"), "f.mctx", *current / "d/f.mctx");
    }
}

TEST_F(MachineContextMembers, TakeNamesLiterally) {
    for (const char* name : {"$HOME", "$X.mctx", "~", "a b.mctx", " f", "[m]", "100%s%n", "#f", "=",
                             "f.messages.tmp", "+(00000000)", "a;b,c"})
        expectRoundTrip(files, name, directory / name);
}

TEST_F(MachineContextMembers, TakeNamesOutsideAscii) {
    const std::wstring wide = L"Fr\u00E4sen \u65E5\u672C.mctx";
    const std::string narrow = "Fr\xC3\xA4sen \xE6\x97\xA5\xE6\x9C\xAC.mctx";
    expectRoundTrip(files, wide, directory / narrow);
    expectRoundTrip(files, narrow, directory / narrow);
    EXPECT_EQ(files.writeMachineContext(wide, allFields()), eFileIOSuccess);
    expectRead([&](auto& data) { return files.readMachineContext(narrow.c_str(), data); });
    fs::create_directory(directory / "\xF0\x9F\x98\x80");
    expectRoundTrip(CQvFilesIO(directory.text() + "/\xF0\x9F\x98\x80"), "f",
                    directory / "\xF0\x9F\x98\x80" / "f");
}

TEST_F(MachineContextMembers, ShareTheFileBetweenTheFormsOfTheirNames) {
    EXPECT_EQ(files.writeMachineContext("f", allFields()), eFileIOSuccess);
    expectRead([&](auto& data) { return files.readMachineContext(L"f"s, data); });
    expectRead([&](auto& data) {
        return CQvFilesIO::sReadMachineContext((directory / "f").wstring(), data);
    });
    EXPECT_EQ(CQvFilesIO::sWriteMachineContext((directory / "g").wstring(), allFields()),
              eFileIOSuccess);
    expectRead([&](auto& data) { return files.readMachineContext("g", data); });
    EXPECT_EQ(textOf(directory / "g"), text);
}

TEST_F(MachineContextMembers, ThatAreStaticDoNotChangeThePath) {
    const CurrentDirectory inside(directory.path());
    EXPECT_EQ(CQvFilesIO::sWriteMachineContext(L"f", allFields()), eFileIOSuccess);
    EXPECT_EQ(textOf(directory / "f"), text);
    expectRead([&](auto& data) { return CQvFilesIO::sReadMachineContext(L"./f", data); });
}

TEST_F(MachineContextMembers, NeedNoChangeableInstanceButTakeTheirNamesByValue) {
    std::wstring name = L"f";
    EXPECT_EQ(files.writeMachineContext(std::move(name), allFields()), eFileIOSuccess);
    CQvFilesIO copy(files);
    copy = files;
    expectRead([&](auto& data) { return copy.readMachineContext(L"f"s, data); });
}

TEST_F(MachineContextMembers, ReadTheDirectoryForANullOrAnEmptyName) {
    const ChannelLog log;
    CMachineContextData data = prefilled();
    for (const char* name : {static_cast<const char*>(nullptr), "", "."}) {
        EXPECT_EQ(files.readMachineContext(name, data), eFileIOOpenError);
        EXPECT_EQ(files.writeMachineContext(name, allFields()), eFileIOOpenError);
    }
    EXPECT_EQ(files.readMachineContext(L""s, data), eFileIOOpenError);
    EXPECT_EQ(files.writeMachineContext(L""s, allFields()), eFileIOOpenError);
    EXPECT_EQ(CQvFilesIO::sReadMachineContext(L"", data), eFileIOOpenError);
    EXPECT_EQ(CQvFilesIO::sWriteMachineContext(L"", allFields()), eFileIOOpenError);
    EXPECT_EQ(ContextFields(data), ContextFields(prefilled()));
    EXPECT_TRUE(fs::is_empty(directory.path()));
    EXPECT_FALSE(fs::exists(directory.text() + ".messages.tmp"));
    EXPECT_THAT(log.fatals(), IsEmpty());
}

TEST_F(MachineContextMembers, OpenNoNameThatHoldsAZero) {
    const ChannelLog log;
    writeBytes(directory / "f", "[header]\nname=old\n");
    CMachineContextData data = prefilled();
    for (const std::wstring& name : {L"f\0"s, L"f\0g"s, L"\0f"s, L"\0"s}) {
        EXPECT_EQ(files.readMachineContext(name, data), eFileIOOpenError);
        EXPECT_EQ(files.writeMachineContext(name, allFields()), eFileIOOpenError);
        EXPECT_EQ(CQvFilesIO::sReadMachineContext((directory / "").wstring() + name, data),
                  eFileIOOpenError);
        EXPECT_EQ(CQvFilesIO::sWriteMachineContext((directory / "").wstring() + name, allFields()),
                  eFileIOOpenError);
    }
    CQvFilesIO strange(directory.wide() + L"\0x"s);
    EXPECT_EQ(strange.readMachineContext("f", data), eFileIOOpenError);
    EXPECT_EQ(strange.writeMachineContext("f", allFields()), eFileIOOpenError);
    EXPECT_EQ(ContextFields(data), ContextFields(prefilled()));
    EXPECT_EQ(bytesOf(directory / "f"), "[header]\nname=old\n");
    EXPECT_THAT(log.fatals(), IsEmpty());
}

TEST_F(MachineContextMembers, OpenNoPathWithHalfASurrogatePair) {
    if (!trv::platform::narrow_text_is_utf8()) GTEST_SKIP() << "such a name is one like others";
    const ChannelLog log;
    CMachineContextData data = prefilled();
    for (const wchar_t half : {wchar_t(0xD800), wchar_t(0xDFFF)}) {
        const std::wstring name = std::wstring(L"a") + half + L"b";
        EXPECT_EQ(files.writeMachineContext(name, allFields()), eFileIOOpenError);
        EXPECT_EQ(files.readMachineContext(name, data), eFileIOOpenError);
    }
    EXPECT_TRUE(fs::is_empty(directory.path()));
    EXPECT_THAT(log.fatals(), IsEmpty());
}

TEST_F(MachineContextMembers, GiveTheStatusOfTheFile) {
    CMachineContextData data = prefilled();
    EXPECT_EQ(files.readMachineContext("missing", data), eFileIOOpenError);
    EXPECT_EQ(files.readMachineContext(L"missing"s, data), eFileIOOpenError);
    EXPECT_EQ(ContextFields(data), ContextFields(prefilled()));
    writeBytes(directory / "f", "[machine]\nname=m\n");
    for (const bool wide : {false, true}) {
        CMachineContextData partial = prefilled();
        EXPECT_EQ(wide ? files.readMachineContext(L"f"s, partial)
                       : files.readMachineContext("f", partial),
                  eFileIOContentError);
        CMachineContextData expected = prefilled();
        expected.setMachineName("m");
        EXPECT_EQ(ContextFields(partial), ContextFields(expected));
    }
    writeBytes(directory / "empty", "");
    EXPECT_EQ(files.readMachineContext("empty", data), eFileIOSuccess);
    EXPECT_EQ(ContextFields(data), ContextFields(prefilled()));

    const ChannelLog log;
    EXPECT_EQ(files.writeMachineContext("missing/f", allFields()), eFileIOOpenError);
    EXPECT_EQ(files.writeMachineContext(L"missing/f"s, allFields()), eFileIOOpenError);
    EXPECT_THAT(log.fatals(), SizeIs(2));
    EXPECT_THAT(log.fatals(), ::testing::Each(StartsWith("Store messages : error opening file '")));
}

TEST_F(MachineContextMembers, PrintNothingButAReport) {
    ::testing::internal::CaptureStdout();
    ::testing::internal::CaptureStderr();
    CMachineContextData data;
    fs::create_directory(directory / "d");
    EXPECT_EQ(files.writeMachineContext("f", allFields()), eFileIOSuccess);
    EXPECT_EQ(files.readMachineContext("f", data), eFileIOSuccess);
    EXPECT_EQ(files.readMachineContext("missing", data), eFileIOOpenError);
    EXPECT_EQ(files.readMachineContext("d", data), eFileIOOpenError);
    EXPECT_EQ(files.writeMachineContext("d", allFields()), eFileIOOpenError);
    EXPECT_EQ(files.writeMachineContext(L"f\0g"s, allFields()), eFileIOOpenError);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

TEST_F(MachineContextMembers, NeverLoadTheEnvironment) {
    const auto writeAndRead = [this] {
        const Installation withoutFiles;
        const ChannelLog log;
        CMachineContextData data = allFields();
        data.setName("$TRVHOME");
        data.setComment("?ENV");
        EXPECT_EQ(files.writeMachineContext("$TRVZONE.mctx", data), eFileIOSuccess);
        CMachineContextData back;
        EXPECT_EQ(files.readMachineContext("$TRVZONE.mctx", back), eFileIOSuccess);
        EXPECT_EQ(ContextFields(back), ContextFields(data));
        writeBytes(directory / "conditional",
                   "/if UNDEFINED\n[header]\n/else\nname=n\n/endif\n/if $X\n");
        EXPECT_EQ(files.readMachineContext("conditional", back), eFileIOSuccess);
        EXPECT_EQ(back.getName(), "n");
        EXPECT_EQ(trv::environment_store(), nullptr);
        EXPECT_THAT(log.fatals(), IsEmpty());
        EXPECT_THAT(log.traces(), IsEmpty());
        // The test would notice a lookup.
        EXPECT_EQ(trv::get_variable("UNDEFINED"), nullptr);
        EXPECT_FALSE(log.fatals().empty());
    };
    TRV_EXPECT_IN_CHILD(writeAndRead);
}

TEST_F(MachineContextMembers, MayReadOnSeveralThreads) {
    ASSERT_EQ(files.writeMachineContext("f", allFields()), eFileIOSuccess);
    std::vector<std::thread> readers;
    for (int reader = 0; reader < 4; ++reader) {
        readers.emplace_back([this] {
            CQvFilesIO own(directory.wide());
            for (int round = 0; round < 200; ++round) {
                CMachineContextData data = prefilled();
                EXPECT_EQ(own.readMachineContext("f", data), eFileIOSuccess);
                EXPECT_EQ(ContextFields(data), ContextFields(allFields()));
                EXPECT_EQ(own.readMachineContext(L"missing"s, data), eFileIOOpenError);
            }
        });
    }
    for (std::thread& reader : readers)
        reader.join();
}
