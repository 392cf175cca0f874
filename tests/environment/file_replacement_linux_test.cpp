// Foreign files under the name of a replacement's temporary file, and the order of several savers.

#include <tests/common/child_process.h>
#include <tests/common/file_bytes.h>
#include <tests/common/system_calls_linux.h>
#include <tests/environment/replacement_on_linux.h>
#include <trvfiles/environment/file_replacement.h>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <string>
#include <system_error>
#include <thread>

namespace trv {
namespace {

using testing::bytesOf;
using ::testing::ElementsAre;
using testing::nobody;
using testing::passesInChild;
using testing::ReplacementOnLinux;
using testing::shortly;
using testing::writeBytes;

namespace fs = std::filesystem;

using ObstacleToAReplacement = ReplacementOnLinux;

TEST_F(ObstacleToAReplacement, ALinkIsRemovedAndNotFollowed) {
    writeBytes(directory_ / "other", "another file");
    fs::create_symlink("other", temporary());
    expectSaved();
    fs::create_symlink("none", temporary());
    expectSaved();
    EXPECT_EQ(bytesOf(directory_ / "other"), "another file");
    EXPECT_THAT(files(), ElementsAre("f", "other"));
}

TEST_F(ObstacleToAReplacement, AHardLinkIsRemovedAndItsFileStays) {
    writeBytes(directory_ / "other", "another file");
    fs::create_hard_link(directory_ / "other", temporary());
    expectSaved();
    EXPECT_EQ(bytesOf(directory_ / "other"), "another file");
    EXPECT_EQ(statusOf(directory_ / "other").st_nlink, 1U);
}

TEST_F(ObstacleToAReplacement, AFifoIsRemovedAndNotWaitedFor) {
    ASSERT_EQ(::mkfifo(temporary().c_str(), 0600), 0);
    EXPECT_TRUE(passesInChild([&] { expectSaved(); }));
}

TEST_F(ObstacleToAReplacement, ASocketIsRemoved) {
    const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    ASSERT_LT(temporary().string().size(), sizeof address.sun_path);
    temporary().string().copy(address.sun_path, sizeof address.sun_path);
    ASSERT_EQ(::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    expectSaved();
    ::close(listener);
}

TEST_F(ObstacleToAReplacement, ADeviceIsRemoved) {
    const mode_t character_device = S_IFCHR | 0600;
    constexpr dev_t full = (1U << 8U) | 7U;
    if (::mknod(temporary().c_str(), character_device, full) != 0)
        GTEST_SKIP() << "this user may not create devices";
    expectSaved();
}

TEST_F(ObstacleToAReplacement, ADirectoryStays) {
    writeBytes(target(), "old");
    fs::create_directory(temporary());
    EXPECT_EQ(replace(target(), "new"), EISDIR);
    EXPECT_EQ(bytesOf(target()), "old");
    EXPECT_TRUE(fs::is_directory(temporary()));
}

TEST_F(ObstacleToAReplacement, AFileWithoutRightsIsRemoved) {
    for (const mode_t mode : {0U, 0200U, 0400U, 0600U}) {
        writeBytes(temporary(), "left behind");
        ASSERT_EQ(::chmod(temporary().c_str(), mode), 0);
        // A file that cannot be opened counts as held for this time.
        std::this_thread::sleep_for(shortly);
        expectSaved();
        EXPECT_EQ(modeOf(target()) & 0600U, 0600U) << mode;
    }
}

TEST_F(ObstacleToAReplacement, AFileOfAnotherUserIsRemoved) {
    if (::geteuid() != 0) GTEST_SKIP() << "only user 0 gives files away";
    writeBytes(temporary(), "left behind");
    ASSERT_EQ(::chown(temporary().c_str(), nobody, nobody), 0);
    expectSaved();
    EXPECT_EQ(statusOf(target()).st_uid, 0U);

    letEverybodyWrite();
    for (const mode_t mode : {0644U, 0600U}) {
        writeBytes(temporary(), "left behind");
        ASSERT_EQ(::chmod(temporary().c_str(), mode), 0);
        std::this_thread::sleep_for(shortly);
        EXPECT_TRUE(passesInChild([&] {
            ASSERT_TRUE(testing::becomeOrdinaryUser());
            expectSaved();
        })) << mode;
        EXPECT_EQ(statusOf(target()).st_uid, nobody);
        fs::remove(target());
    }
}

TEST_F(ObstacleToAReplacement, AFileOfAnotherUserMayNotBeRemovedEverywhere) {
    if (::geteuid() != 0) GTEST_SKIP() << "only user 0 becomes another one";
    ASSERT_EQ(::chmod(directory_.text().c_str(), 01777), 0);
    writeBytes(temporary(), "left behind");
    EXPECT_TRUE(passesInChild([&] {
        ASSERT_TRUE(testing::becomeOrdinaryUser());
        EXPECT_EQ(replace(target(), "new"), EPERM);
    }));
    EXPECT_EQ(bytesOf(temporary()), "left behind");
}

TEST_F(ObstacleToAReplacement, AFreshFileThatCannotBeOpenedIsWaitedFor) {
    if (::geteuid() != 0) GTEST_SKIP() << "only user 0 becomes another one";
    letEverybodyWrite();
    writeBytes(temporary(), "");
    ASSERT_EQ(::chmod(temporary().c_str(), 0600), 0);
    EXPECT_TRUE(passesInChild([&] {
        ASSERT_TRUE(testing::becomeOrdinaryUser());
        const auto start = std::chrono::steady_clock::now();
        const file_replacement held(target().string(), own_temporary_name,
                                    file_replacement::existing::replaced, 10 * shortly);
        EXPECT_TRUE(held.is_open());
        EXPECT_GE(std::chrono::steady_clock::now() - start, 5 * shortly);
    }));
}

using LockOfAReplacement = ReplacementOnLinux;

/// A child process that holds the target's temporary file until it is asked to end or killed.
class Holder {
public:
    explicit Holder(const fs::path& target) {
        int ready[2] = {};
        EXPECT_EQ(::pipe(ready), 0);
        EXPECT_EQ(::pipe(end_), 0);
        child_ = ::fork();
        if (child_ == 0) {
            ::close(end_[1]);
            file_replacement held(target.string());
            char byte = held.is_open() ? '1' : '0';
            if (::write(ready[1], &byte, 1) != 1) ::_exit(1);
            if (::read(end_[0], &byte, 1) != 1) ::_exit(1);
            ::_exit(held.write_and_replace("of the first") == 0 ? 0 : 1);
        }
        char isOpen = '0';
        EXPECT_EQ(::read(ready[0], &isOpen, 1), 1);
        EXPECT_EQ(isOpen, '1');
        for (const int file : {ready[0], ready[1], end_[0]})
            ::close(file);
    }
    ~Holder() { kill(); }
    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;

    void write() { EXPECT_EQ(::write(end_[1], "1", 1), 1); }
    bool isDone() {
        int status = 0;
        if (::waitpid(child_, &status, 0) != child_) return false;
        leave();
        return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }
    void kill() {
        if (child_ <= 0) return;
        ::kill(child_, SIGKILL);
        ::waitpid(child_, nullptr, 0);
        leave();
    }

private:
    void leave() {
        child_ = -1;
        ::close(end_[1]);
    }

    pid_t child_ = -1;
    int end_[2] = {};
};

TEST_F(LockOfAReplacement, KeepsOtherProcessesWaiting) {
    writeBytes(target(), "old");
    Holder holder(target());
    EXPECT_EQ(replace(target(), "too early"), ETIMEDOUT);
    EXPECT_EQ(bytesOf(target()), "old");
    std::thread later([&] {
        std::this_thread::sleep_for(shortly);
        holder.write();
    });
    file_replacement second(target().string());
    EXPECT_EQ(bytesOf(target()), "of the first");
    EXPECT_EQ(second.write_and_replace("of the second"), 0);
    later.join();
    EXPECT_TRUE(holder.isDone());
    EXPECT_EQ(bytesOf(target()), "of the second");
    EXPECT_THAT(files(), ElementsAre("f"));
}

TEST_F(LockOfAReplacement, EndsWithItsProcess) {
    writeBytes(target(), "old");
    Holder holder(target());
    holder.kill();
    EXPECT_TRUE(fs::exists(temporary()));
    EXPECT_EQ(bytesOf(target()), "old");
    expectSaved();
}

TEST_F(LockOfAReplacement, OfAnotherUserIsRespected) {
    if (::geteuid() != 0) GTEST_SKIP() << "only user 0 becomes another one";
    letEverybodyWrite();
    Holder holder(target());
    ASSERT_EQ(::chmod(temporary().c_str(), 0644), 0);
    EXPECT_TRUE(passesInChild([&] {
        ASSERT_TRUE(testing::becomeOrdinaryUser());
        EXPECT_EQ(replace(target(), "too early"), ETIMEDOUT);
    }));
    holder.write();
    EXPECT_TRUE(holder.isDone());
    EXPECT_EQ(bytesOf(target()), "of the first");
}

TEST_F(LockOfAReplacement, LosesTheSaveToWhomRemovesTheTemporaryFile) {
    writeBytes(target(), "old");
    file_replacement held(target().string());
    fs::remove(temporary());
    EXPECT_EQ(held.write_and_replace("new"), ENOENT);
    writeBytes(temporary(), "of somebody else");
    EXPECT_EQ(held.write_and_replace("new"), ENOENT);
    EXPECT_EQ(bytesOf(target()), "old");
    EXPECT_EQ(bytesOf(temporary()), "of somebody else");
}

TEST_F(LockOfAReplacement, LeavesAFileOfSomebodyElseUnderItsName) {
    {
        const file_replacement held(target().string());
        fs::remove(temporary());
        writeBytes(temporary(), "of somebody else");
    }
    EXPECT_EQ(bytesOf(temporary()), "of somebody else");
}

TEST_F(LockOfAReplacement, IsOmittedIfTheFileSystemHasNone) {
    if (!testing::canRefuseSystemCalls()) GTEST_SKIP() << "system calls cannot be filtered here";
    for (const int reason : {ENOLCK, EOPNOTSUPP, ENOSYS}) {
        fs::remove(target());
        EXPECT_TRUE(passesInChild([&] {
            ASSERT_TRUE(testing::refuseSystemCalls({SYS_flock}, reason));
            expectSaved();
            // A file that has just been left may belong to another saver.
            writeBytes(temporary(), "left behind");
            EXPECT_EQ(replace(target(), "newer"), 0);
            EXPECT_EQ(bytesOf(target()), "newer");
            file_replacement first(target().string());
            const auto start = std::chrono::steady_clock::now();
            file_replacement second(target().string(), own_temporary_name,
                                    file_replacement::existing::replaced, shortly);
            EXPECT_GE(std::chrono::steady_clock::now() - start, shortly / 2);
            EXPECT_EQ(second.write_and_replace("of the second"), 0);
            EXPECT_EQ(first.write_and_replace("of the first"), ENOENT);
            EXPECT_EQ(bytesOf(target()), "of the second");
        })) << reason;
    }
}

TEST_F(LockOfAReplacement, IsNotInheritedByPrograms) {
    const file_replacement held(target().string());
    int checked = 0;
    for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        if (fs::read_symlink(entry.path(), gone) != temporary()) continue;
        EXPECT_NE(::fcntl(std::stoi(entry.path().filename()), F_GETFD) & FD_CLOEXEC, 0);
        ++checked;
    }
    EXPECT_EQ(checked, 1);
}

}  // namespace
}  // namespace trv
