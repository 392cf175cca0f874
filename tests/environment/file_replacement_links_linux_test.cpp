// Files that are replaced through links, and names that a link takes.

#include <tests/common/file_bytes.h>
#include <tests/environment/replacement_on_linux.h>
#include <trvfiles/environment/file_replacement.h>

#include <sys/stat.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <iterator>

namespace trv {
namespace {

using testing::bytesOf;
using testing::ReplacementOnLinux;
using testing::writeBytes;

namespace fs = std::filesystem;

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

}  // namespace
}  // namespace trv
