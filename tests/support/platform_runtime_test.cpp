#include <tests/common/current_directory.h>
#include <tests/common/death_test.h>
#include <tests/common/file_bytes.h>
#include <tests/common/scoped_variable.h>
#include <tests/common/system.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/support/platform.h>
#include <trvfiles/support/platform_sharing.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

namespace trv::platform {
namespace {

using testing::bytesOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;
using testing::writeBytes;

class PlatformRuntime : public testing::ChildProcessTest {
protected:
    std::string path(const std::string& name) const { return directory_.text() + name; }
    static std::string contents(std::FILE* file) {
        std::string text;
        for (int c = std::getc(file); c != EOF; c = std::getc(file)) {
            text += static_cast<char>(c);
        }
        return text;
    }

    testing::TemporaryDirectory directory_;
};

TEST_F(PlatformRuntime, OpensRuntimePathsWithEitherSeparator) {
    std::filesystem::create_directory(directory_ / "d");
    writeBytes(directory_ / "d/f", "text");
    for (const char* name : {"/d/f", "\\d\\f", "/d\\f"}) {
        const file_handle file = open_for_read(path(name).c_str(), file_mode::text);
        ASSERT_NE(file, nullptr) << name;
        EXPECT_EQ(contents(file.get()), "text");
    }
}

TEST_F(PlatformRuntime, ADirectoryDoesNotOpenForReading) {
    errno = 0;
    EXPECT_EQ(open_for_read(directory_.text().c_str(), file_mode::binary), nullptr);
    EXPECT_EQ(errno, EISDIR);
    errno = 0;
    EXPECT_EQ(open_for_read(directory_.path(), file_mode::binary), nullptr);
    EXPECT_EQ(errno, EISDIR);
}

TEST_F(PlatformRuntime, NothingOpensForNoPath) {
    const char* const null = nullptr;
    for (const char* none : {null, ""}) {
        errno = 0;
        EXPECT_EQ(open_for_read(none, file_mode::text), nullptr);
        EXPECT_EQ(errno, ENOENT);
        errno = 0;
        EXPECT_EQ(open_for_write(none, file_mode::text), nullptr);
        EXPECT_EQ(errno, ENOENT);
        EXPECT_EQ(open_for_append(none, file_mode::text), nullptr);
    }
}

TEST_F(PlatformRuntime, ReportsWhyAFileDoesNotOpen) {
    errno = 0;
    EXPECT_EQ(open_for_read(path("/none").c_str(), file_mode::text), nullptr);
    EXPECT_EQ(errno, ENOENT);
    errno = 0;
    EXPECT_EQ(open_for_write(path("/none/f").c_str(), file_mode::text), nullptr);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(open_for_write(directory_.text().c_str(), file_mode::text), nullptr);
    EXPECT_EQ(open_for_append(directory_.text().c_str(), file_mode::text), nullptr);
}

TEST_F(PlatformRuntime, WritingEmptiesAFile) {
    writeBytes(directory_ / "f", "a long old text");
    std::fputs("new", open_for_write(path("\\f").c_str(), file_mode::binary).get());
    EXPECT_EQ(bytesOf(directory_ / "f"), "new");
    std::fputs("made", open_for_write(path("\\g").c_str(), file_mode::binary).get());
    EXPECT_EQ(bytesOf(directory_ / "g"), "made");
}

TEST_F(PlatformRuntime, AppendingWritesAfterTheEnd) {
    for (const char* text : {"one ", "two"}) {
        std::fputs(text, open_for_append(path("\\log").c_str(), file_mode::binary).get());
    }
    EXPECT_EQ(bytesOf(directory_ / "log"), "one two");
}

TEST_F(PlatformRuntime, SyncingWritesBufferedData) {
    const file_handle file = open_for_write(path("/f").c_str(), file_mode::binary);
    std::fputs("text", file.get());
    EXPECT_EQ(sync_file(file.get()), 0);
    EXPECT_EQ(bytesOf(directory_ / "f"), "text");
}

TEST_F(PlatformRuntime, SyncingACharacterDeviceSucceeds) {
    if (backslash_separates()) GTEST_SKIP() << "Windows has no device that cannot be synced";
    const file_handle file = open_for_write("/dev/null", file_mode::binary);
    ASSERT_NE(file, nullptr);
    std::fputs("text", file.get());
    EXPECT_EQ(sync_file(file.get()), 0);
}

TEST_F(PlatformRuntime, SyncingReportsAFullDevice) {
    const file_handle file = open_for_write("/dev/full", file_mode::binary);
    if (file == nullptr) GTEST_SKIP() << "There is no full device here";
    std::fputs("text", file.get());
    EXPECT_EQ(sync_file(file.get()), ENOSPC);
}

TEST_F(PlatformRuntime, RemovesFilesButNoDirectories) {
    writeBytes(directory_ / "f", "x");
    std::filesystem::create_directory(directory_ / "d");
    EXPECT_EQ(remove_file(path("\\f").c_str()), 0);
    EXPECT_FALSE(std::filesystem::exists(directory_ / "f"));
    EXPECT_EQ(remove_file(path("\\f").c_str()), ENOENT);
    EXPECT_NE(remove_file(path("/d").c_str()), 0);
    EXPECT_TRUE(std::filesystem::exists(directory_ / "d"));
    EXPECT_EQ(remove_file(nullptr), ENOENT);
}

TEST_F(PlatformRuntime, KnowsWhatExists) {
    writeBytes(directory_ / "f", "x");
    EXPECT_TRUE(path_exists(path("\\f").c_str()));
    EXPECT_FALSE(directory_exists(path("\\f").c_str()));
    EXPECT_TRUE(path_exists(directory_.text().c_str()));
    EXPECT_TRUE(directory_exists(directory_.text().c_str()));
    EXPECT_FALSE(path_exists(path("/g").c_str()));
    EXPECT_FALSE(path_exists(nullptr));
    EXPECT_FALSE(directory_exists(nullptr));
}

TEST_F(PlatformRuntime, CreatesADirectoryOrReportsWhyNot) {
    EXPECT_EQ(create_directory(path("\\d").c_str()), 0);
    EXPECT_TRUE(std::filesystem::is_directory(directory_ / "d"));
    EXPECT_EQ(create_directory(path("\\d").c_str()), EEXIST);
    EXPECT_EQ(create_directory(path("/none/d").c_str()), ENOENT);
    EXPECT_EQ(create_directory(nullptr), ENOENT);
}

TEST_F(PlatformRuntime, ReadsADirectory) {
    writeBytes(directory_ / "f", "x");
    writeBytes(directory_ / ".hidden", "x");
    std::filesystem::create_directory(directory_ / "d");
    EXPECT_THAT(directory_entries(directory_.text().c_str()),
                UnorderedElementsAre("f", ".hidden", "d"));
    EXPECT_THAT(directory_entries(path("\\").c_str()), UnorderedElementsAre("f", ".hidden", "d"));
    EXPECT_THAT(directory_entries(path("\\d").c_str()), IsEmpty());
    EXPECT_THAT(directory_entries(path("\\none").c_str()), IsEmpty());
    EXPECT_THAT(directory_entries(nullptr), IsEmpty());
}

TEST_F(PlatformRuntime, TheCurrentDirectoryIsARuntimePath) {
    std::filesystem::create_directories(directory_ / "a/b");
    const testing::CurrentDirectory here(directory_ / "a/b");
    const std::string current = current_directory();
    EXPECT_THAT(current, ::testing::EndsWith("\\a\\b"));
    EXPECT_EQ(current.find('/'), std::string::npos);
    EXPECT_TRUE(directory_exists(current.c_str()));
}

TEST_F(PlatformRuntime, TheProgramFileIsThisTest) {
    EXPECT_THAT(std::filesystem::path(program_file()).filename().string(),
                ::testing::StartsWith("support_tests"));
    EXPECT_TRUE(path_exists(program_file().c_str()));
}

TEST_F(PlatformRuntime, ArgumentsAreThoseAfterTheProgram) {
    if (backslash_separates()) GTEST_SKIP() << "Windows tells the arguments of this test";
    const char* const arguments[] = {"program", "-x", "a b", "", nullptr};
    std::vector<std::string> given;
    for (const std::filesystem::path argument : program_arguments(4, arguments))
        given.push_back(argument.string());
    EXPECT_THAT(given, ElementsAre("-x", "a b", ""));
    EXPECT_THAT(program_arguments(1, arguments), IsEmpty());
    EXPECT_THAT(program_arguments(0, arguments + 4), IsEmpty());
}

TEST_F(PlatformRuntime, SetsAndRemovesVariables) {
    const testing::ScopedVariable guard("TRVFILES_TEST", nullptr);
    EXPECT_EQ(get_environment("TRVFILES_TEST"), nullptr);
    EXPECT_TRUE(set_environment("TRVFILES_TEST", "one=1"));
    EXPECT_STREQ(get_environment("TRVFILES_TEST"), "one=1");
    EXPECT_TRUE(set_environment("TRVFILES_TEST", "two"));
    EXPECT_STREQ(get_environment("TRVFILES_TEST"), "two");
    EXPECT_TRUE(set_environment("TRVFILES_TEST", ""));
    EXPECT_EQ(get_environment("TRVFILES_TEST"), nullptr);
    EXPECT_TRUE(set_environment("TRVFILES_TEST", "three"));
    EXPECT_TRUE(set_environment("TRVFILES_TEST", nullptr));
    EXPECT_EQ(get_environment("TRVFILES_TEST"), nullptr);
}

TEST_F(PlatformRuntime, AVariableKeepsACopyOfItsValue) {
    const testing::ScopedVariable guard("TRVFILES_TEST", nullptr);
    char value[] = "value";
    set_environment("TRVFILES_TEST", value);
    std::memset(value, 'x', 5);
    EXPECT_STREQ(get_environment("TRVFILES_TEST"), "value");
    EXPECT_TRUE(set_environment("TRVFILES_TEST", get_environment("TRVFILES_TEST")));
    EXPECT_STREQ(get_environment("TRVFILES_TEST"), "value");
}

TEST_F(PlatformRuntime, ANameWithAnEqualSignNamesNoVariable) {
    const testing::ScopedVariable guard("TRVFILES_TEST", "B=C");
    EXPECT_EQ(get_environment("TRVFILES_TEST=B"), nullptr);
    EXPECT_FALSE(set_environment("TRVFILES_TEST=B", "x"));
    EXPECT_FALSE(set_environment("", "x"));
    EXPECT_FALSE(set_environment(nullptr, "x"));
    EXPECT_EQ(get_environment(""), nullptr);
    EXPECT_EQ(get_environment(nullptr), nullptr);
    EXPECT_STREQ(get_environment("TRVFILES_TEST"), "B=C");
}

TEST_F(PlatformRuntime, LocalTimeIsTheTimeOfTheInstant) {
    for (const std::time_t instant : {std::time_t{1715072900}, std::time_t{1704067200}}) {
        std::tm brokenDown = local_time(instant);
        EXPECT_EQ(std::mktime(&brokenDown), instant);
    }
}

TEST_F(PlatformRuntime, ABreakpointStopsTheProcess) {
    const auto stopped = [](int status) {
        constexpr int trapSignal = 5;
        constexpr unsigned breakpointException = 0x80000003;
        return (status & 0x7F) == trapSignal ||
               static_cast<unsigned>(status) == breakpointException;
    };
    EXPECT_EXIT(breakpoint_trap(), stopped, "");
}

TEST_F(PlatformRuntime, LeavesNoDescriptorOpen) {
    if (testing::openDescriptors() < 0) GTEST_SKIP() << "the system does not list descriptors";
    writeBytes(directory_ / "f", "x");
    const auto before = testing::openDescriptors();
    EXPECT_THAT(directory_entries(directory_.text().c_str()), ElementsAre("f"));
    EXPECT_THAT(directory_entries(path("/f").c_str()), IsEmpty());
    for (const char* name : {"/f", "/none", ""}) {
        open_for_read(path(name).c_str(), file_mode::text).reset();
        open_for_update(path(name).c_str(), file_mode::text).reset();
        open_for_append(path(name).c_str(), file_mode::text).reset();
    }
    file_identity identity = {};
    EXPECT_TRUE(read_identity(directory_.text().c_str(), identity));
    EXPECT_EQ(testing::openDescriptors(), before);
}

}  // namespace
}  // namespace trv::platform
