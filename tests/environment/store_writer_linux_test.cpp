// Saves that fail or are interrupted: a full disk, a step that fails, a process that is killed.

#include <tests/common/channel_log.h>
#include <tests/common/death_test.h>
#include <tests/common/file_bytes.h>
#include <tests/common/small_disk.h>
#include <tests/common/system_calls_linux.h>
#include <tests/common/temporary_directory.h>
#include <tests/environment/store_access.h>
#include <trvfiles/environment/message_store.h>
#include <trvfiles/environment/store_writer.h>

#include <sys/resource.h>
#include <sys/syscall.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

namespace trv {
namespace {

using testing::bytesOf;
using testing::canMountSmallDisks;
using testing::canRefuseSystemCalls;
using testing::canTraceProcesses;
using testing::ChannelLog;
using testing::killAtStep;
using testing::mountSmallDisk;
using testing::originOf;
using testing::refuseSystemCalls;
using testing::renamingCalls;
using testing::Store;
using testing::TemporaryDirectory;
using testing::writeBytes;

namespace fs = std::filesystem;

using save_operation = int (*)(message_store* store, const char* file_name);

struct SaveKind {
    const char* name;
    save_operation save;
    const char* temporaryFile;
};

void PrintTo(const SaveKind& kind, std::ostream* stream) {
    *stream << kind.name;
}

class BrokenSave : public ::testing::TestWithParam<SaveKind> {
protected:
    BrokenSave() {
        add_section(store, "var");
        // More than one buffer of the standard streams.
        for (int entry = 0; entry < 1000; ++entry) {
            const std::string text = "Name" + std::to_string(entry) + " = a value";
            set_variable(store, 0, text.c_str());
        }
        reset();
    }

    void reset() {
        fs::remove(temporaryPath());
        writeBytes(target(), oldText);
    }
    fs::path target() const { return directory / "a.cfg"; }
    fs::path temporaryPath() const { return directory / GetParam().temporaryFile; }
    int save() const { return GetParam().save(store, target().string().c_str()); }

    void expectNothingSaved() const {
        EXPECT_EQ(bytesOf(target()), oldText);
        EXPECT_FALSE(fs::exists(fs::symlink_status(temporaryPath())));
        for (int number = 0; number < message_count(store, 0); ++number)
            ASSERT_EQ(originOf(store, get_message(store, 0, number)), "set by program");
    }

    static constexpr const char* oldText = "[var]\nOLD = 1\n";
    TemporaryDirectory directory;
    Store store;
};

TEST_P(BrokenSave, OnAFileThatMayNotGrowKeepsTheTarget) {
    for (const rlim_t limit : {0U, 1U, 4096U, 5000U}) {
        const auto saveWithinLimit = [&] {
            ASSERT_NE(std::signal(SIGXFSZ, SIG_IGN), SIG_ERR);
            const rlimit size = {limit, limit};
            ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &size), 0);
            EXPECT_EQ(save(), -EFBIG);
            expectNothingSaved();
        };
        TRV_EXPECT_IN_CHILD(saveWithinLimit);
        expectNothingSaved();
    }
}

TEST_P(BrokenSave, OnAFullDiskKeepsTheTarget) {
    if (!canMountSmallDisks()) GTEST_SKIP() << "file systems cannot be mounted here";
    constexpr std::size_t page = 4096;
    for (const std::size_t free : {0U, 1U, 2U}) {
        const auto saveOnASmallDisk = [&] {
            ASSERT_TRUE(mountSmallDisk(directory.path(), (free + 2) * page));
            reset();
            writeBytes(directory / "filler", std::string(page, 'x'));
            EXPECT_EQ(save(), -ENOSPC);
            expectNothingSaved();
        };
        TRV_EXPECT_IN_CHILD(saveOnASmallDisk);
    }
}

TEST_P(BrokenSave, OfAShortTextOnAFullDiskKeepsTheTarget) {
    if (!canMountSmallDisks()) GTEST_SKIP() << "file systems cannot be mounted here";
    const Store small;
    add_section(small, "var");
    set_variable(small, 0, "A = 1");
    const auto saveOnAFullDisk = [&] {
        ASSERT_TRUE(mountSmallDisk(directory.path(), std::size_t{4096}));
        reset();
        EXPECT_EQ(GetParam().save(small, target().string().c_str()), -ENOSPC);
        expectNothingSaved();
    };
    TRV_EXPECT_IN_CHILD(saveOnAFullDisk);
}

class SavedThroughALink : public BrokenSave {};

TEST_P(SavedThroughALink, AFileIsReplacedAndTheLinkStays) {
    fs::create_directory(directory / "links");
    const fs::path link = directory / "links/b.cfg";
    fs::create_symlink("../a.cfg", link);
    EXPECT_EQ(GetParam().save(store, link.string().c_str()), 0);
    EXPECT_EQ(fs::read_symlink(link), "../a.cfg");
    EXPECT_EQ(bytesOf(target()).substr(0, 22), "[var]\nName0 = a value\n");
    EXPECT_EQ(originOf(store, get_message(store, 0, 0)), GetParam().save == store_parameters
                                                             ? "from '" + link.string() + "' line 2"
                                                             : "set by program");
}

TEST_P(SavedThroughALink, ATemporaryFileThatCannotBeOpenedIsNamedBesideTheFile) {
    fs::create_directory(directory / "links");
    const fs::path link = directory / "links/b.cfg";
    fs::create_symlink(target(), link);
    fs::create_directory(temporaryPath());
    const ChannelLog log;
    EXPECT_EQ(GetParam().save(store, link.string().c_str()), -1);
    EXPECT_EQ(log.fatals(), std::vector<std::string>{"Store messages : error opening file '" +
                                                     temporaryPath().string() + "'"});
    fs::remove(temporaryPath());
}

class SaveWithoutOneStep : public BrokenSave {
protected:
    void expectFailure(const std::vector<unsigned>& calls, int reason, int result) {
        if (!canRefuseSystemCalls()) GTEST_SKIP() << "system calls cannot be filtered here";
        const auto saveWithoutCalls = [&] {
            const ChannelLog log;
            ASSERT_TRUE(refuseSystemCalls(calls, reason));
            EXPECT_EQ(save(), result);
            expectNothingSaved();
        };
        TRV_EXPECT_IN_CHILD(saveWithoutCalls);
        expectNothingSaved();
    }
};

TEST_P(SaveWithoutOneStep, TheWriteKeepsTheTarget) {
    expectFailure({SYS_write, SYS_writev}, EIO, -EIO);
}

TEST_P(SaveWithoutOneStep, TheSyncKeepsTheTarget) {
    expectFailure({SYS_fsync, SYS_fdatasync}, EIO, -EIO);
}

TEST_P(SaveWithoutOneStep, TheCloseKeepsTheTarget) {
    expectFailure({SYS_close}, EDQUOT, -EDQUOT);
}

TEST_P(SaveWithoutOneStep, TheRenameKeepsTheTarget) {
    expectFailure(renamingCalls, EACCES, -EACCES);
}

class KilledSave : public BrokenSave {};

TEST_P(KilledSave, AtAnySystemCallLeavesTheOldFileOrTheNewOneWhole) {
    if (!canTraceProcesses()) GTEST_SKIP() << "processes cannot be traced here";
    std::string newText = "[var]\n";
    for (int number = 0; number < message_count(store, 0); ++number)
        newText += std::string(get_message(store, 0, number)) + "\n";

    int old = 0;
    int replaced = 0;
    int step = 1;
    const auto rehearse = [&] {
        save();
        reset();
    };
    while (killAtStep(step, rehearse, [&] { save(); })) {
        const std::string found = bytesOf(target());
        ASSERT_TRUE(found == oldText || found == newText) << "killed at step " << step;
        ++(found == oldText ? old : replaced);
        // The files of a killed save do not disturb the next one.
        if (step % 4 == 0) {
            TRV_EXPECT_IN_CHILD([&] { EXPECT_EQ(save(), 0); });
            ASSERT_EQ(bytesOf(target()), newText);
        }
        reset();
        ++step;
    }
    EXPECT_EQ(bytesOf(target()), newText);
    // Opening, writing, syncing, closing and renaming, each with its entry and its exit.
    EXPECT_GE(old, 9);
    EXPECT_GE(replaced, 1);
}

std::string nameOf(const ::testing::TestParamInfo<SaveKind>& info) {
    return info.param.name;
}

const auto saveKinds =
    ::testing::Values(SaveKind{"OfParameters", store_parameters, "a.cfg.messages.tmp"},
                      SaveKind{"OfMessages", store_messages, "messages.tmp"});
INSTANTIATE_TEST_SUITE_P(StoreWriter, BrokenSave, saveKinds, nameOf);
INSTANTIATE_TEST_SUITE_P(StoreWriter, SavedThroughALink, saveKinds, nameOf);
INSTANTIATE_TEST_SUITE_P(StoreWriter, SaveWithoutOneStep, saveKinds, nameOf);
INSTANTIATE_TEST_SUITE_P(StoreWriter, KilledSave, saveKinds, nameOf);

}  // namespace
}  // namespace trv
