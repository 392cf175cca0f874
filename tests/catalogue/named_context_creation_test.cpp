#include <tests/catalogue/catalogue_files.h>
#include <tests/common/channel_log.h>
#include <tests/common/child_process.h>
#include <tests/common/current_directory.h>
#include <tests/common/death_test.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/catalogue/CMachineContextUtils.h>
#include <trvfiles/facade/CQvFilesIO.h>
#include <trvfiles/machine_context/CMachineContextData.h>

#include <QString>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <tuple>
#include <utility>

namespace fs = std::filesystem;
using namespace std::string_literals;
using namespace trv::testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

std::wstring wide(const std::string& text) {
    return QString::fromStdString(text).toStdWString();
}

/// The arguments of a call, in UTF-8.
struct Request {
    std::string machine;
    std::string axisFile;
    std::string contextFile;
};

/// Creates contexts in a directory that is also the current one.
class NamedContextCreation : public ::testing::Test {
protected:
    NamedContextCreation() : here_(directory_.path()) {}

    bool create(const std::wstring& directory, const Request& request) {
        return CMachineContextUtils::sCreateMachineContext(
            directory, wide(request.machine), wide(request.axisFile), wide(request.contextFile),
            &contextFile_, &referenceFile_);
    }
    bool create(const Request& request) { return create(directory_.wide(), request); }

    /// Creates exactly this pair of files beside the axis file.
    void expectCreated(const Request& request, const std::string& name, const std::string& context,
                       const std::string& reference) {
        SCOPED_TRACE(context);
        const std::string axisFile = request.axisFile.empty() ? "transfo.dat" : request.axisFile;
        writeBytes(directory_ / axisFile, "axis of " + axisFile);
        Contents expected = contents();
        expected[context] = createdContext(name, request.machine, reference);
        expected[reference] = "axis of " + axisFile;
        EXPECT_TRUE(create(request));
        EXPECT_EQ(contextFile_, wide(context));
        EXPECT_EQ(referenceFile_, wide(reference));
        EXPECT_EQ(contents(), expected);
        for (const std::string& file : {axisFile, context, reference})
            fs::remove(directory_ / file);
        contextFile_ = L"old context";
        referenceFile_ = L"old reference";
    }

    /// Creates nothing, changes no result and leaves these files.
    void expectFailure(const Request& request, const Contents& left) {
        SCOPED_TRACE(request.machine + ", " + request.axisFile + ", " + request.contextFile);
        EXPECT_FALSE(create(request));
        expectUntouched();
        EXPECT_EQ(contents(), left);
    }
    void expectUntouched() const {
        EXPECT_EQ(contextFile_, L"old context");
        EXPECT_EQ(referenceFile_, L"old reference");
    }

    void write(const std::string& name, std::string_view bytes) {
        writeBytes(directory_ / name, bytes);
    }
    void makeDirectory(const std::string& name) { fs::create_directories(directory_ / name); }
    Contents contents() const { return contentsOf(directory_.path()); }

    TemporaryDirectory directory_;
    std::wstring contextFile_ = L"old context";
    std::wstring referenceFile_ = L"old reference";

private:
    CurrentDirectory here_;
};

}  // namespace

TEST_F(NamedContextCreation, NamesTheFilesAfterTheMachine) {
    expectCreated({"mill5.mac", "", ""}, "mill5[MACHINE]", "mill5[MACHINE].mctx",
                  "[stockposition@mill5[MACHINE]]MACHINE.ref");
    expectCreated({"mill5.mac", "head.ref", ""}, "mill5[head]", "mill5[head].mctx",
                  "[stockposition@mill5[head]]head.ref");
}

TEST_F(NamedContextCreation, RemovesTheLastOccurrenceOfASuffixFromTheMachinesName) {
    expectCreated({"a.mac.b", "head.ref", ""}, "a.b[head]", "a.b[head].mctx",
                  "[stockposition@a.b[head]]head.ref");
    const std::pair<const char*, const char*> bases[] = {
        {"a.mac-b.mac", "a.mac-b"},
        {"a.mac-b.mac-c", "a.mac-b-c"},
        {"a.mac.mac", "a.mac"},
        {"a.macx", "ax"},
        {"mill", "mill"},
        {".mac", ""},
        {"a.MAC", "a.MAC"},
        {"a.ma", "a.ma"},
        {"", ""},
    };
    for (const auto& [machine, base] : bases) {
        const std::string name = base + "[MACHINE]"s;
        expectCreated({machine, "", ""}, name, name + ".mctx",
                      "[stockposition@" + name + "]MACHINE.ref");
    }
}

TEST_F(NamedContextCreation, RemovesTheLastOccurrenceOfASuffixFromTheAxisFilesName) {
    const std::pair<const char*, const char*> bases[] = {
        {"x.ref-y.ref", "x.ref-y"}, {"x.ref-y.ref-z", "x.ref-y-z"},
        {"a.ref.b", "a.b"},         {"a.refx", "ax"},
        {"head", "head"},           {"transfo.dat", "transfo.dat"},
    };
    for (const auto& [axisFile, axis] : bases) {
        const std::string name = "m["s + axis + "]";
        expectCreated({"m.mac", axisFile, ""}, name, name + ".mctx",
                      "[stockposition@" + name + "]" + axis + ".ref");
    }
}

TEST_F(NamedContextCreation, UsesTheGivenNameOfTheContextFile) {
    expectCreated({"mill.mac", "", "job.mctx"}, "job", "job.mctx",
                  "[stockposition@job]MACHINE.ref");
    expectCreated({"mill.mac", "head.ref", "job.mctx"}, "job", "job.mctx",
                  "[stockposition@job]head.ref");
    const std::pair<const char*, const char*> names[] = {
        {"job", "job"},
        {"a.mctx-b.mctx", "a.mctx-b"},
        {"a.mctx-b.mctx-c", "a.mctx-b-c"},
        {"a.mctx.b", "a.b"},
        {"a.mctxx", "ax"},
        {".mctx", ""},
    };
    for (const auto& [file, name] : names) {
        expectCreated({"mill.mac", "", file}, name, file,
                      "[stockposition@"s + name + "]MACHINE.ref");
    }
}

TEST_F(NamedContextCreation, WritesNamesWithAnyCharactersAsTheyAre) {
    expectCreated({"50%d%s%n.mac", "100%.ref", ""}, "50%d%s%n[100%]", "50%d%s%n[100%].mctx",
                  "[stockposition@50%d%s%n[100%]]100%.ref");
    expectCreated({"a [b] $X.mac", "c d.ref", "[e] %s.mctx"}, "[e] %s", "[e] %s.mctx",
                  "[stockposition@[e] %s]c d.ref");
    expectCreated({"\xC3\xA4.mac", "\xE4\xB8\xAD.ref", ""}, "\xC3\xA4[\xE4\xB8\xAD]",
                  "\xC3\xA4[\xE4\xB8\xAD].mctx",
                  "[stockposition@\xC3\xA4[\xE4\xB8\xAD]]\xE4\xB8\xAD.ref");
}

TEST_F(NamedContextCreation, GivesAContextThatNamesMachineAndReferenceFile) {
    write("head.ref", "axis");
    EXPECT_TRUE(create({"a.mac.b", "head.ref", ""}));
    CMachineContextData record;
    ASSERT_EQ(CQvFilesIO(directory_.wide()).readMachineContext(contextFile_, record),
              eFileIOSuccess);
    EXPECT_EQ(record.getMachineNameW(), L"a.mac.b");
    EXPECT_EQ(record.getNameW(), L"a.b[head]");
    EXPECT_EQ(record.getMachinePositionW(), referenceFile_);
    record.setName("");
    record.setMachineName("");
    record.setMachinePosition("");
    EXPECT_TRUE(record.isNull());
}

TEST_F(NamedContextCreation, CopiesTheAxisFileByteForByte) {
    for (const std::string& bytes : {"no axis\r\n\0\x1A\xFF"s, ""s}) {
        write("transfo.dat", bytes);
        EXPECT_TRUE(create({"m.mac", "", ""}));
        EXPECT_EQ(bytesOf(directory_ / "[stockposition@m[MACHINE]]MACHINE.ref"), bytes);
        fs::remove(directory_ / "[stockposition@m[MACHINE]]MACHINE.ref");
        fs::remove(directory_ / "m[MACHINE].mctx");
    }
}

TEST_F(NamedContextCreation, NeedsItsAxisFile) {
    expectFailure({"mill.mac", "", ""}, {});
    expectFailure({"mill.mac", "head.ref", ""}, {});
    makeDirectory("head.ref");
    write("transfo.dat", "axis");
    expectFailure({"mill.mac", "head.ref", "job.mctx"},
                  {{"head.ref", aDirectory}, {"transfo.dat", "axis"}});
    expectFailure({"mill.mac", "head", ""}, {{"head.ref", aDirectory}, {"transfo.dat", "axis"}});
}

TEST_F(NamedContextCreation, DoesNothingASecondTime) {
    write("transfo.dat", "axis");
    EXPECT_TRUE(create({"mill.mac", "", ""}));
    contextFile_ = L"old context";
    referenceFile_ = L"old reference";
    write("transfo.dat", "changed");
    const Contents before = contents();
    const fs::file_time_type written = fs::last_write_time(directory_ / "mill[MACHINE].mctx");
    expectFailure({"mill.mac", "", ""}, before);
    EXPECT_EQ(fs::last_write_time(directory_ / "mill[MACHINE].mctx"), written);
}

TEST_F(NamedContextCreation, OverwritesNeitherOfItsFiles) {
    write("transfo.dat", "axis");
    write("job.mctx", "old");
    expectFailure({"mill.mac", "", "job.mctx"}, {{"transfo.dat", "axis"}, {"job.mctx", "old"}});
    fs::remove(directory_ / "job.mctx");
    const std::string reference = "[stockposition@job]MACHINE.ref";
    write(reference, "");
    expectFailure({"mill.mac", "", "job.mctx"}, {{"transfo.dat", "axis"}, {reference, ""}});
}

TEST_F(NamedContextCreation, AcceptsNullPointersForItsResults) {
    write("transfo.dat", "axis");
    const std::wstring none;
    EXPECT_TRUE(CMachineContextUtils::sCreateMachineContext(directory_.wide(), L"a", none, none,
                                                            &contextFile_, nullptr));
    EXPECT_EQ(contextFile_, L"a[MACHINE].mctx");
    EXPECT_TRUE(CMachineContextUtils::sCreateMachineContext(directory_.wide(), L"b", none, none,
                                                            nullptr, &referenceFile_));
    EXPECT_EQ(referenceFile_, L"[stockposition@b[MACHINE]]MACHINE.ref");
    EXPECT_TRUE(CMachineContextUtils::sCreateMachineContext(directory_.wide(), L"c", none, none,
                                                            nullptr, nullptr));
    EXPECT_FALSE(CMachineContextUtils::sCreateMachineContext(directory_.wide(), L"c", none, none,
                                                             nullptr, nullptr));
}

TEST_F(NamedContextCreation, MayReturnItsResultsInItsArguments) {
    write("head.ref", "axis");
    std::wstring context = L"job.mctx";
    std::wstring axis = L"head.ref";
    EXPECT_TRUE(CMachineContextUtils::sCreateMachineContext(directory_.wide(), L"m", axis, context,
                                                            &context, &axis));
    EXPECT_EQ(context, L"job.mctx");
    EXPECT_EQ(axis, L"[stockposition@job]head.ref");
}

TEST_F(NamedContextCreation, TreatsAnEmptyDirectoryAsTheCurrentOne) {
    write("transfo.dat", "axis");
    EXPECT_TRUE(create(L"", {"m", "", ""}));
    EXPECT_TRUE(fs::exists(directory_ / "m[MACHINE].mctx"));
    EXPECT_EQ(contents().size(), 3U);
}

TEST_F(NamedContextCreation, KeepsAMachineOf600CharactersInTheRecord) {
    const std::string machine = std::string(600, 'm') + ".mac";
    expectCreated({machine, "", "job.mctx"}, "job", "job.mctx", "[stockposition@job]MACHINE.ref");
}

TEST_F(NamedContextCreation, FailsIfTheFileSystemRejectsTheName) {
    write("transfo.dat", "axis");
    const ChannelLog log;
    expectFailure({std::string(600, 'm'), "", ""}, {{"transfo.dat", "axis"}});
    expectFailure({"m", "", std::string(600, 'k')}, {{"transfo.dat", "axis"}});
    expectFailure({"m", std::string(600, 'a'), ""}, {{"transfo.dat", "axis"}});
    expectFailure({std::string(100000, 'm'), "", ""}, {{"transfo.dat", "axis"}});
    EXPECT_THAT(log.fatals(), IsEmpty());
}

// Here the name of the reference file is 22 characters longer than that of the context. It has 255
// characters, the limit of Linux.
TEST_F(NamedContextCreation, AcceptsNamesAsLongAsTheFileSystemDoes) {
    if (!can_fork) GTEST_SKIP() << "other systems have other limits";
    const std::string longest(228, 'k');
    expectCreated({"m", "", longest + ".mctx"}, longest, longest + ".mctx",
                  "[stockposition@" + longest + "]MACHINE.ref");
    write("transfo.dat", "axis");
    expectFailure({"m", "", longest + "k.mctx"}, {{"transfo.dat", "axis"}});
}

TEST_F(NamedContextCreation, RefusesNamesThatHoldAZero) {
    write("transfo.dat", "axis");
    const std::wstring none;
    const std::wstring zero = L"a\0b"s;
    const std::wstring zeroAxis = L"transfo.dat\0"s;
    const std::wstring directory = directory_.wide();
    for (const auto& [machine, axis, context] :
         {std::tuple(zero, none, none), {L"m"s, zeroAxis, none}, {L"m"s, none, zero}}) {
        EXPECT_FALSE(CMachineContextUtils::sCreateMachineContext(directory, machine, axis, context,
                                                                 &contextFile_, &referenceFile_));
        expectUntouched();
        EXPECT_EQ(contents(), (Contents{{"transfo.dat", "axis"}}));
    }
    EXPECT_FALSE(create(directory + L"\0"s, {"m", "", ""}));
    EXPECT_EQ(contents(), (Contents{{"transfo.dat", "axis"}}));
}

// "[stockposition@" is before every directory part, so the directory of such a name does not exist.
TEST_F(NamedContextCreation, FailsForNamesWithADirectoryPart) {
    makeDirectory("sub");
    write("sub/head.ref", "axis");
    const Contents before = contents();
    const std::string directory = directory_.path().generic_u8string();
    const ChannelLog log;
    expectFailure({"m", "sub/head.ref", ""}, before);
    expectFailure({"m", "sub/head.ref", "job.mctx"}, before);
    expectFailure({"m", directory + "/sub/head.ref", "job.mctx"}, before);
    expectFailure({"m", directory + "/sub/head.ref", directory + "/job.mctx"}, before);
    EXPECT_THAT(log.fatals(), IsEmpty());
}

// The context is written as CQvFilesIO does it, to the clean path.
TEST_F(NamedContextCreation, WritesTheContextThroughADirectoryThatIsMissing) {
    write("transfo.dat", "axis");
    makeDirectory("[stockposition@missing");
    const ChannelLog log;
    EXPECT_TRUE(create({"m", "", "missing/../job.mctx"}));
    EXPECT_EQ(contextFile_, L"missing/../job.mctx");
    const std::string reference = "[stockposition@missing/../job]MACHINE.ref";
    EXPECT_EQ(referenceFile_, wide(reference));
    EXPECT_EQ(contents(),
              (Contents{{"transfo.dat", "axis"},
                        {"[stockposition@missing", aDirectory},
                        {"job]MACHINE.ref", "axis"},
                        {"job.mctx", createdContext("missing/../job", "m", reference)}}));
}

TEST_F(NamedContextCreation, FailsIfTheReferenceFileCannotBeWritten) {
    write("transfo.dat", "axis");
    const std::string reference = "[stockposition@job]MACHINE.ref";
    makeDirectory(reference);
    const ChannelLog log;
    expectFailure({"m", "", "job.mctx"}, {{"transfo.dat", "axis"}, {reference, aDirectory}});
    EXPECT_THAT(log.fatals(), IsEmpty());
}

TEST_F(NamedContextCreation, RemovesTheReferenceFileIfTheContextCannotBeReplaced) {
    write("transfo.dat", "axis");
    makeDirectory("job.mctx/inside");
    const ChannelLog log;
    expectFailure(
        {"m", "", "job.mctx"},
        {{"transfo.dat", "axis"}, {"job.mctx", aDirectory}, {"job.mctx/inside", aDirectory}});
    EXPECT_THAT(log.fatals(), IsEmpty());
}

TEST_F(NamedContextCreation, RemovesTheReferenceFileIfTheContextCannotBeWritten) {
    write("transfo.dat", "axis");
    makeDirectory("job.mctx.messages.tmp");
    const ChannelLog log;
    expectFailure({"m", "", "job.mctx"},
                  {{"transfo.dat", "axis"}, {"job.mctx.messages.tmp", aDirectory}});
    EXPECT_THAT(log.fatals(),
                ElementsAre("Store messages : error opening file '" +
                            directory_.path().generic_u8string() + "/job.mctx.messages.tmp'"));
}

TEST_F(NamedContextCreation, EndsTheProcessIfTheContextCannotBeWrittenWithTheDefaultHandler) {
    write("transfo.dat", "axis");
    makeDirectory("job.mctx.messages.tmp");
    const auto call = [&] { create({"m", "", "job.mctx"}); };
    // Not every system starts the child in the directory of its parent.
    EXPECT_EXIT(runAndLeave(call), endedByDefaultFatalHandler,
                ::testing::AllOf(::testing::StartsWith("Store messages : error opening file '"),
                                 ::testing::EndsWith("/job.mctx.messages.tmp'\n")));
    EXPECT_EQ(contents(),
              (Contents{{"transfo.dat", "axis"}, {"job.mctx.messages.tmp", aDirectory}}));
}

TEST_F(NamedContextCreation, WorksAgainAfterAHandlerThatThrows) {
    write("transfo.dat", "axis");
    makeDirectory("job.mctx.messages.tmp");
    const ChannelLog log;
    trv::set_fatal_handler([](const char* message) { throw std::runtime_error(message); });
    EXPECT_THROW(create({"m", "", "job.mctx"}), std::runtime_error);
    expectUntouched();
    EXPECT_EQ(contents(),
              (Contents{{"transfo.dat", "axis"}, {"job.mctx.messages.tmp", aDirectory}}));
    fs::remove(directory_ / "job.mctx.messages.tmp");
    EXPECT_TRUE(create({"m", "", "job.mctx"}));
}

TEST_F(NamedContextCreation, RemovesTheReferenceFileBeforeItReportsTheContext) {
    write("transfo.dat", "axis");
    makeDirectory("job.mctx.messages.tmp");
    static bool hadReference;
    hadReference = true;
    const ChannelLog log;
    trv::set_fatal_handler(
        [](const char*) { hadReference = fs::exists("[stockposition@job]MACHINE.ref"); });
    EXPECT_FALSE(create({"m", "", "job.mctx"}));
    EXPECT_FALSE(hadReference);
}

// A link to a missing file would create the file at the target of the link.
TEST_F(NamedContextCreation, CreatesNoFileThroughALink) {
    makeDirectory("elsewhere");
    const std::string reference = "[stockposition@job]MACHINE.ref";
    for (const std::string& name : {"transfo.dat"s, reference, "job.mctx"s}) {
        SCOPED_TRACE(name);
        write("transfo.dat", "axis");
        fs::remove(directory_ / name);
        std::error_code error;
        fs::create_symlink(directory_ / "elsewhere/f", directory_ / name, error);
        if (error) GTEST_SKIP() << "links cannot be made here";
        const ChannelLog log;
        EXPECT_FALSE(create({"m", "", "job.mctx"}));
        EXPECT_THAT(log.fatals(), IsEmpty());
        EXPECT_TRUE(fs::is_symlink(directory_ / name));
        EXPECT_TRUE(fs::is_empty(directory_ / "elsewhere"));
        for (const std::string& other : {reference, "job.mctx"s, "job.mctx.messages.tmp"s}) {
            EXPECT_TRUE(other == name || !fs::exists(fs::symlink_status(directory_ / other)))
                << other;
        }
        fs::remove(directory_ / name);
    }
    write("transfo.dat", "axis");
    EXPECT_TRUE(create({"m", "", "job.mctx"}));
}

TEST_F(NamedContextCreation, OverwritesNoFileThatTheUserMayNotRead) {
    if (!can_fork) GTEST_SKIP() << "needs a child process";
    fs::permissions(directory_.path(), fs::perms::all);
    write("transfo.dat", "axis");
    const std::string reference = "[stockposition@job]MACHINE.ref";
    for (const std::string& name : {reference, "job.mctx"s}) {
        SCOPED_TRACE(name);
        write(name, "old");
        fs::permissions(directory_ / name, fs::perms::others_write);
        EXPECT_TRUE(passesInChild([&] {
            ASSERT_TRUE(becomeOrdinaryUser());
            const ChannelLog log;
            EXPECT_FALSE(create({"m", "", "job.mctx"}));
            EXPECT_THAT(log.fatals(), IsEmpty());
        }));
        EXPECT_EQ(contents(), (Contents{{"transfo.dat", "axis"}, {name, "old"}}));
        fs::remove(directory_ / name);
    }
}

TEST_F(NamedContextCreation, FailsOnAFullDisk) {
    if (!can_fork) GTEST_SKIP() << "needs a child process";
    write("transfo.dat", "axis");
    EXPECT_TRUE(passesInChild([&] {
        const ChannelLog log;
        ASSERT_TRUE(limitFileSize(0));
        expectFailure({"m", "", ""}, {{"transfo.dat", "axis"}});
        EXPECT_THAT(log.fatals(), IsEmpty());
    }));
}

// A directory that is not the current one. It is checked, but nothing is copied into it.

TEST_F(NamedContextCreation, LeavesAnEmptyFileInTheCurrentDirectoryThatLacksTheAxisFile) {
    makeDirectory("other");
    write("other/head.ref", "axis");
    EXPECT_FALSE(create(directory_.wide() + L"/other", {"m", "head.ref", ""}));
    expectUntouched();
    EXPECT_EQ(contents(), (Contents{{"other", aDirectory},
                                    {"other/head.ref", "axis"},
                                    {"[stockposition@m[head]]head.ref", ""}}));
}

TEST_F(NamedContextCreation, NeedsTheAxisFileInItsDirectory) {
    makeDirectory("other");
    write("transfo.dat", "axis");
    EXPECT_FALSE(create(directory_.wide() + L"/other", {"m", "", ""}));
    EXPECT_FALSE(create(directory_.wide() + L"/missing", {"m", "", ""}));
    EXPECT_EQ(contents(), (Contents{{"other", aDirectory}, {"transfo.dat", "axis"}}));
}

TEST_F(NamedContextCreation, CopiesWithinTheCurrentDirectory) {
    makeDirectory("other");
    write("other/head.ref", "other axis");
    write("head.ref", "axis here");
    const std::string reference = "[stockposition@m[head]]head.ref";
    write(reference, "old");
    write("m[head].mctx", "old");
    EXPECT_TRUE(create(L"other", {"m", "head.ref", ""}));
    EXPECT_EQ(contextFile_, L"m[head].mctx");
    EXPECT_EQ(referenceFile_, wide(reference));
    EXPECT_EQ(contents(),
              (Contents{{"other", aDirectory},
                        {"other/head.ref", "other axis"},
                        {"other/m[head].mctx", createdContext("m[head]", "m", reference)},
                        {"head.ref", "axis here"},
                        {reference, "axis here"},
                        {"m[head].mctx", "old"}}));
}

TEST_F(NamedContextCreation, LooksForItsFilesInItsDirectory) {
    makeDirectory("other");
    const std::string reference = "[stockposition@m[head]]head.ref";
    write("other/head.ref", "other axis");
    write("other/" + reference, "old");
    write("head.ref", "axis here");
    const Contents before = contents();
    EXPECT_FALSE(create(L"other", {"m", "head.ref", ""}));
    fs::rename(directory_ / ("other/" + reference), directory_ / "other/m[head].mctx");
    EXPECT_FALSE(create(L"other", {"m", "head.ref", ""}));
    expectUntouched();
    EXPECT_EQ(contents().size(), before.size());
    EXPECT_FALSE(fs::exists(directory_ / reference));
}

TEST_F(NamedContextCreation, RemovesTheReferenceFileFromTheCurrentDirectory) {
    makeDirectory("other/job.mctx.messages.tmp");
    write("other/transfo.dat", "other axis");
    write("transfo.dat", "axis here");
    const Contents before = contents();
    const ChannelLog log;
    EXPECT_FALSE(create(L"other", {"m", "", "job.mctx"}));
    expectUntouched();
    EXPECT_EQ(contents(), before);
    EXPECT_THAT(log.fatals(), ElementsAre("Store messages : error opening file '" +
                                          directory_.path().generic_u8string() +
                                          "/other/job.mctx.messages.tmp'"));
}

TEST_F(NamedContextCreation, FailsIfTheUserMayNotWriteToItsDirectory) {
    if (!can_fork) GTEST_SKIP() << "needs a child process";
    fs::permissions(directory_.path(), fs::perms::all);
    makeDirectory("other");
    write("other/transfo.dat", "other axis");
    write("transfo.dat", "axis here");
    const Contents before = contents();
    EXPECT_TRUE(passesInChild([&] {
        ASSERT_TRUE(becomeOrdinaryUser());
        const ChannelLog log;
        EXPECT_FALSE(create(L"other", {"m", "", ""}));
        EXPECT_EQ(log.fatals().size(), 1U);
        EXPECT_EQ(contents(), before);
    }));
}
