// Machine context files that cannot be written: the status, the report and the old file.

#include <tests/common/channel_log.h>
#include <tests/common/child_process.h>
#include <tests/common/death_test.h>
#include <tests/common/file_bytes.h>
#include <tests/common/small_disk.h>
#include <tests/common/system.h>
#include <tests/common/temporary_directory.h>
#include <tests/machine_context/context_samples.h>
#include <trvfiles/environment/message_store.h>
#include <trvfiles/support/dynamic_storage.h>
#include <trvfiles/support/platform.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace fs = std::filesystem;
using namespace std::string_literals;
using namespace trv::testing;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

namespace {

constexpr char oldText[] = "[header]\nname=old\n";
constexpr char openReport[] = "Store messages : error opening file '";

std::uint64_t permanentBytes() {
    char report[64];
    trv::storage_report(report, sizeof report);
    const std::string text = report;
    return std::stoull(text.substr(text.find(':') + 1));
}

/// Limits the growth of the checked heap to a number of bytes.
class StorageCap {
public:
    explicit StorageCap(std::uint64_t spare) { trv::set_storage_maximum(permanentBytes() + spare); }
    ~StorageCap() { trv::set_storage_maximum(4294967295U); }
    StorageCap(const StorageCap&) = delete;
    StorageCap& operator=(const StorageCap&) = delete;
};

bool recordFlag() {
    const bool flag = trv::set_record_flag(true);
    trv::set_record_flag(flag);
    return flag;
}

class FailingContext : public ChildProcessTest {
protected:
    FailingContext() { writeBytes(path, oldText); }

    void expectOldFile() const {
        EXPECT_EQ(bytesOf(path), oldText);
        EXPECT_EQ(std::distance(fs::directory_iterator(directory.path()), {}), 1);
    }

    /// Expects that there is no storage for a text of this record, but for a small one.
    void expectStatus(const CMachineContextData& data, EFileIOStatus status) const {
        const ChannelLog log;
        const std::uint64_t before = permanentBytes();
        {
            const StorageCap cap(30000);
            EXPECT_EQ(writeContext(path, firstOperation()), eFileIOSuccess);
            writeBytes(path, oldText);
            EXPECT_EQ(writeContext(path, data), status);
        }
        expectOldFile();
        EXPECT_EQ(permanentBytes(), before);
        EXPECT_THAT(log.fatals(), IsEmpty());
        EXPECT_TRUE(recordFlag());
    }

    TemporaryDirectory directory;
    fs::path path = directory / "f.mctx";
    const std::string big = std::string(100000, 'x');
};

}  // namespace

TEST_F(FailingContext, WithoutStorageForTheHeaderGivesFive) {
    CMachineContextData comment = firstOperation();
    comment.setComment(big);
    expectStatus(comment, eFileIOStructureError);
    CMachineContextData name = firstOperation();
    name.setName(big);
    expectStatus(name, eFileIOStructureError);
}

TEST_F(FailingContext, WithoutStorageForTheMachineGivesFive) {
    CMachineContextData name = firstOperation();
    name.setMachineName(big);
    expectStatus(name, eFileIOStructureError);
    CMachineContextData position = firstOperation();
    position.setMachinePosition(big);
    expectStatus(position, eFileIOStructureError);
}

TEST_F(FailingContext, WithoutStorageForThePostprocessorGivesFive) {
    CMachineContextData data = firstOperation();
    data.setReferenceAxisForOriginProgram(big);
    expectStatus(data, eFileIOStructureError);
}

TEST_F(FailingContext, WithoutStorageForThePartGivesFour) {
    CMachineContextData data = firstOperation();
    data.setSurfaceGroup(big);
    expectStatus(data, eFileIOContentError);
}

TEST_F(FailingContext, WithoutStorageForTheClampingSystemGivesFour) {
    CMachineContextData data = firstOperation();
    data.setClampingSystem(big);
    expectStatus(data, eFileIOContentError);
}

TEST_F(FailingContext, WithoutStorageForSeveralSectionsGivesTheLastStatus) {
    CMachineContextData data = firstOperation();
    data.setName(big);
    data.setMachineName(big);
    expectStatus(data, eFileIOStructureError);
    data.setSurfaceGroup(big);
    expectStatus(data, eFileIOContentError);
    data.setSurfaceGroup("");
    data.setClampingSystem(big);
    expectStatus(data, eFileIOContentError);
    data.setSurfaceGroup(big);
    expectStatus(data, eFileIOContentError);
}

TEST_F(FailingContext, WithoutAnyStorageGivesFour) {
    const ChannelLog log;
    {
        const StorageCap cap(0);
        EXPECT_EQ(writeContext(path, allFields()), eFileIOContentError);
    }
    expectOldFile();
    EXPECT_THAT(log.fatals(), IsEmpty());
}

TEST_F(FailingContext, IsTheOldOneOrTheCompleteNewOneWhicheverAllocationFails) {
    const ChannelLog log;
    const std::string newText =
        textOf(fs::path(TRV_TEST_DATA) / "machine_context" / "all_fields.mctx");
    const std::uint64_t before = permanentBytes();
    int refused = 0;
    EFileIOStatus status = eFileIOContentError;
    for (std::uint64_t spare = 0; status != eFileIOSuccess; spare += 16) {
        ASSERT_LT(spare, 100000U);
        fs::remove(path);
        writeBytes(path, oldText);
        {
            const StorageCap cap(spare);
            status = writeContext(path, allFields());
        }
        ASSERT_TRUE(status == eFileIOSuccess || status == eFileIOContentError ||
                    status == eFileIOStructureError || status == eFileIOOpenError);
        refused += status != eFileIOSuccess ? 1 : 0;
        ASSERT_EQ(permanentBytes(), before);
        ASSERT_EQ(textOf(path), status == eFileIOSuccess ? newText : oldText) << spare;
        ASSERT_EQ(std::distance(fs::directory_iterator(directory.path()), {}), 1);
    }
    EXPECT_GT(refused, 100);
    EXPECT_THAT(log.fatals(), IsEmpty());
    EXPECT_TRUE(recordFlag());
}

TEST_F(FailingContext, WithoutStorageForItsFileNameGivesTwo) {
    if (trv::platform::backslash_separates()) GTEST_SKIP() << "paths are too short here";
    const ChannelLog log;
    // Longer than the storage that remains beside the texts of a record.
    fs::path deep = directory.path();
    for (int level = 0; level < 15; ++level)
        deep /= std::string(200, 'd');
    fs::create_directories(deep);
    const fs::path target = deep / "f.mctx";
    writeBytes(target, oldText);
    bool isRefused = false;
    for (std::uint64_t spare = 0; !isRefused && spare < 16384; spare += 16) {
        const StorageCap cap(spare);
        isRefused = writeContext(target, firstOperation()) == eFileIOOpenError;
    }
    ASSERT_TRUE(isRefused);
    EXPECT_THAT(log.errors().back(), StartsWith("Store messages : error saving file name '"));
    EXPECT_THAT(log.fatals(), IsEmpty());
    EXPECT_EQ(bytesOf(target), oldText);
    EXPECT_EQ(std::distance(fs::directory_iterator(deep), {}), 1);
}

TEST_F(FailingContext, InAMissingDirectoryIsReportedAndGivesTwo) {
    const ChannelLog log;
    EXPECT_EQ(writeContext(directory / "missing" / "f.mctx", allFields()), eFileIOOpenError);
    ASSERT_THAT(log.fatals(), SizeIs(1));
    EXPECT_THAT(log.fatals()[0], StartsWith(openReport));
    EXPECT_THAT(log.errors(), IsEmpty());
    expectOldFile();
}

TEST_F(FailingContext, BelowAFileIsReportedAndGivesTwo) {
    const ChannelLog log;
    EXPECT_EQ(writeContext(path / "f.mctx", allFields()), eFileIOOpenError);
    EXPECT_THAT(log.fatals(), ElementsAre(StartsWith(openReport)));
    expectOldFile();
}

TEST_F(FailingContext, WithADirectoryInTheTemporaryFilesPlaceIsReportedAndGivesTwo) {
    const ChannelLog log;
    fs::create_directory(directory / "f.mctx.messages.tmp");
    EXPECT_EQ(writeContext(path, allFields()), eFileIOOpenError);
    EXPECT_THAT(log.fatals(), ElementsAre(StartsWith(openReport)));
    EXPECT_EQ(bytesOf(path), oldText);
    EXPECT_TRUE(fs::is_directory(directory / "f.mctx.messages.tmp"));
}

TEST_F(FailingContext, WhoseTemporaryNameIsTooLongIsReportedAndGivesTwo) {
    if (trv::platform::backslash_separates()) GTEST_SKIP() << "the whole path counts here";
    const ChannelLog log;
    const std::string suffix = ".messages.tmp";
    const std::string longest(255 - suffix.size(), 'n');
    EXPECT_EQ(writeContext(directory / longest, allFields()), eFileIOSuccess);
    fs::remove(directory / longest);
    EXPECT_THAT(log.fatals(), IsEmpty());
    for (const std::size_t length : {longest.size() + 1, std::size_t{255}, std::size_t{256}}) {
        EXPECT_EQ(writeContext(directory / std::string(length, 'n'), allFields()),
                  eFileIOOpenError);
    }
    EXPECT_THAT(log.fatals(), SizeIs(3));
    EXPECT_THAT(log.fatals(), Each(StartsWith(openReport)));
    expectOldFile();
}

TEST_F(FailingContext, InAReadOnlyDirectoryIsReportedAndGivesTwo) {
    if (!can_fork) GTEST_SKIP() << "needs a child process";
    fs::permissions(directory.path(), fs::perms::owner_read | fs::perms::owner_exec |
                                          fs::perms::others_read | fs::perms::others_exec);
    EXPECT_TRUE(passesInChild([&] {
        ASSERT_TRUE(becomeOrdinaryUser());
        const ChannelLog log;
        EXPECT_EQ(writeContext(path, allFields()), eFileIOOpenError);
        EXPECT_EQ(writeContext(directory / "new.mctx", allFields()), eFileIOOpenError);
        EXPECT_THAT(log.fatals(), SizeIs(2));
        EXPECT_THAT(log.fatals(), Each(StartsWith(openReport)));
    }));
    fs::permissions(directory.path(), fs::perms::owner_all);
    expectOldFile();
}

TEST_F(FailingContext, ThatIsReadOnlyIsReplacedIfTheDirectoryAllowsIt) {
    if (!can_fork) GTEST_SKIP() << "a read-only file is not replaced here";
    fs::permissions(path, fs::perms::owner_read | fs::perms::others_read);
    fs::permissions(directory.path(), fs::perms::all);
    EXPECT_TRUE(passesInChild([&] {
        ASSERT_TRUE(becomeOrdinaryUser());
        EXPECT_EQ(writeContext(path, allFields()), eFileIOSuccess);
    }));
    CMachineContextData data;
    EXPECT_EQ(readContext(path, data), eFileIOSuccess);
    EXPECT_EQ(ContextFields(data), ContextFields(allFields()));
}

TEST_F(FailingContext, WithoutADescriptorLeftIsReportedAndGivesTwo) {
    if (!can_fork) GTEST_SKIP() << "needs a child process";
    EXPECT_TRUE(passesInChild([&] {
        const ChannelLog log;
        // A sanitizer opens pipes at the first use of a class.
        EXPECT_EQ(writeContext(directory / "missing" / "f", allFields()), eFileIOOpenError);
        CMachineContextData data = prefilled();
        EXPECT_EQ(readContext(directory / "missing", data), eFileIOOpenError);
        ASSERT_TRUE(exhaustDescriptors());
        EXPECT_EQ(writeContext(path, allFields()), eFileIOOpenError);
        EXPECT_EQ(readContext(path, data), eFileIOOpenError);
        EXPECT_EQ(ContextFields(data), ContextFields(prefilled()));
        EXPECT_EQ(log.fatals().size(), 2U);
    }));
    expectOldFile();
}

TEST_F(FailingContext, ThatIsADirectoryGivesTwoWithoutAReport) {
    const ChannelLog log;
    fs::create_directory(directory / "d");
    EXPECT_EQ(writeContext(directory / "d", allFields()), eFileIOOpenError);
    fs::create_directory(directory / "d" / "inside");
    EXPECT_EQ(writeContext(directory / "d", allFields()), eFileIOOpenError);
    EXPECT_TRUE(fs::is_directory(directory / "d" / "inside"));
    EXPECT_FALSE(fs::exists(directory / "d.messages.tmp"));
    EXPECT_THAT(log.fatals(), IsEmpty());
    EXPECT_THAT(log.errors(), IsEmpty());
}

TEST_F(FailingContext, WithoutANameGivesTwoWithoutAReport) {
    const ChannelLog log;
    for (const std::wstring& name :
         {L""s, L"\0"s, path.wstring() + L"\0"s, path.wstring() + L"\0x"s}) {
        EXPECT_EQ(CQvFilesIO::sWriteMachineContext(name, allFields()), eFileIOOpenError);
    }
    EXPECT_THAT(log.fatals(), IsEmpty());
    expectOldFile();
}

TEST_F(FailingContext, BeyondTheFilesLimitGivesTwoAndStaysOld) {
    if (!can_fork) GTEST_SKIP() << "needs a child process";
    const std::uintmax_t size =
        fs::file_size(fs::path(TRV_TEST_DATA) / "machine_context" / "all_fields.mctx");
    for (const std::uintmax_t limit : {std::uintmax_t{0}, std::uintmax_t{1}, size - 1}) {
        EXPECT_TRUE(passesInChild([&] {
            const ChannelLog log;
            ASSERT_TRUE(limitFileSize(limit));
            EXPECT_EQ(writeContext(path, allFields()), eFileIOOpenError);
            EXPECT_THAT(log.fatals(), IsEmpty());
        }));
        expectOldFile();
    }
    EXPECT_TRUE(passesInChild([&] {
        ASSERT_TRUE(limitFileSize(size));
        EXPECT_EQ(writeContext(path, allFields()), eFileIOSuccess);
    }));
    EXPECT_EQ(fs::file_size(path), size);
}

TEST_F(FailingContext, OnAFullDiskGivesTwoAndStaysOld) {
    if (!canMountSmallDisks()) GTEST_SKIP() << "file systems cannot be mounted here";
    constexpr std::size_t roomForTheOldFile = 4096;
    EXPECT_TRUE(passesInChild([&] {
        ASSERT_TRUE(mountSmallDisk(directory.path(), roomForTheOldFile));
        writeBytes(path, oldText);
        const ChannelLog log;
        EXPECT_EQ(writeContext(path, allFields()), eFileIOOpenError);
        EXPECT_THAT(log.fatals(), IsEmpty());
        expectOldFile();
    }));
}

TEST_F(FailingContext, EndsTheProcessUnderTheDefaultHandler) {
    const auto writeNowhere = [this] {
        writeContext(directory / "missing" / "f.mctx", allFields());
    };
    EXPECT_EXIT(runAndLeave(writeNowhere), endedByDefaultFatalHandler, StartsWith(openReport));
}

TEST_F(FailingContext, LetsAHandlersExceptionThrough) {
    fs::create_directory(directory / "f.mctx.messages.tmp");
    const std::uint64_t before = permanentBytes();
    const trv::message_handler earlier =
        trv::set_fatal_handler([](const char*) { throw std::runtime_error("fatal"); });
    for (const bool flag : {false, true}) {
        const bool flagBefore = trv::set_record_flag(flag);
        EXPECT_THROW(writeContext(path, allFields()), std::runtime_error);
        EXPECT_EQ(trv::set_record_flag(flagBefore), flag);
    }
    trv::set_fatal_handler(earlier);
    EXPECT_EQ(permanentBytes(), before);
    EXPECT_EQ(bytesOf(path), oldText);
    fs::remove(directory / "f.mctx.messages.tmp");
    EXPECT_EQ(writeContext(path, allFields()), eFileIOSuccess);
}

TEST_F(FailingContext, PassesAnExceptionOnIfStorageRunsOut) {
    const ChannelLog log;
    trv::set_error_handler([](const char*) { throw std::runtime_error("error"); });
    const bool flagBefore = trv::set_record_flag(false);
    {
        const StorageCap cap(0);
        EXPECT_THROW(writeContext(path, allFields()), std::runtime_error);
    }
    EXPECT_FALSE(trv::set_record_flag(flagBefore));
    expectOldFile();
}

TEST_F(FailingContext, LeavesNoDescriptorOpen) {
    if (openDescriptors() < 0) GTEST_SKIP() << "the system does not list descriptors";
    const ChannelLog log;
    fs::create_directory(directory / "d");
    CMachineContextData data;
    const auto before = openDescriptors();
    for (const char* name : {"f.mctx", "d", "missing/f", "new"}) {
        writeContext(directory / name, allFields());
        EXPECT_EQ(openDescriptors(), before) << name;
        readContext(directory / name, data);
        EXPECT_EQ(openDescriptors(), before) << name;
    }
}

TEST_F(FailingContext, WritesEveryFieldAlsoIfTheRecordFlagIsOff) {
    const bool flagBefore = trv::set_record_flag(false);
    EXPECT_EQ(writeContext(path, allFields()), eFileIOSuccess);
    EXPECT_FALSE(trv::set_record_flag(flagBefore));
    EXPECT_EQ(textOf(path),
              textOf(fs::path(TRV_TEST_DATA) / "machine_context" / "all_fields.mctx"));
}
