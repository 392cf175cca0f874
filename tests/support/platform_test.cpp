#include <tests/common/child_process.h>
#include <tests/common/file_bytes.h>
#include <tests/common/system.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/support/platform.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <limits>
#include <stdexcept>
#include <string>
#include <system_error>

using trv::platform::file_handle;
using trv::platform::file_mode;
using trv::platform::open_for_read;
using trv::platform::open_for_write;
using trv::platform::open_new;
using trv::platform::regular_file_exists;
using namespace std::string_literals;
using namespace trv::testing;

namespace {

const std::string binary_bytes = "a\r\nb\nc\rd\0e\x1A"s + "f\xFF\n"s;

std::string contentOf(std::FILE* file) {
    std::string content;
    for (int byte = std::fgetc(file); byte != EOF; byte = std::fgetc(file))
        content += static_cast<char>(byte);
    return content;
}

/// Recurses so deeply that no thread's default stack on any system is large enough.
std::size_t recurse(std::size_t levels) {
    volatile char frame[1024] = {};
    frame[levels % sizeof frame] = 1;
    return levels == 0 ? 0 : recurse(levels - 1) + static_cast<std::size_t>(frame[levels % 1024]);
}

class Platform : public ::testing::Test {
protected:
    TemporaryDirectory directory_;
};

}  // namespace

TEST_F(Platform, ReadsABinaryFileByteForByte) {
    writeBytes(directory_ / "f", binary_bytes);
    const file_handle file = open_for_read(directory_ / "f", file_mode::binary);
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(contentOf(file.get()), binary_bytes);
}

TEST_F(Platform, WritesABinaryFileByteForByte) {
    file_handle file = open_for_write(directory_ / "f", file_mode::binary);
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(std::fwrite(binary_bytes.data(), 1, binary_bytes.size(), file.get()),
              binary_bytes.size());
    file.reset();
    EXPECT_EQ(bytesOf(directory_ / "f"), binary_bytes);
}

TEST_F(Platform, DoesNotTakeAFileForATerminal) {
    const file_handle file = open_for_write(directory_ / "f", file_mode::binary);
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(trv::platform::terminal_columns(file.get()), 0);
}

TEST_F(Platform, EndsLinesOfTextAsTheSystemDoes) {
    file_handle file = open_for_write(directory_ / "f", file_mode::text);
    ASSERT_NE(file, nullptr);
    std::fputs("a\nb\n", file.get());
    file.reset();
    const bool windows = trv::platform::backslash_separates();
    EXPECT_EQ(bytesOf(directory_ / "f"), windows ? "a\r\nb\r\n" : "a\nb\n");
    file = open_for_read(directory_ / "f", file_mode::text);
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(contentOf(file.get()), "a\nb\n");
}

TEST_F(Platform, KeepsEveryByteOfATextFileOnPosix) {
    if (trv::platform::backslash_separates()) GTEST_SKIP() << "Windows translates text files";
    writeBytes(directory_ / "f", binary_bytes);
    const file_handle file = open_for_read(directory_ / "f", file_mode::text);
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(contentOf(file.get()), binary_bytes);
}

TEST_F(Platform, TruncatesAnExistingFileForWriting) {
    writeBytes(directory_ / "f", "old");
    file_handle file = open_for_write(directory_ / "f", file_mode::binary);
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(bytesOf(directory_ / "f"), "");
}

TEST_F(Platform, CreatesAFileThatIsNew) {
    file_handle file = open_new(directory_ / "f", file_mode::binary);
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(std::fwrite(binary_bytes.data(), 1, binary_bytes.size(), file.get()),
              binary_bytes.size());
    file.reset();
    EXPECT_EQ(bytesOf(directory_ / "f"), binary_bytes);
    file = open_new(directory_ / "g", file_mode::text);
    ASSERT_NE(file, nullptr);
    std::fputs("a\n", file.get());
    file.reset();
    const bool windows = trv::platform::backslash_separates();
    EXPECT_EQ(bytesOf(directory_ / "g"), windows ? "a\r\n" : "a\n");
}

TEST_F(Platform, CreatesNoFileOfANameThatIsTaken) {
    writeBytes(directory_ / "f", "old");
    std::filesystem::create_directory(directory_ / "d");
    EXPECT_EQ(open_new(directory_ / "f", file_mode::binary), nullptr);
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(bytesOf(directory_ / "f"), "old");
    EXPECT_EQ(open_new(directory_ / "d", file_mode::binary), nullptr);
    EXPECT_EQ(open_new(directory_ / "missing" / "f", file_mode::binary), nullptr);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(open_new({}, file_mode::binary), nullptr);
    EXPECT_EQ(errno, ENOENT);
}

TEST_F(Platform, CreatesNoFileThroughALink) {
    std::error_code error;
    std::filesystem::create_symlink(directory_ / "missing", directory_ / "link", error);
    if (error) GTEST_SKIP() << "links cannot be made here";
    EXPECT_EQ(open_new(directory_ / "link", file_mode::binary), nullptr);
    EXPECT_EQ(errno, EEXIST);
    EXPECT_FALSE(std::filesystem::exists(directory_ / "missing"));
}

TEST_F(Platform, LetsAFileBeOpenSeveralTimesAtOnce) {
    const file_handle writer = open_for_write(directory_ / "f", file_mode::binary);
    const file_handle second = open_for_write(directory_ / "f", file_mode::binary);
    const file_handle reader = open_for_read(directory_ / "f", file_mode::binary);
    EXPECT_NE(writer, nullptr);
    EXPECT_NE(second, nullptr);
    EXPECT_NE(reader, nullptr);
}

TEST_F(Platform, DoesNotOpenAMissingFile) {
    errno = 0;
    EXPECT_EQ(open_for_read(directory_ / "missing", file_mode::text), nullptr);
    EXPECT_EQ(errno, ENOENT);
    errno = 0;
    EXPECT_EQ(open_for_write(directory_ / "missing" / "f", file_mode::text), nullptr);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_FALSE(std::filesystem::exists(directory_ / "missing"));
    EXPECT_EQ(open_for_read({}, file_mode::binary), nullptr);
    EXPECT_EQ(open_for_write({}, file_mode::binary), nullptr);
}

TEST_F(Platform, DoesNotOpenADirectory) {
    for (const file_mode mode : {file_mode::text, file_mode::binary}) {
        errno = 0;
        EXPECT_EQ(open_for_read(directory_.path(), mode), nullptr);
        EXPECT_EQ(errno, EISDIR);
        EXPECT_EQ(open_for_read(directory_.path() / "", mode), nullptr);
        EXPECT_EQ(open_for_write(directory_.path(), mode), nullptr);
    }
}

TEST_F(Platform, DistinguishesRegularFiles) {
    writeBytes(directory_ / "f", "x");
    const std::string directory = directory_.path().string();
    EXPECT_TRUE(regular_file_exists(directory_ / "f"));
    EXPECT_TRUE(regular_file_exists(directory + "/f"));
    EXPECT_FALSE(regular_file_exists(directory_.path()));
    EXPECT_FALSE(regular_file_exists(directory));
    EXPECT_FALSE(regular_file_exists(directory_ / "missing"));
    EXPECT_FALSE(regular_file_exists(std::string()));
    EXPECT_FALSE(regular_file_exists(static_cast<const char*>(nullptr)));
}

TEST_F(Platform, DoesNotOpenAPathBelowAFile) {
    writeBytes(directory_ / "f", "x");
    EXPECT_EQ(open_for_read(directory_ / "f" / "g", file_mode::binary), nullptr);
    EXPECT_EQ(open_for_write(directory_ / "f" / "g", file_mode::binary), nullptr);
    EXPECT_EQ(bytesOf(directory_ / "f"), "x");
}

TEST_F(Platform, DoesNotOpenANameThatIsTooLong) {
    EXPECT_EQ(open_for_read(directory_ / std::string(300, 'n'), file_mode::binary), nullptr);
    EXPECT_EQ(open_for_write(directory_ / std::string(300, 'n'), file_mode::binary), nullptr);
    EXPECT_EQ(open_for_read(std::string(100000, 'n'), file_mode::binary), nullptr);
}

TEST_F(Platform, DoesNotOpenWhatTheUserMayNot) {
    if (!can_fork) GTEST_SKIP() << "needs a child process";
    writeBytes(directory_ / "closed", "x");
    std::filesystem::permissions(directory_ / "closed", std::filesystem::perms::none);
    std::filesystem::create_directory(directory_ / "locked");
    std::filesystem::permissions(directory_ / "locked", std::filesystem::perms::owner_read |
                                                            std::filesystem::perms::others_read);
    EXPECT_TRUE(passesInChild([&] {
        ASSERT_TRUE(becomeOrdinaryUser());
        errno = 0;
        EXPECT_EQ(open_for_read(directory_ / "closed", file_mode::binary), nullptr);
        EXPECT_EQ(errno, EACCES);
        errno = 0;
        EXPECT_EQ(open_for_write(directory_ / "closed", file_mode::binary), nullptr);
        EXPECT_EQ(errno, EACCES);
        EXPECT_EQ(open_for_write(directory_ / "locked" / "f", file_mode::binary), nullptr);
    }));
    EXPECT_EQ(std::filesystem::file_size(directory_ / "closed"), 1U);
}

TEST_F(Platform, DoesNotOpenWithoutADescriptorLeft) {
    if (!can_fork) GTEST_SKIP() << "needs a child process";
    writeBytes(directory_ / "f", "x");
    EXPECT_TRUE(passesInChild([&] {
        ASSERT_TRUE(exhaustDescriptors());
        errno = 0;
        EXPECT_EQ(open_for_read(directory_ / "f", file_mode::binary), nullptr);
        EXPECT_EQ(errno, EMFILE);
        EXPECT_EQ(open_for_write(directory_ / "g", file_mode::binary), nullptr);
    }));
}

TEST_F(Platform, LeavesNoDescriptorOpen) {
    if (openDescriptors() < 0) GTEST_SKIP() << "the system does not list descriptors";
    writeBytes(directory_ / "f", "x");
    const auto before = openDescriptors();
    for (int i = 0; i < 3; ++i) {
        open_for_read(directory_ / "f", file_mode::text).reset();
        open_for_read(directory_.path(), file_mode::text).reset();
        open_for_read(directory_ / "missing", file_mode::text).reset();
        open_for_write(directory_ / "f", file_mode::text).reset();
        open_for_write(directory_.path(), file_mode::text).reset();
    }
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(Platform, RemovesAFile) {
    for (const char* name : {"f", "\xC3\xA4\xE4\xB8\xAD", "[50%] x"}) {
        writeBytes(directory_ / name, "x");
        EXPECT_EQ(trv::platform::remove_file(directory_ / name), 0);
        EXPECT_FALSE(std::filesystem::exists(directory_ / name));
        EXPECT_EQ(trv::platform::remove_file(directory_ / name), ENOENT);
    }
    EXPECT_EQ(trv::platform::remove_file(std::filesystem::path()), ENOENT);
}

TEST_F(Platform, RemovesNoDirectory) {
    std::filesystem::create_directory(directory_ / "d");
    EXPECT_NE(trv::platform::remove_file(directory_ / "d"), 0);
    EXPECT_TRUE(std::filesystem::is_directory(directory_ / "d"));
}

TEST_F(Platform, RemovesALinkAndNotItsTarget) {
    writeBytes(directory_ / "f", "x");
    std::error_code error;
    std::filesystem::create_symlink(directory_ / "f", directory_ / "link", error);
    if (error) GTEST_SKIP() << "links cannot be made here";
    EXPECT_EQ(trv::platform::remove_file(directory_ / "link"), 0);
    EXPECT_FALSE(std::filesystem::is_symlink(directory_ / "link"));
    EXPECT_EQ(bytesOf(directory_ / "f"), "x");
}

TEST_F(Platform, DoesNotChangeTheNameOfAFileToRemoveOnPosix) {
    if (trv::platform::backslash_separates()) GTEST_SKIP() << "Windows separates by it";
    std::filesystem::create_directory(directory_ / "d");
    writeBytes(directory_ / "d/f", "x");
    writeBytes(directory_.path() / "d\\f", "x");
    EXPECT_EQ(trv::platform::remove_file(directory_.path() / "d\\f"), 0);
    EXPECT_EQ(bytesOf(directory_ / "d/f"), "x");
}

TEST(CallOnStack, RunsTheWorkToItsEnd) {
    int calls = 0;
    for (const std::size_t bytes : {0U, 1U, 4096U, 100000U, 1U << 20})
        trv::platform::call_on_stack(bytes, [&] { ++calls; });
    EXPECT_EQ(calls, 5);
}

TEST(CallOnStack, GivesAsMuchStackAsWasAskedFor) {
    constexpr std::size_t levels = 32 * 1024;
    std::size_t count = 0;
    trv::platform::call_on_stack(std::size_t{192} << 20, [&] { count = recurse(levels); });
    EXPECT_GT(count, 0U);
}

TEST(CallOnStack, PassesExceptionsOfTheWorkOn) {
    try {
        trv::platform::call_on_stack(1 << 20, [] { throw std::runtime_error("thrown inside"); });
        FAIL() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "thrown inside");
    }
}

TEST(CallOnStack, CanBeNested) {
    bool done = false;
    trv::platform::call_on_stack(
        1 << 20, [&] { trv::platform::call_on_stack(1 << 20, [&] { done = true; }); });
    EXPECT_TRUE(done);
}

TEST(CallOnStack, ThrowsIfTheSystemRefusesAStack) {
    constexpr std::size_t most = std::numeric_limits<std::size_t>::max();
    for (const std::size_t bytes : {most / 4, most / 2, most - 4096, most - 1, most}) {
        bool called = false;
        EXPECT_THROW(trv::platform::call_on_stack(bytes, [&] { called = true; }), std::system_error)
            << bytes;
        EXPECT_FALSE(called);
    }
}

TEST(PlatformRules, FollowPosix) {
    if (!can_fork) GTEST_SKIP() << "Windows has other rules";
    EXPECT_TRUE(trv::platform::narrow_text_is_utf8());
    EXPECT_FALSE(trv::platform::backslash_separates());
}
