#include <tests/common/child_process.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/facade/CQvFilesIO.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace fs = std::filesystem;
using namespace std::string_literals;
using namespace trv::testing;

namespace {

/// Both forms of the call, narrow and wide.
class CopyFile : public ::testing::TestWithParam<bool> {
protected:
    bool copyPath(const fs::path& source, const fs::path& destination) {
        CQvFilesIO files(L"/unused"s);
        if (GetParam()) return files.copyFile(source.wstring(), destination.wstring());
        return files.copyFile(source.string(), destination.string());
    }
    bool copy(const std::string& source, const std::string& destination) {
        return copyPath(directory_ / source, directory_ / destination);
    }
    void write(const std::string& name, const std::string& bytes) {
        writeBytes(directory_ / name, bytes);
    }
    std::string bytes(const std::string& name) { return bytesOf(directory_ / name); }

    TemporaryDirectory directory_;
};

INSTANTIATE_TEST_SUITE_P(Forms, CopyFile, ::testing::Bool(), [](const auto& form) {
    return std::string(form.param ? "Wide" : "Narrow");
});

}  // namespace

TEST_P(CopyFile, CopiesEveryByte) {
    std::string all;
    for (int i = 0; i < 3000; ++i)
        for (int byte = 0; byte < 256; ++byte)
            all += static_cast<char>(byte);
    write("a", all + "\r\n\n\x1A\0"s);
    EXPECT_TRUE(copy("a", "b"));
    EXPECT_EQ(bytes("b"), all + "\r\n\n\x1A\0"s);
    EXPECT_EQ(bytes("a"), bytes("b"));
}

TEST_P(CopyFile, TruncatesALongerDestination) {
    write("a", "new");
    write("b", "something longer");
    EXPECT_TRUE(copy("a", "b"));
    EXPECT_EQ(bytes("b"), "new");
}

TEST_P(CopyFile, CopiesAnEmptyFile) {
    write("a", "");
    write("b", "old");
    EXPECT_TRUE(copy("a", "b"));
    EXPECT_TRUE(fs::exists(directory_ / "b"));
    EXPECT_EQ(bytes("b"), "");
}

TEST_P(CopyFile, RefusesTheSameStringTwice) {
    write("a", "x");
    EXPECT_FALSE(copy("a", "a"));
    EXPECT_EQ(bytes("a"), "x");
    EXPECT_FALSE(copy("missing", "missing"));
    EXPECT_FALSE(fs::exists(directory_ / "missing"));
    EXPECT_FALSE(copyPath("", ""));
}

TEST_P(CopyFile, EmptiesAFileUnderAnotherSpellingOfItsName) {
    write("a", "x");
    EXPECT_TRUE(copy("./a", "a"));
    EXPECT_TRUE(fs::exists(directory_ / "a"));
    EXPECT_EQ(bytes("a"), "");

    fs::create_directory(directory_ / "d");
    write("d/a", "x");
    EXPECT_TRUE(copyPath(directory_.text() + "/d\\a", directory_.text() + "/d/a"));
    EXPECT_EQ(bytes("d/a"), "");
}

TEST_P(CopyFile, TreatsBackslashesAsSeparators) {
    fs::create_directory(directory_ / "d");
    write("d/a", "x");
    EXPECT_TRUE(copyPath(directory_.text() + "\\d\\a", directory_.text() + "\\d\\b"));
    EXPECT_EQ(bytes("d/b"), "x");
}

TEST_P(CopyFile, LeavesAnEmptyDestinationForAMissingSource) {
    EXPECT_FALSE(copy("missing", "b"));
    EXPECT_TRUE(fs::exists(directory_ / "b"));
    EXPECT_EQ(bytes("b"), "");
    write("c", "old");
    EXPECT_FALSE(copy("missing", "c"));
    EXPECT_TRUE(fs::exists(directory_ / "c"));
    EXPECT_EQ(bytes("c"), "");
    EXPECT_FALSE(copyPath("", directory_ / "d"));
    EXPECT_TRUE(fs::exists(directory_ / "d"));
}

TEST_P(CopyFile, LeavesAnEmptyDestinationForADirectoryAsSource) {
    fs::create_directory(directory_ / "a");
    write("b", "old");
    EXPECT_FALSE(copy("a", "b"));
    EXPECT_TRUE(fs::exists(directory_ / "b"));
    EXPECT_EQ(bytes("b"), "");
}

TEST_P(CopyFile, RefusesADestinationThatDoesNotOpen) {
    write("a", "x");
    fs::create_directory(directory_ / "d");
    EXPECT_FALSE(copy("a", "d"));
    EXPECT_FALSE(copy("a", "missing/b"));
    EXPECT_FALSE(copy("a", "a/b"));
    EXPECT_FALSE(copyPath(directory_ / "a", ""));
    EXPECT_FALSE(copy("a", std::string(300, 'n')));
    EXPECT_EQ(bytes("a"), "x");
    EXPECT_TRUE(fs::is_empty(directory_ / "d"));
}

TEST_P(CopyFile, ResolvesNeitherNameAgainstTheDirectory) {
    write("here", "x");
    fs::create_directory(directory_ / "bound");
    const fs::path before = fs::current_path();
    fs::current_path(directory_.path());
    CQvFilesIO files((directory_ / "bound").wstring());
    EXPECT_TRUE(GetParam() ? files.copyFile(L"here"s, L"there"s)
                           : files.copyFile("here"s, "there"s));
    fs::current_path(before);
    EXPECT_EQ(bytes("there"), "x");
    EXPECT_TRUE(fs::is_empty(directory_ / "bound"));
}

TEST_P(CopyFile, LeavesAnEmptyDestinationForAForbiddenSource) {
    if (!can_fork) GTEST_SKIP() << "needs a child process";
    write("closed", "secret");
    write("open", "old");
    fs::permissions(directory_ / "closed", fs::perms::none);
    fs::permissions(directory_ / "open", fs::perms::all);
    EXPECT_TRUE(passesInChild([&] {
        ASSERT_TRUE(becomeOrdinaryUser());
        EXPECT_FALSE(copy("closed", "open"));
    }));
    EXPECT_EQ(bytes("open"), "");
}

TEST_P(CopyFile, DoesNotChangeAForbiddenDestination) {
    if (!can_fork) GTEST_SKIP() << "needs a child process";
    write("closed", "old");
    write("open", "x");
    fs::permissions(directory_ / "closed", fs::perms::owner_read | fs::perms::others_read);
    fs::permissions(directory_ / "open", fs::perms::all);
    EXPECT_TRUE(passesInChild([&] {
        ASSERT_TRUE(becomeOrdinaryUser());
        EXPECT_FALSE(copy("open", "closed"));
    }));
    EXPECT_EQ(bytes("closed"), "old");
    EXPECT_EQ(bytes("open"), "x");
}

TEST_P(CopyFile, DoesNotSeeAFullDevice) {
    if (!fs::exists("/dev/full")) GTEST_SKIP() << "there is no full device";
    write("a", std::string(100000, 'x'));
    EXPECT_TRUE(copyPath(directory_ / "a", "/dev/full"));
    write("small", "x");
    EXPECT_TRUE(copyPath(directory_ / "small", "/dev/full"));
}

TEST_P(CopyFile, DoesNotSeeALimitOnTheSizeOfFiles) {
    if (!can_fork) GTEST_SKIP() << "needs a child process";
    write("a", std::string(100000, 'x'));
    EXPECT_TRUE(passesInChild([&] {
        ASSERT_TRUE(limitFileSize(1000));
        EXPECT_TRUE(copy("a", "b"));
    }));
    EXPECT_EQ(bytes("b"), std::string(1000, 'x'));
}
