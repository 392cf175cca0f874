// Replaced files among links, rights and other users, and what somebody else puts under the name of
// the temporary file.

#include <tests/common/child_process.h>
#include <tests/common/file_bytes.h>
#include <tests/common/system_calls_linux.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/environment/file_replacement.h>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

namespace trv {
namespace {

using testing::bytesOf;
using ::testing::ElementsAre;
using testing::passesInChild;
using testing::writeBytes;

namespace fs = std::filesystem;

constexpr std::chrono::milliseconds shortly(50);
constexpr uid_t nobody = 65534;

class ReplacementOnLinux : public ::testing::Test {
protected:
    fs::path target() const { return directory_ / "f"; }
    fs::path temporary() const { return directory_ / "f.messages.tmp"; }
    std::vector<std::string> files() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(directory_.path()))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

    static int replace(const fs::path& path, const std::string& text) {
        file_replacement held(path.string(), own_temporary_name,
                              file_replacement::existing::replaced, shortly);
        return held.write_and_replace(text);
    }
    /// Expects that nothing under the name of the temporary file keeps a text from being saved.
    void expectSaved() const {
        EXPECT_EQ(replace(target(), "new"), 0);
        EXPECT_EQ(bytesOf(target()), "new");
        EXPECT_FALSE(fs::exists(fs::symlink_status(temporary())));
    }

    static struct stat statusOf(const fs::path& path) {
        struct stat status = {};
        EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
        return status;
    }
    static unsigned modeOf(const fs::path& path) { return statusOf(path).st_mode & 07777U; }
    void letEverybodyWrite() const { ASSERT_EQ(::chmod(directory_.text().c_str(), 0777), 0); }

    testing::TemporaryDirectory directory_;
};

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
        // A file that cannot be opened is a holder's for so long.
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

/// A child process that holds the target's temporary file until it is told to end, or killed.
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

TEST_F(LockOfAReplacement, IsDoneWithoutWhereTheFileSystemHasNone) {
    if (!testing::canRefuseSystemCalls()) GTEST_SKIP() << "system calls cannot be filtered here";
    for (const int reason : {ENOLCK, EOPNOTSUPP, ENOSYS}) {
        fs::remove(target());
        EXPECT_TRUE(passesInChild([&] {
            ASSERT_TRUE(testing::refuseSystemCalls({SYS_flock}, reason));
            expectSaved();
            // What has just been left behind may be another saver's.
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

using RightsOfAReplacement = ReplacementOnLinux;

TEST_F(RightsOfAReplacement, AreThoseOfTheFile) {
    for (const mode_t mode : {0600U, 0400U, 0640U, 0644U, 0664U, 0666U, 0755U, 0777U}) {
        fs::remove(target());
        writeBytes(target(), "old");
        ASSERT_EQ(::chmod(target().c_str(), mode), 0);
        expectSaved();
        EXPECT_EQ(modeOf(target()), mode);
    }
}

TEST_F(RightsOfAReplacement, OfANewFileAreWhatTheMaskLeaves) {
    const mode_t earlier = ::umask(027);
    expectSaved();
    EXPECT_EQ(modeOf(target()), 0640U);
    // Also where a killed process has left a file with other rights.
    fs::remove(target());
    writeBytes(temporary(), "left behind");
    ASSERT_EQ(::chmod(temporary().c_str(), 0666), 0);
    expectSaved();
    EXPECT_EQ(modeOf(target()), 0640U);
    ::umask(earlier);
}

TEST_F(RightsOfAReplacement, AreThereBeforeTheText) {
    if (!testing::canTraceProcesses()) GTEST_SKIP() << "processes cannot be traced here";
    const auto prepare = [&] {
        fs::remove(temporary());
        fs::remove(target());
        writeBytes(target(), "old");
        ASSERT_EQ(::chmod(target().c_str(), 0600), 0);
    };
    int withText = 0;
    const auto save = [&] { replace(target(), "a secret"); };
    for (int step = 1; testing::killAtStep(step, prepare, save); ++step) {
        EXPECT_EQ(modeOf(target()), 0600U) << step;
        if (bytesOf(temporary()).empty()) continue;
        ++withText;
        EXPECT_EQ(modeOf(temporary()), 0600U) << step;
    }
    EXPECT_GT(withText, 0);
}

TEST_F(RightsOfAReplacement, GoToTheOwnerAndTheGroupOfTheFile) {
    if (::geteuid() != 0) GTEST_SKIP() << "only user 0 gives files away";
    writeBytes(target(), "old");
    ASSERT_EQ(::chmod(target().c_str(), 0640), 0);
    ASSERT_EQ(::chown(target().c_str(), nobody, 1234), 0);
    expectSaved();
    EXPECT_EQ(statusOf(target()).st_uid, nobody);
    EXPECT_EQ(statusOf(target()).st_gid, 1234U);
    EXPECT_EQ(modeOf(target()), 0640U);
}

TEST_F(RightsOfAReplacement, AreNoMoreThanBeforeWithoutTheGroup) {
    if (::geteuid() != 0) GTEST_SKIP() << "only user 0 becomes another one";
    letEverybodyWrite();
    writeBytes(target(), "old");
    ASSERT_EQ(::chown(target().c_str(), nobody, 1234), 0);
    ASSERT_EQ(::chmod(target().c_str(), 0664), 0);
    EXPECT_TRUE(passesInChild([&] {
        ASSERT_TRUE(testing::becomeOrdinaryUser());
        expectSaved();
    }));
    EXPECT_EQ(statusOf(target()).st_gid, nobody);
    EXPECT_EQ(modeOf(target()), 0644U);
}

TEST_F(RightsOfAReplacement, KeepAGroupOfTheUser) {
    if (::geteuid() != 0) GTEST_SKIP() << "only user 0 becomes another one";
    letEverybodyWrite();
    writeBytes(target(), "old");
    ASSERT_EQ(::chown(target().c_str(), 4321, 1234), 0);
    ASSERT_EQ(::chmod(target().c_str(), 0664), 0);
    EXPECT_TRUE(passesInChild([&] {
        const gid_t groups[] = {1234};
        ASSERT_EQ(::setgroups(1, groups), 0);
        ASSERT_EQ(::setgid(nobody), 0);
        ASSERT_EQ(::setuid(nobody), 0);
        expectSaved();
    }));
    EXPECT_EQ(statusOf(target()).st_uid, nobody);
    EXPECT_EQ(statusOf(target()).st_gid, 1234U);
    EXPECT_EQ(modeOf(target()), 0664U);
}

TEST_F(RightsOfAReplacement, ThatCannotBeSetFailTheSave) {
    if (!testing::canRefuseSystemCalls()) GTEST_SKIP() << "system calls cannot be filtered here";
    writeBytes(target(), "old");
    ASSERT_EQ(::chmod(target().c_str(), 0600), 0);
    EXPECT_TRUE(passesInChild([&] {
        ASSERT_TRUE(testing::refuseSystemCalls({SYS_fchmod}, EPERM));
        EXPECT_EQ(replace(target(), "new"), EPERM);
    }));
    EXPECT_EQ(bytesOf(target()), "old");
    EXPECT_THAT(files(), ElementsAre("f"));
}

/// An attribute of a file, or what the system says in its place.
std::string attributeOf(const fs::path& path, const char* name) {
    char value[256];
    const ssize_t length = ::getxattr(path.c_str(), name, value, sizeof value);
    return length < 0 ? std::string("<none>")
                      : std::string(value, static_cast<std::size_t>(length));
}

bool setAttribute(const fs::path& path, const char* name, const std::string& value) {
    return ::setxattr(path.c_str(), name, value.data(), value.size(), 0) == 0;
}

// The user reads and writes, user 1234 reads, the group and all others nothing: version 2, and of
// each entry tag, rights and number in little-endian order.
const std::string accessList(
    "\x02\0\0\0"
    "\x01\0\x06\0\xff\xff\xff\xff"
    "\x02\0\x04\0\xd2\x04\0\0"
    "\x04\0\0\0\xff\xff\xff\xff"
    "\x10\0\x04\0\xff\xff\xff\xff"
    "\x20\0\0\0\xff\xff\xff\xff",
    44);
constexpr char accessListName[] = "system.posix_acl_access";

TEST_F(RightsOfAReplacement, IncludeExtendedAttributes) {
    writeBytes(target(), "old");
    if (!setAttribute(target(), "user.comment", "first operation"))
        GTEST_SKIP() << "the file system has no extended attributes";
    ASSERT_TRUE(setAttribute(target(), "user.empty", ""));
    expectSaved();
    EXPECT_EQ(attributeOf(target(), "user.comment"), "first operation");
    EXPECT_EQ(attributeOf(target(), "user.empty"), "");
}

TEST_F(RightsOfAReplacement, IncludeTheAccessControlList) {
    writeBytes(target(), "old");
    if (!setAttribute(target(), accessListName, accessList))
        GTEST_SKIP() << "the file system has no access control lists";
    expectSaved();
    EXPECT_EQ(attributeOf(target(), accessListName), accessList);
    EXPECT_EQ(modeOf(target()), 0640U);
}

TEST_F(RightsOfAReplacement, AreNotThoseThatTheDirectoryGivesToNewFiles) {
    writeBytes(target(), "old");
    ASSERT_EQ(::chmod(target().c_str(), 0640), 0);
    if (!setAttribute(directory_.path(), "system.posix_acl_default", accessList))
        GTEST_SKIP() << "the file system has no access control lists";
    expectSaved();
    EXPECT_EQ(attributeOf(target(), accessListName), "<none>");
    EXPECT_EQ(modeOf(target()), 0640U);
    fs::remove(target());
    expectSaved();
    EXPECT_NE(attributeOf(target(), accessListName), "<none>");
}

TEST_F(RightsOfAReplacement, DoWithoutAttributesThatAreRefused) {
    if (!testing::canRefuseSystemCalls()) GTEST_SKIP() << "system calls cannot be filtered here";
    writeBytes(target(), "old");
    if (!setAttribute(target(), "user.comment", "first operation"))
        GTEST_SKIP() << "the file system has no extended attributes";
    for (const unsigned call :
         {SYS_listxattr, SYS_getxattr, SYS_fsetxattr, SYS_fremovexattr, SYS_fchown}) {
        EXPECT_TRUE(passesInChild([&] {
            ASSERT_TRUE(testing::refuseSystemCalls({call}, EPERM));
            expectSaved();
        })) << call;
    }
}

TEST_F(RightsOfAReplacement, LeaveOtherHardLinksTheOldText) {
    writeBytes(target(), "old");
    fs::create_hard_link(target(), directory_ / "other");
    expectSaved();
    EXPECT_EQ(bytesOf(directory_ / "other"), "old");
}

class LinkToAReplacement : public ReplacementOnLinux {
protected:
    LinkToAReplacement() {
        fs::create_directory(directory_ / "real");
        fs::create_directory(directory_ / "links");
    }
    fs::path real() const { return directory_ / "real/f"; }
    fs::path link() const { return directory_ / "links/f"; }
    void expectReplacedThrough(const fs::path& link) const {
        const fs::path text = fs::read_symlink(link);
        {
            file_replacement held(link.string());
            ASSERT_TRUE(held.is_open());
            EXPECT_TRUE(fs::exists(directory_ / "real/f.messages.tmp"));
            EXPECT_EQ(fs::weakly_canonical(held.temporary_path()),
                      fs::weakly_canonical(directory_ / "real/f.messages.tmp"));
            EXPECT_EQ(held.write_and_replace("new"), 0);
        }
        EXPECT_EQ(fs::read_symlink(link), text);
        EXPECT_EQ(bytesOf(real()), "new");
        EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(real())));
        EXPECT_EQ(std::distance(fs::directory_iterator(real().parent_path()), {}), 1);
    }
};

TEST_F(LinkToAReplacement, StaysALink) {
    for (const fs::path& to : {real(), fs::path("../real/f"), fs::path("../links/../real/f")}) {
        writeBytes(real(), "old");
        fs::create_symlink(to, link());
        expectReplacedThrough(link());
        fs::remove(link());
    }
}

TEST_F(LinkToAReplacement, MayLeadToAnotherLink) {
    writeBytes(real(), "old");
    fs::create_symlink("../real/f", link());
    fs::create_symlink("f", directory_ / "links/g");
    fs::create_symlink(directory_ / "links/g", directory_ / "h");
    expectReplacedThrough(directory_ / "h");
    EXPECT_EQ(fs::read_symlink(link()), "../real/f");
}

TEST_F(LinkToAReplacement, MayLeadNowhere) {
    fs::create_symlink("../real/f", link());
    expectReplacedThrough(link());
    fs::create_symlink("none/f", directory_ / "links/g");
    EXPECT_EQ(replace(directory_ / "links/g", "new"), ENOENT);
}

TEST_F(LinkToAReplacement, InACircleFails) {
    fs::create_symlink("g", link());
    fs::create_symlink("f", directory_ / "links/g");
    EXPECT_EQ(replace(link(), "new"), ELOOP);
    EXPECT_EQ(fs::read_symlink(link()), "g");
}

TEST_F(LinkToAReplacement, OfADirectoryStays) {
    fs::create_symlink("../real", link());
    EXPECT_EQ(replace(link(), "new"), EISDIR);
    EXPECT_EQ(fs::read_symlink(link()), "../real");
    EXPECT_TRUE(fs::is_empty(directory_ / "real"));
}

TEST_F(LinkToAReplacement, OfAFifoIsReplacedItself) {
    ASSERT_EQ(::mkfifo(real().c_str(), 0600), 0);
    fs::create_symlink("../real/f", link());
    EXPECT_EQ(replace(link(), "new"), 0);
    EXPECT_EQ(bytesOf(link()), "new");
    EXPECT_TRUE(fs::is_fifo(real()));
}

TEST_F(LinkToAReplacement, SharesTheLockOfItsFile) {
    writeBytes(real(), "old");
    fs::create_symlink("../real/f", link());
    const file_replacement held(real().string());
    EXPECT_EQ(replace(link(), "new"), ETIMEDOUT);
    EXPECT_EQ(bytesOf(real()), "old");
}

TEST_F(LinkToAReplacement, IsATakenNameWhereFilesAreRefused) {
    writeBytes(real(), "old");
    fs::create_symlink("../real/f", link());
    fs::create_symlink("none", directory_ / "links/g");
    for (const fs::path& path : {link(), directory_ / "links/g"}) {
        file_replacement held(path.string(), own_temporary_name,
                              file_replacement::existing::refused);
        EXPECT_EQ(held.open_failure(), EEXIST);
        EXPECT_EQ(held.write_and_replace("new"), EEXIST);
        EXPECT_TRUE(fs::is_symlink(path));
    }
    EXPECT_EQ(bytesOf(real()), "old");
    EXPECT_FALSE(fs::exists(directory_ / "links/none"));
}

using ExclusiveReplacement = ReplacementOnLinux;

TEST_F(ExclusiveReplacement, NeedsNoRenamingThatRefuses) {
    if (!testing::canRefuseSystemCalls()) GTEST_SKIP() << "system calls cannot be filtered here";
    const std::vector<unsigned> linking = {SYS_link, SYS_linkat};
    for (const bool has_links : {true, false}) {
        fs::remove(target());
        EXPECT_TRUE(passesInChild([&] {
            ASSERT_TRUE(testing::refuseSystemCalls({SYS_renameat2}, EINVAL));
            if (!has_links) {
                ASSERT_TRUE(testing::refuseSystemCalls(linking, EPERM));
            }
            const auto refused = file_replacement::existing::refused;
            file_replacement first(target().string(), own_temporary_name, refused);
            EXPECT_EQ(first.write_and_replace("first"), 0);
            file_replacement second((directory_ / "g").string(), own_temporary_name, refused);
            writeBytes(directory_ / "g", "of somebody else");
            EXPECT_EQ(second.write_and_replace("second"), EEXIST);
        })) << has_links;
        EXPECT_EQ(bytesOf(target()), "first");
        EXPECT_EQ(bytesOf(directory_ / "g"), "of somebody else");
        EXPECT_FALSE(fs::exists(temporary()));
    }
}

}  // namespace
}  // namespace trv
