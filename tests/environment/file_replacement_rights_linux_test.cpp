// Owner, group and permissions of a replaced file.

#include <tests/common/child_process.h>
#include <tests/common/file_bytes.h>
#include <tests/common/system_calls_linux.h>
#include <tests/environment/replacement_on_linux.h>

#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <string>

namespace trv {
namespace {

using testing::bytesOf;
using ::testing::ElementsAre;
using testing::nobody;
using testing::passesInChild;
using testing::ReplacementOnLinux;
using testing::writeBytes;

namespace fs = std::filesystem;

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
    // Also if a killed process has left a file with other permissions.
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

/// An attribute of a file, or the error text of the system.
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

}  // namespace
}  // namespace trv
