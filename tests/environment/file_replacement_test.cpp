#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/environment/file_replacement.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string>
#include <vector>

namespace trv {
namespace {

using testing::bytesOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::textOf;
using testing::writeBytes;

namespace fs = std::filesystem;

constexpr std::chrono::milliseconds shortly(50);

class FileReplacement : public ::testing::Test {
protected:
    std::string pathOf(const std::string& name) const { return (directory_ / name).string(); }
    std::vector<std::string> files() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(directory_.path()))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

    testing::TemporaryDirectory directory_;
};

TEST_F(FileReplacement, PutsATextInThePlaceOfAFile) {
    writeBytes(directory_ / "f", "old");
    {
        file_replacement held(pathOf("f"));
        ASSERT_TRUE(held.is_open());
        EXPECT_EQ(held.open_failure(), 0);
        EXPECT_EQ(held.temporary_path(), pathOf("f") + ".messages.tmp");
        EXPECT_THAT(files(), ElementsAre("f", "f.messages.tmp"));
        EXPECT_EQ(bytesOf(directory_ / "f"), "old");
        EXPECT_EQ(held.write_and_replace("new\ntext\n"), 0);
        EXPECT_FALSE(held.is_open());
    }
    EXPECT_EQ(textOf(directory_ / "f"), "new\ntext\n");
    EXPECT_THAT(files(), ElementsAre("f"));
}

TEST_F(FileReplacement, CanBeCheckedBeforeItReplaces) {
    writeBytes(directory_ / "f", "old");
    file_replacement held(pathOf("f"));
    const auto put = [](std::FILE* stream) { return std::fputs("new\n", stream) >= 0; };
    ASSERT_EQ(held.write(platform::file_mode::binary, put), 0);
    EXPECT_EQ(bytesOf(directory_ / "f"), "old");
    {
        const platform::file_handle written = held.open_written();
        ASSERT_NE(written, nullptr);
        char text[8] = "";
        EXPECT_EQ(std::fread(text, 1, sizeof text, written.get()), 4U);
        EXPECT_EQ(std::string(text), "new\n");
    }
    EXPECT_EQ(held.replace(), 0);
    EXPECT_EQ(bytesOf(directory_ / "f"), "new\n");
    EXPECT_EQ(held.replace(), EBADF);
    EXPECT_THAT(files(), ElementsAre("f"));
}

TEST_F(FileReplacement, KeepsTheFileIfTheWriterFails) {
    writeBytes(directory_ / "f", "old");
    {
        file_replacement held(pathOf("f"));
        const auto put = [](std::FILE* stream) {
            std::fputs("new", stream);
            errno = ENOSPC;
            return false;
        };
        EXPECT_EQ(held.write(platform::file_mode::binary, put), ENOSPC);
    }
    EXPECT_EQ(bytesOf(directory_ / "f"), "old");
    EXPECT_THAT(files(), ElementsAre("f"));
}

TEST_F(FileReplacement, CreatesAFile) {
    file_replacement held(pathOf("f"));
    EXPECT_EQ(held.write_and_replace("new"), 0);
    EXPECT_EQ(bytesOf(directory_ / "f"), "new");
}

TEST_F(FileReplacement, WritesOnce) {
    file_replacement held(pathOf("f"));
    EXPECT_EQ(held.write_and_replace("new"), 0);
    EXPECT_EQ(held.write_and_replace("newer"), EBADF);
    EXPECT_EQ(bytesOf(directory_ / "f"), "new");
    EXPECT_THAT(files(), ElementsAre("f"));
}

TEST_F(FileReplacement, LeavesNothingWithoutAText) {
    writeBytes(directory_ / "f", "old");
    { const file_replacement held(pathOf("f")); }
    EXPECT_EQ(bytesOf(directory_ / "f"), "old");
    EXPECT_THAT(files(), ElementsAre("f"));
}

TEST_F(FileReplacement, ReportsWhyItDoesNotOpen) {
    file_replacement missing(pathOf("none/f"));
    EXPECT_FALSE(missing.is_open());
    EXPECT_EQ(missing.open_failure(), ENOENT);
    EXPECT_EQ(missing.temporary_path(), pathOf("none/f") + ".messages.tmp");
    EXPECT_EQ(missing.write_and_replace("new"), ENOENT);
    fs::create_directory(directory_ / "f.messages.tmp");
    const file_replacement in_the_way(pathOf("f"));
    EXPECT_FALSE(in_the_way.is_open());
    EXPECT_NE(in_the_way.open_failure(), 0);
    EXPECT_THAT(files(), ElementsAre("f.messages.tmp"));
}

TEST_F(FileReplacement, NamesTheTemporaryFileBesideTheTarget) {
    EXPECT_EQ(own_temporary_name("a/b"), "a/b.messages.tmp");
    EXPECT_EQ(shared_temporary_name("a/b"), "a/messages.tmp");
    EXPECT_EQ(shared_temporary_name("a/b\\c"), "a/b\\messages.tmp");
    EXPECT_EQ(shared_temporary_name("a\\b/c"), "a\\b/messages.tmp");
    EXPECT_EQ(shared_temporary_name("c"), "messages.tmp");
}

TEST_F(FileReplacement, NeverTakesTheTargetForItsTemporaryFile) {
    EXPECT_EQ(shared_temporary_name("messages.tmp"), "messages.tmp.messages.tmp");
    EXPECT_EQ(shared_temporary_name("a/messages.tmp"), "a/messages.tmp.messages.tmp");
    EXPECT_EQ(shared_temporary_name("a\\messages.tmp"), "a\\messages.tmp.messages.tmp");
    const bool folds_case = platform::backslash_separates();
    EXPECT_EQ(shared_temporary_name("a/Messages.tmp"),
              folds_case ? "a/Messages.tmp.messages.tmp" : "a/messages.tmp");
}

TEST_F(FileReplacement, WaitsForTheOneBeforeIt) {
    file_replacement first(pathOf("f"));
    const auto start = std::chrono::steady_clock::now();
    const file_replacement second(pathOf("f"), own_temporary_name,
                                  file_replacement::existing::replaced, shortly);
    EXPECT_GE(std::chrono::steady_clock::now() - start, shortly);
    EXPECT_FALSE(second.is_open());
    EXPECT_EQ(second.open_failure(), ETIMEDOUT);
    EXPECT_EQ(first.write_and_replace("first"), 0);
    EXPECT_EQ(bytesOf(directory_ / "f"), "first");
    file_replacement third(pathOf("f"), own_temporary_name, file_replacement::existing::replaced,
                           shortly);
    EXPECT_EQ(third.write_and_replace("third"), 0);
    EXPECT_EQ(bytesOf(directory_ / "f"), "third");
    EXPECT_THAT(files(), ElementsAre("f"));
}

TEST_F(FileReplacement, UsesTheTemporaryFileOfAProcessThatWasKilled) {
    writeBytes(directory_ / "f.messages.tmp", "a longer text that was left behind");
    file_replacement held(pathOf("f"));
    EXPECT_EQ(bytesOf(directory_ / "f.messages.tmp"), "");
    EXPECT_EQ(held.write_and_replace("new"), 0);
    EXPECT_EQ(bytesOf(directory_ / "f"), "new");
    EXPECT_THAT(files(), ElementsAre("f"));
}

TEST_F(FileReplacement, RefusesAFileThatExists) {
    writeBytes(directory_ / "f", "old");
    const auto refused = file_replacement::existing::refused;
    file_replacement held(pathOf("f"), own_temporary_name, refused);
    EXPECT_FALSE(held.is_open());
    EXPECT_EQ(held.open_failure(), EEXIST);
    EXPECT_EQ(held.write_and_replace("new"), EEXIST);
    file_replacement late(pathOf("g"), own_temporary_name, refused);
    writeBytes(directory_ / "g", "made by another program");
    EXPECT_EQ(late.write_and_replace("new"), EEXIST);
    file_replacement missing(pathOf("h"), own_temporary_name, refused);
    EXPECT_EQ(missing.write_and_replace("new"), 0);
    EXPECT_EQ(bytesOf(directory_ / "f"), "old");
    EXPECT_EQ(bytesOf(directory_ / "g"), "made by another program");
    EXPECT_EQ(bytesOf(directory_ / "h"), "new");
}

TEST_F(FileReplacement, KeepsADirectoryAsTarget) {
    fs::create_directories(directory_ / "d/inside");
    {
        file_replacement held(pathOf("d"));
        EXPECT_NE(held.write_and_replace("new"), 0);
    }
    EXPECT_TRUE(fs::is_directory(directory_ / "d/inside"));
    EXPECT_THAT(files(), ElementsAre("d"));
}

}  // namespace
}  // namespace trv
