// Behaviour of files that several processes write, on Windows only.

#include <tests/common/file_bytes.h>
#include <tests/common/held_file_windows.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/support/platform_sharing.h>
#include <trvfiles/support/platform_targets.h>

#include <aclapi.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

namespace trv::platform {
namespace {

using testing::bytesOf;
using testing::HeldFile;
using testing::writeBytes;

namespace fs = std::filesystem;

constexpr std::chrono::milliseconds shortly(50);

class SharingOnWindows : public ::testing::Test {
protected:
    std::string path(const std::string& name) const { return (directory_ / name).string(); }
    int hold(const std::string& name) const { return create_held(path(name).c_str(), shortly); }
    int holdText(const std::string& name, const char* text) const {
        const int held = hold(name);
        std::fputs(text, open_stream_of(held, file_mode::binary).get());
        return held;
    }
    int move(int held, const std::string& from, const std::string& to) const {
        return move_held(held, path(from).c_str(), path(to).c_str(), existing_file::replaced);
    }

    testing::TemporaryDirectory directory_;
};

TEST_F(SharingOnWindows, EndsLinesWithCrLf) {
    const int held = hold("f");
    std::fputs("a\nb\n", open_stream_of(held, file_mode::text).get());
    EXPECT_EQ(move(held, "f", "g"), 0);
    release_held(held);
    EXPECT_EQ(bytesOf(directory_ / "g"), "a\r\nb\r\n");
    std::fputs("A\n", open_for_update(path("g").c_str(), file_mode::text).get());
    EXPECT_EQ(bytesOf(directory_ / "g"), "A\r\nb\r\n");
}

TEST_F(SharingOnWindows, AHeldFileIsNotWrittenOrRemovedByOthers) {
    const int held = hold("f");
    EXPECT_EQ(open_for_write(path("f"), file_mode::binary), nullptr);
    EXPECT_EQ(open_for_append(path("f").c_str(), file_mode::binary), nullptr);
    EXPECT_EQ(::DeleteFileW((directory_ / "f").c_str()), 0);
    remove_held(held, path("f").c_str());
    EXPECT_FALSE(fs::exists(directory_ / "f"));
}

TEST_F(SharingOnWindows, DoesNotReplaceAFileThatIsKeptOpen) {
    for (const DWORD sharing : {0, FILE_SHARE_READ, FILE_SHARE_READ | FILE_SHARE_WRITE}) {
        writeBytes(directory_ / "old", "old");
        const int held = holdText("new", "new");
        {
            const HeldFile other(directory_ / "old", sharing);
            ASSERT_TRUE(other.isOpen());
            EXPECT_EQ(move(held, "new", "old"), EACCES);
        }
        EXPECT_EQ(bytesOf(directory_ / "old"), "old");
        remove_held(held, path("new").c_str());
        EXPECT_FALSE(fs::exists(directory_ / "new"));
    }
}

TEST_F(SharingOnWindows, ReplacesAFileThatAReaderClosesSoon) {
    writeBytes(directory_ / "old", "old");
    const int held = holdText("new", "new");
    file_handle reader = open_for_read(path("old"), file_mode::binary);
    ASSERT_NE(reader, nullptr);
    std::thread later([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        EXPECT_EQ(std::getc(reader.get()), 'o');
        reader.reset();
    });
    EXPECT_EQ(move(held, "new", "old"), 0);
    later.join();
    release_held(held);
    EXPECT_EQ(bytesOf(directory_ / "old"), "new");
}

TEST_F(SharingOnWindows, DoesNotReplaceAFileThatIsReadOnly) {
    writeBytes(directory_ / "old", "old");
    const int held = holdText("new", "new");
    ASSERT_NE(::SetFileAttributesW((directory_ / "old").c_str(), FILE_ATTRIBUTE_READONLY), 0);
    EXPECT_EQ(move(held, "new", "old"), EACCES);
    EXPECT_EQ(bytesOf(directory_ / "old"), "old");
    ::SetFileAttributesW((directory_ / "old").c_str(), FILE_ATTRIBUTE_NORMAL);
    remove_held(held, path("new").c_str());
}

TEST_F(SharingOnWindows, AReaderSharesDeleting) {
    writeBytes(directory_ / "f", "text");
    const file_handle reader = open_for_read(path("f"), file_mode::binary);
    const file_handle wide = open_for_read(directory_ / "f", file_mode::binary);
    EXPECT_NE(::DeleteFileW((directory_ / "f").c_str()), 0);
    EXPECT_EQ(std::getc(reader.get()), 't');
    EXPECT_EQ(std::getc(wide.get()), 't');
}

TEST_F(SharingOnWindows, AFileIsReadAsSoonAsItIsReplaced) {
    writeBytes(directory_ / "old", "old");
    const int held = holdText("new", "new");
    EXPECT_EQ(move(held, "new", "old"), 0);
    const file_handle reader = open_for_read(path("old"), file_mode::binary);
    ASSERT_NE(reader, nullptr);
    EXPECT_EQ(std::getc(reader.get()), 'n');
    release_held(held);
}

TEST_F(SharingOnWindows, UsesNoFileThatHasAnotherName) {
    writeBytes(directory_ / "other", "another file");
    ASSERT_NE(
        ::CreateHardLinkW((directory_ / "f").c_str(), (directory_ / "other").c_str(), nullptr), 0);
    const int held = holdText("f", "text");
    EXPECT_EQ(bytesOf(directory_ / "other"), "another file");
    remove_held(held, path("f").c_str());
}

TEST_F(SharingOnWindows, GivesTheAttributesOfTheFile) {
    writeBytes(directory_ / "old", "old");
    ASSERT_NE(::SetFileAttributesW((directory_ / "old").c_str(), FILE_ATTRIBUTE_HIDDEN), 0);
    const int held = holdText("new", "new");
    EXPECT_EQ(copy_attributes(path("old").c_str(), held), 0);
    EXPECT_EQ(move(held, "new", "old"), 0);
    release_held(held);
    EXPECT_NE(::GetFileAttributesW((directory_ / "old").c_str()) & FILE_ATTRIBUTE_HIDDEN, 0U);
}

/// The number of entries in the access control list of a file, and whether it is protected.
std::pair<int, bool> accessListOf(const fs::path& path) {
    PACL list = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    std::wstring name = path.wstring();
    EXPECT_EQ(::GetNamedSecurityInfoW(name.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION,
                                      nullptr, nullptr, &list, nullptr, &descriptor),
              ERROR_SUCCESS);
    SECURITY_DESCRIPTOR_CONTROL control = 0;
    DWORD revision = 0;
    ::GetSecurityDescriptorControl(descriptor, &control, &revision);
    const int entries = list == nullptr ? -1 : list->AceCount;
    ::LocalFree(descriptor);
    return {entries, (control & SE_DACL_PROTECTED) != 0};
}

TEST_F(SharingOnWindows, GivesTheAccessListOfTheFile) {
    writeBytes(directory_ / "old", "old");
    std::wstring name = (directory_ / "old").wstring();
    EXPLICIT_ACCESSW entry = {};
    wchar_t owner[] = L"CURRENT_USER";
    ::BuildExplicitAccessWithNameW(&entry, owner, GENERIC_ALL, SET_ACCESS, NO_INHERITANCE);
    PACL list = nullptr;
    ASSERT_EQ(::SetEntriesInAclW(1, &entry, nullptr, &list), ERROR_SUCCESS);
    ASSERT_EQ(
        ::SetNamedSecurityInfoW(name.data(), SE_FILE_OBJECT,
                                DACL_SECURITY_INFORMATION | PROTECTED_DACL_SECURITY_INFORMATION,
                                nullptr, nullptr, list, nullptr),
        ERROR_SUCCESS);
    ::LocalFree(list);
    const auto expected = accessListOf(directory_ / "old");
    const int held = holdText("new", "new");
    if (accessListOf(directory_ / "new") == expected) {
        release_held(held);
        GTEST_SKIP() << "every file has the same list here";
    }
    EXPECT_EQ(copy_attributes(path("old").c_str(), held), 0);
    EXPECT_EQ(move(held, "new", "old"), 0);
    release_held(held);
    EXPECT_EQ(accessListOf(directory_ / "old"), expected);
}

}  // namespace
}  // namespace trv::platform
