#include <tests/catalogue/catalogue_files.h>
#include <tests/common/channel_log.h>
#include <tests/common/child_process.h>
#include <tests/common/current_directory.h>
#include <tests/common/death_test.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/catalogue/CMachineContextUtils.h>
#include <trvfiles/facade/CQvFilesIO.h>
#include <trvfiles/machine_context/CMachineContextData.h>
#include <trvfiles/support/platform.h>

#include <QString>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

namespace fs = std::filesystem;
using namespace std::string_literals;
using namespace trv::testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

const std::string context1 = "[MACHINE_POSITION_1].mctx";
const std::string reference1 = "[stockposition@[MACHINE_POSITION_1]]MACHINE.ref";
const std::string temporary1 = context1 + ".messages.tmp";
const std::string contextText1 = createdContext("[MACHINE_POSITION_1]", "", reference1);

class DefaultContextCreation : public ::testing::Test {
protected:
    /// Creates position 1 in a directory.
    bool create(const std::wstring& directory) {
        return CMachineContextUtils::sCreateDefaultMachineContext(directory, 1, &contextFile_,
                                                                  &referenceFile_);
    }
    bool create() { return create(directory_.wide()); }

    /// Creates nothing, changes no result and leaves these files.
    void expectFailure(const std::wstring& directory, const Contents& left) {
        EXPECT_FALSE(create(directory));
        EXPECT_EQ(contextFile_, L"old context");
        EXPECT_EQ(referenceFile_, L"old reference");
        EXPECT_EQ(contents(), left);
    }
    void expectFailure(const Contents& left) { expectFailure(directory_.wide(), left); }

    void write(const std::string& name, std::string_view bytes) {
        writeBytes(directory_ / name, bytes);
    }
    void makeDirectory(const std::string& name) { fs::create_directories(directory_ / name); }
    Contents contents() const { return contentsOf(directory_.path()); }
    std::string openFailure() const {
        return "Store messages : error opening file '" + directory_.path().generic_u8string() +
               "/" + temporary1 + "'";
    }

    const Contents complete_ = {
        {"transfo.dat", identityAxis}, {reference1, identityAxis}, {context1, contextText1}};
    TemporaryDirectory directory_;
    std::wstring contextFile_ = L"old context";
    std::wstring referenceFile_ = L"old reference";
};

}  // namespace

TEST_F(DefaultContextCreation, WritesThreeFilesToAnEmptyDirectory) {
    EXPECT_TRUE(create());
    EXPECT_EQ(contents(), complete_);
    EXPECT_EQ(contextFile_, L"[MACHINE_POSITION_1].mctx");
    EXPECT_EQ(referenceFile_, L"[stockposition@[MACHINE_POSITION_1]]MACHINE.ref");
}

TEST_F(DefaultContextCreation, GivesAContextThatNamesItsReferenceFile) {
    EXPECT_TRUE(create());
    CMachineContextData record;
    ASSERT_EQ(CQvFilesIO(directory_.wide()).readMachineContext(contextFile_, record),
              eFileIOSuccess);
    EXPECT_EQ(record.getNameW(), L"[MACHINE_POSITION_1]");
    EXPECT_EQ(record.getMachinePositionW(), referenceFile_);
    record.setName("");
    record.setMachinePosition("");
    EXPECT_TRUE(record.isNull());
}

TEST_F(DefaultContextCreation, DoesNothingASecondTime) {
    EXPECT_TRUE(create());
    const fs::file_time_type written = fs::last_write_time(directory_ / context1);
    contextFile_ = L"old context";
    referenceFile_ = L"old reference";
    expectFailure(complete_);
    EXPECT_EQ(fs::last_write_time(directory_ / context1), written);
}

TEST_F(DefaultContextCreation, DoesNothingIfAnotherProcessHasDoneIt) {
    if (!can_fork) GTEST_SKIP() << "needs a child process";
    EXPECT_TRUE(passesInChild([&] { EXPECT_TRUE(create()); }));
    expectFailure(complete_);
}

TEST_F(DefaultContextCreation, DoesNotReadExistingFiles) {
    write(context1, "c");
    write(reference1, "");
    expectFailure({{context1, "c"}, {reference1, ""}});
}

TEST_F(DefaultContextCreation, NeedsAPositionFromOne) {
    for (const int position : {0, -1, std::numeric_limits<int>::min()}) {
        EXPECT_FALSE(CMachineContextUtils::sCreateDefaultMachineContext(
            directory_.wide(), position, &contextFile_, &referenceFile_));
        EXPECT_EQ(contextFile_, L"old context");
        EXPECT_EQ(referenceFile_, L"old reference");
        EXPECT_THAT(contents(), IsEmpty());
    }
}

TEST_F(DefaultContextCreation, WritesThePositionInDecimal) {
    EXPECT_TRUE(CMachineContextUtils::sCreateDefaultMachineContext(
        directory_.wide(), std::numeric_limits<int>::max(), &contextFile_, &referenceFile_));
    EXPECT_EQ(contextFile_, L"[MACHINE_POSITION_2147483647].mctx");
    EXPECT_EQ(referenceFile_, L"[stockposition@[MACHINE_POSITION_2147483647]]MACHINE.ref");
    EXPECT_EQ(textOf(directory_ / "[MACHINE_POSITION_2147483647].mctx"),
              createdContext("[MACHINE_POSITION_2147483647]", "",
                             "[stockposition@[MACHINE_POSITION_2147483647]]MACHINE.ref"));
    EXPECT_EQ(contents().size(), 3U);
}

TEST_F(DefaultContextCreation, DoesNotChangeOtherPositions) {
    EXPECT_TRUE(create());
    EXPECT_TRUE(
        CMachineContextUtils::sCreateDefaultMachineContext(directory_.wide(), 2, nullptr, nullptr));
    Contents expected = complete_;
    const std::string reference2 = "[stockposition@[MACHINE_POSITION_2]]MACHINE.ref";
    expected[reference2] = identityAxis;
    expected["[MACHINE_POSITION_2].mctx"] = createdContext("[MACHINE_POSITION_2]", "", reference2);
    EXPECT_EQ(contents(), expected);
}

TEST_F(DefaultContextCreation, AcceptsNullPointersForItsResults) {
    EXPECT_TRUE(CMachineContextUtils::sCreateDefaultMachineContext(directory_.wide(), 1,
                                                                   &contextFile_, nullptr));
    EXPECT_EQ(contextFile_, L"[MACHINE_POSITION_1].mctx");
    EXPECT_TRUE(CMachineContextUtils::sCreateDefaultMachineContext(directory_.wide(), 2, nullptr,
                                                                   &referenceFile_));
    EXPECT_EQ(referenceFile_, L"[stockposition@[MACHINE_POSITION_2]]MACHINE.ref");
    EXPECT_FALSE(
        CMachineContextUtils::sCreateDefaultMachineContext(directory_.wide(), 2, nullptr, nullptr));
}

TEST_F(DefaultContextCreation, MayReturnAResultInItsArgument) {
    std::wstring text = directory_.wide();
    EXPECT_TRUE(CMachineContextUtils::sCreateDefaultMachineContext(text, 1, &text, nullptr));
    EXPECT_EQ(text, L"[MACHINE_POSITION_1].mctx");
    EXPECT_EQ(contents(), complete_);
}

TEST_F(DefaultContextCreation, WritesBothFilesIfOnlyTheContextExists) {
    write(context1, "[machine]\nname=old\n");
    EXPECT_TRUE(create());
    EXPECT_EQ(contents(), complete_);
}

TEST_F(DefaultContextCreation, WritesBothFilesIfOnlyTheReferenceExists) {
    write(reference1, std::string(5000, 'x'));
    EXPECT_TRUE(create());
    EXPECT_EQ(contents(), complete_);
}

TEST_F(DefaultContextCreation, CopiesAnExistingAxisFileByteForByte) {
    for (const std::string& bytes : {"no axis\r\n\0\x1A\xFF"s, ""s, std::string(100000, '\n')}) {
        write("transfo.dat", bytes);
        fs::remove(directory_ / reference1);
        EXPECT_TRUE(create());
        EXPECT_EQ(bytesOf(directory_ / reference1), bytes);
        EXPECT_EQ(bytesOf(directory_ / "transfo.dat"), bytes);
    }
}

TEST_F(DefaultContextCreation, TreatsAnEmptyDirectoryAsTheCurrentOne) {
    const CurrentDirectory here(directory_.path());
    EXPECT_TRUE(create(L""));
    EXPECT_EQ(contents(), complete_);
}

TEST_F(DefaultContextCreation, AcceptsADirectoryRelativeToTheCurrentOne) {
    makeDirectory("a/b");
    const CurrentDirectory here(directory_ / "a");
    EXPECT_TRUE(create(L"b"));
    EXPECT_EQ(contentsOf(directory_ / "a/b"), complete_);
    fs::remove_all(directory_ / "a/b");
    makeDirectory("a/b");
    EXPECT_TRUE(create(L"..\\a\\b\\"));
    EXPECT_EQ(contentsOf(directory_ / "a/b"), complete_);
    EXPECT_EQ(contentsOf(directory_ / "a").size(), 4U);
}

TEST_F(DefaultContextCreation, AcceptsADirectoryWithAnyCharacters) {
    for (const char* name : {"50%d%s%n", "[x] y", "$X", "\xC3\xA4\xE4\xB8\xAD\xF0\x9F\x94\xA7"}) {
        makeDirectory(name);
        EXPECT_TRUE(create(directory_.wide() + L"/" + QString::fromUtf8(name).toStdWString()))
            << name;
        EXPECT_EQ(contentsOf(directory_ / name), complete_) << name;
    }
}

TEST_F(DefaultContextCreation, AcceptsADirectoryOf600Characters) {
    if (trv::platform::backslash_separates())
        GTEST_SKIP() << "paths of Windows end at 260 characters";
    const std::string name(200, 'n');
    makeDirectory(name + "/" + name + "/" + name);
    const fs::path directory = directory_ / (name + "/" + name + "/" + name);
    EXPECT_TRUE(create(directory.wstring()));
    EXPECT_EQ(contentsOf(directory), complete_);
}

TEST_F(DefaultContextCreation, FailsIfTheDirectoryIsMissing) {
    const CurrentDirectory here(directory_.path());
    write("f", "x");
    const ChannelLog log;
    expectFailure(directory_.wide() + L"/missing", {{"f", "x"}});
    expectFailure(L"missing", {{"f", "x"}});
    expectFailure(L"f", {{"f", "x"}});
    expectFailure(L".\0x"s, {{"f", "x"}});
    expectFailure(std::wstring(100000, L'n'), {{"f", "x"}});
    EXPECT_THAT(log.errors(), IsEmpty());
    EXPECT_THAT(log.fatals(), IsEmpty());
}

TEST_F(DefaultContextCreation, FailsIfTheAxisFileCannotBeWritten) {
    makeDirectory("transfo.dat");
    const ChannelLog log;
    expectFailure({{"transfo.dat", aDirectory}});
    EXPECT_THAT(log.fatals(), IsEmpty());
}

TEST_F(DefaultContextCreation, FailsIfTheReferenceFileCannotBeWritten) {
    makeDirectory(reference1);
    const ChannelLog log;
    expectFailure({{"transfo.dat", identityAxis}, {reference1, aDirectory}});
    EXPECT_THAT(log.fatals(), IsEmpty());
}

TEST_F(DefaultContextCreation, RemovesTheReferenceFileIfTheContextCannotBeReplaced) {
    makeDirectory(context1 + "/inside");
    const ChannelLog log;
    const Contents left = {
        {"transfo.dat", identityAxis}, {context1, aDirectory}, {context1 + "/inside", aDirectory}};
    expectFailure(left);
    write(reference1, "old");
    expectFailure(left);
    EXPECT_THAT(log.fatals(), IsEmpty());
}

TEST_F(DefaultContextCreation, RemovesTheReferenceFileIfTheContextCannotBeWritten) {
    makeDirectory(temporary1);
    const ChannelLog log;
    expectFailure({{"transfo.dat", identityAxis}, {temporary1, aDirectory}});
    EXPECT_THAT(log.fatals(), ElementsAre(openFailure()));
    EXPECT_THAT(log.errors(), IsEmpty());
}

TEST_F(DefaultContextCreation, KeepsTheOldContextIfTheNewOneCannotBeWritten) {
    makeDirectory(temporary1);
    write("transfo.dat", "axis");
    write(context1, "old");
    const ChannelLog log;
    expectFailure({{"transfo.dat", "axis"}, {temporary1, aDirectory}, {context1, "old"}});
}

TEST_F(DefaultContextCreation, EndsTheProcessIfTheContextCannotBeWrittenWithTheDefaultHandler) {
    makeDirectory(temporary1);
    const std::wstring directory = directory_.wide();
    const auto call = [&] {
        CMachineContextUtils::sCreateDefaultMachineContext(directory, 1, nullptr, nullptr);
    };
    // Not every system starts the child in the directory of its parent.
    EXPECT_EXIT(runAndLeave(call), endedByDefaultFatalHandler,
                ::testing::AllOf(::testing::StartsWith("Store messages : error opening file '"),
                                 ::testing::EndsWith("/" + temporary1 + "'\n")));
    if (!can_fork) return;
    EXPECT_EQ(contents(), (Contents{{"transfo.dat", identityAxis}, {temporary1, aDirectory}}));
}

TEST_F(DefaultContextCreation, RemovesTheReferenceFileBeforeItReportsTheContext) {
    makeDirectory(temporary1);
    static bool hadReference;
    static fs::path reference;
    hadReference = true;
    reference = directory_ / reference1;
    const ChannelLog log;
    trv::set_fatal_handler([](const char*) { hadReference = fs::exists(reference); });
    EXPECT_FALSE(create());
    EXPECT_FALSE(hadReference);
    EXPECT_EQ(contents(), (Contents{{"transfo.dat", identityAxis}, {temporary1, aDirectory}}));
}

TEST_F(DefaultContextCreation, WorksAgainAfterAHandlerThatThrows) {
    makeDirectory(temporary1);
    const ChannelLog log;
    trv::set_fatal_handler([](const char* message) { throw std::runtime_error(message); });
    EXPECT_THROW(create(), std::runtime_error);
    EXPECT_EQ(contextFile_, L"old context");
    EXPECT_EQ(contents(), (Contents{{"transfo.dat", identityAxis}, {temporary1, aDirectory}}));
    fs::remove(directory_ / temporary1);
    EXPECT_TRUE(create());
    EXPECT_EQ(contents(), complete_);
}

// A link to a missing file would create the file at the target of the link.
TEST_F(DefaultContextCreation, CreatesNoFileThroughALink) {
    makeDirectory("elsewhere");
    for (const std::string& name : {"transfo.dat"s, reference1, context1}) {
        SCOPED_TRACE(name);
        std::error_code error;
        fs::create_symlink(directory_ / "elsewhere/f", directory_ / name, error);
        if (error) GTEST_SKIP() << "links cannot be made here";
        const ChannelLog log;
        EXPECT_FALSE(create());
        EXPECT_THAT(log.fatals(), IsEmpty());
        EXPECT_TRUE(fs::is_symlink(directory_ / name));
        EXPECT_TRUE(fs::is_empty(directory_ / "elsewhere"));
        for (const std::string& other : {reference1, context1, temporary1}) {
            EXPECT_TRUE(other == name || !fs::exists(fs::symlink_status(directory_ / other)))
                << other;
        }
        fs::remove(directory_ / name);
    }
    EXPECT_TRUE(create());
}

TEST_F(DefaultContextCreation, OverwritesNoFileThatTheUserMayNotRead) {
    if (!can_fork) GTEST_SKIP() << "needs a child process";
    fs::permissions(directory_.path(), fs::perms::all);
    write("transfo.dat", "axis");
    for (const std::string& name : {reference1, context1}) {
        SCOPED_TRACE(name);
        write(name, "old");
        fs::permissions(directory_ / name, fs::perms::others_write);
        EXPECT_TRUE(passesInChild([&] {
            ASSERT_TRUE(becomeOrdinaryUser());
            const ChannelLog log;
            EXPECT_FALSE(create());
            EXPECT_THAT(log.fatals(), IsEmpty());
        }));
        EXPECT_EQ(contents(), (Contents{{"transfo.dat", "axis"}, {name, "old"}}));
        fs::remove(directory_ / name);
    }
}

TEST_F(DefaultContextCreation, FailsIfTheUserMayNotWrite) {
    if (!can_fork) GTEST_SKIP() << "needs a child process";
    fs::permissions(directory_.path(),
                    fs::perms::owner_all | fs::perms::others_read | fs::perms::others_exec);
    EXPECT_TRUE(passesInChild([&] {
        const ChannelLog log;
        ASSERT_TRUE(becomeOrdinaryUser());
        expectFailure({});
        EXPECT_THAT(log.fatals(), IsEmpty());
    }));
    write("transfo.dat", "axis");
    EXPECT_TRUE(passesInChild([&] {
        ASSERT_TRUE(becomeOrdinaryUser());
        expectFailure({{"transfo.dat", "axis"}});
    }));
}

TEST_F(DefaultContextCreation, FailsIfTheUserMayNotReadTheAxisFile) {
    if (!can_fork) GTEST_SKIP() << "needs a child process";
    write("transfo.dat", "axis");
    fs::permissions(directory_ / "transfo.dat", fs::perms::none);
    fs::permissions(directory_.path(), fs::perms::all);
    EXPECT_TRUE(passesInChild([&] {
        ASSERT_TRUE(becomeOrdinaryUser());
        EXPECT_FALSE(create());
        EXPECT_FALSE(fs::exists(directory_ / reference1));
    }));
    EXPECT_EQ(contents(), (Contents{{"transfo.dat", "axis"}}));
}

TEST_F(DefaultContextCreation, KeepsAnAxisFileThatTheUserMayWriteButNotRead) {
    if (!can_fork) GTEST_SKIP() << "needs a child process";
    write("transfo.dat", "axis");
    fs::permissions(directory_ / "transfo.dat", fs::perms::others_write);
    fs::permissions(directory_.path(), fs::perms::all);
    EXPECT_TRUE(passesInChild([&] {
        ASSERT_TRUE(becomeOrdinaryUser());
        EXPECT_FALSE(create());
    }));
    EXPECT_EQ(contents(), (Contents{{"transfo.dat", "axis"}}));
}

TEST_F(DefaultContextCreation, FailsOnAFullDisk) {
    if (!can_fork) GTEST_SKIP() << "needs a child process";
    EXPECT_TRUE(passesInChild([&] {
        const ChannelLog log;
        ASSERT_TRUE(limitFileSize(0));
        expectFailure({});
        EXPECT_THAT(log.fatals(), IsEmpty());
    }));
}

TEST_F(DefaultContextCreation, FailsWithoutADescriptorLeft) {
    if (!can_fork) GTEST_SKIP() << "needs a child process";
    EXPECT_TRUE(passesInChild([&] {
        // A sanitizer opens pipes at the first use of a class.
        EXPECT_FALSE(create(directory_.wide() + L"/missing"));
        ASSERT_TRUE(exhaustDescriptors());
        EXPECT_FALSE(create());
        EXPECT_EQ(contextFile_, L"old context");
    }));
    EXPECT_THAT(contents(), IsEmpty());
}
