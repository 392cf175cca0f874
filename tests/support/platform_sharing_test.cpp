#include <tests/common/file_bytes.h>
#include <tests/common/system.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/support/platform_sharing.h>
#include <trvfiles/support/platform_targets.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <string>

namespace trv::platform {
namespace {

using testing::bytesOf;
using testing::writeBytes;

namespace fs = std::filesystem;

constexpr std::chrono::milliseconds shortly(50);

class PlatformSharing : public ::testing::Test {
protected:
    std::string path(const std::string& name) const { return directory_.text() + "/" + name; }
    int hold(const std::string& name) const { return create_held(path(name).c_str(), shortly); }
    static void write(int held, const char* text) {
        const file_handle stream = open_stream_of(held, file_mode::binary);
        ASSERT_NE(stream, nullptr);
        std::fputs(text, stream.get());
    }
    int move(int held, const std::string& from, const std::string& to,
             existing_file existing = existing_file::replaced) const {
        return move_held(held, path(from).c_str(), path(to).c_str(), existing);
    }

    testing::TemporaryDirectory directory_;
};

TEST_F(PlatformSharing, UpdatingKeepsWhatIsNotWrittenOver) {
    writeBytes(directory_ / "f", "a long old text");
    {
        const file_handle file =
            open_for_update((directory_.text() + "\\f").c_str(), file_mode::binary);
        ASSERT_NE(file, nullptr);
        EXPECT_EQ(std::getc(file.get()), 'a');
        std::rewind(file.get());
        std::fputs("A new", file.get());
    }
    EXPECT_EQ(bytesOf(directory_ / "f"), "A newg old text");
}

TEST_F(PlatformSharing, ReportsWhyAFileIsNotOpenedForUpdate) {
    for (const char* none : {static_cast<const char*>(nullptr), ""}) {
        errno = 0;
        EXPECT_EQ(open_for_update(none, file_mode::text), nullptr);
        EXPECT_EQ(errno, ENOENT);
    }
    errno = 0;
    EXPECT_EQ(open_for_update(path("none").c_str(), file_mode::text), nullptr);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(open_for_update(directory_.text().c_str(), file_mode::text), nullptr);
}

TEST_F(PlatformSharing, OneAtATimeUpdatesAFile) {
    writeBytes(directory_ / "f", "text");
    const std::ptrdiff_t descriptors = testing::openDescriptors();
    {
        const file_handle first = open_for_update(path("f").c_str(), file_mode::text, shortly);
        ASSERT_NE(first, nullptr);
        errno = 0;
        EXPECT_EQ(open_for_update(path("f").c_str(), file_mode::text, shortly), nullptr);
        EXPECT_EQ(errno, ETIMEDOUT);
    }
    EXPECT_NE(open_for_update(path("f").c_str(), file_mode::text, shortly), nullptr);
    EXPECT_EQ(testing::openDescriptors(), descriptors);
}

TEST_F(PlatformSharing, ReadsAHeldFile) {
    const int held = hold("f");
    ASSERT_GE(held, 0);
    write(held, "a\r\nb\x1A\n");
    for (int time = 0; time < 2; ++time) {
        const file_handle reader = open_reader_of(held);
        ASSERT_NE(reader, nullptr);
        char text[16] = "";
        EXPECT_EQ(std::fread(text, 1, sizeof text, reader.get()), 6U);
        EXPECT_EQ(std::string(text), "a\r\nb\x1A\n");
    }
    release_held(held);
    EXPECT_EQ(open_reader_of(-1), nullptr);
}

TEST_F(PlatformSharing, HoldsAnEmptyFileForOneCaller) {
    writeBytes(directory_ / "f", "left behind");
    const int held = hold("f");
    ASSERT_GE(held, 0);
    EXPECT_EQ(fs::file_size(directory_ / "f"), 0U);
    errno = 0;
    EXPECT_EQ(hold("f"), -1);
    EXPECT_EQ(errno, ETIMEDOUT);
    EXPECT_TRUE(fs::exists(directory_ / "f"));
    remove_held(held, path("f").c_str());
    EXPECT_FALSE(fs::exists(directory_ / "f"));
    const int next = hold("f");
    EXPECT_GE(next, 0);
    remove_held(next, path("f").c_str());
}

TEST_F(PlatformSharing, ReportsWhyAFileIsNotHeld) {
    for (const char* name : {"none/f", ""}) {
        errno = 0;
        EXPECT_EQ(create_held(name, shortly), -1);
        EXPECT_EQ(errno, ENOENT) << name;
    }
    EXPECT_EQ(create_held(directory_.text().c_str(), shortly), -1);
    EXPECT_TRUE(fs::is_directory(directory_.path()));
}

TEST_F(PlatformSharing, WritesThroughStreamsWithoutReleasing) {
    const std::ptrdiff_t descriptors = testing::openDescriptors();
    const int held = hold("f");
    write(held, "one ");
    write(held, "two");
    EXPECT_EQ(hold("f"), -1);
    EXPECT_EQ(move(held, "f", "g"), 0);
    release_held(held);
    EXPECT_EQ(bytesOf(directory_ / "g"), "one two");
    EXPECT_EQ(testing::openDescriptors(), descriptors);
}

TEST_F(PlatformSharing, ReplacesAFile) {
    writeBytes(directory_ / "old", "old");
    const int held = hold("new");
    write(held, "new");
    EXPECT_EQ(move(held, "new", "old"), 0);
    EXPECT_FALSE(fs::exists(directory_ / "new"));
    release_held(held);
    EXPECT_EQ(bytesOf(directory_ / "old"), "new");
}

TEST_F(PlatformSharing, RenamesToAFreeName) {
    for (const existing_file existing : {existing_file::replaced, existing_file::refused}) {
        const int held = hold("new");
        write(held, "new");
        EXPECT_EQ(move(held, "new", "f", existing), 0);
        release_held(held);
        EXPECT_EQ(bytesOf(directory_ / "f"), "new");
        EXPECT_FALSE(fs::exists(directory_ / "new"));
        fs::remove(directory_ / "f");
    }
}

TEST_F(PlatformSharing, RefusesANameThatIsTaken) {
    writeBytes(directory_ / "old", "old");
    fs::create_directory(directory_ / "d");
    const int held = hold("new");
    EXPECT_EQ(move(held, "new", "old", existing_file::refused), EEXIST);
    EXPECT_EQ(move(held, "new", "d", existing_file::refused), EEXIST);
    EXPECT_EQ(bytesOf(directory_ / "old"), "old");
    EXPECT_TRUE(fs::exists(directory_ / "new"));
    remove_held(held, path("new").c_str());
}

TEST_F(PlatformSharing, AFailedRenamingChangesNeitherFile) {
    fs::create_directories(directory_ / "d/e");
    const int held = hold("new");
    EXPECT_NE(move(held, "new", "d"), 0);
    EXPECT_EQ(move(held, "new", "none/f"), ENOENT);
    EXPECT_TRUE(fs::is_directory(directory_ / "d/e"));
    EXPECT_TRUE(fs::exists(directory_ / "new"));
    EXPECT_EQ(move(held, "new", "f"), 0);
    release_held(held);
}

TEST_F(PlatformSharing, FollowsNothingButLinks) {
    writeBytes(directory_ / "f", "text");
    for (const std::string& name :
         {path("f"), path("none"), path("none/f"), directory_.text(), std::string()}) {
        std::string followed = name;
        EXPECT_EQ(follow_links(followed), 0) << name;
        EXPECT_EQ(followed, name);
    }
}

TEST_F(PlatformSharing, KnowsWhichNamesAreTaken) {
    writeBytes(directory_ / "f", "text");
    EXPECT_TRUE(is_name_taken(path("f").c_str()));
    EXPECT_TRUE(is_name_taken(directory_.text().c_str()));
    EXPECT_FALSE(is_name_taken(path("none").c_str()));
}

}  // namespace
}  // namespace trv::platform
