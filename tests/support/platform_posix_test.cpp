#include <tests/common/temporary_directory.h>
#include <trvfiles/support/platform.h>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace trv::platform {
namespace {

// The program's end of a new pseudoterminal with so many columns.
class Pseudoterminal {
public:
    explicit Pseudoterminal(unsigned short columns) : terminal_(::posix_openpt(O_RDWR | O_NOCTTY)) {
        EXPECT_EQ(::grantpt(terminal_), 0);
        EXPECT_EQ(::unlockpt(terminal_), 0);
        const int end = ::open(::ptsname(terminal_), O_RDWR | O_NOCTTY);
        winsize size = {};
        size.ws_row = 24;
        size.ws_col = columns;
        EXPECT_EQ(::ioctl(end, TIOCSWINSZ, &size), 0);
        stream_.reset(::fdopen(end, "w"));
    }
    ~Pseudoterminal() {
        stream_.reset();
        ::close(terminal_);
    }
    Pseudoterminal(const Pseudoterminal&) = delete;
    Pseudoterminal& operator=(const Pseudoterminal&) = delete;

    std::FILE* stream() const { return stream_.get(); }

private:
    const int terminal_;
    file_handle stream_;
};

TEST(PlatformOnPosix, TellsTheColumnsOfATerminal) {
    EXPECT_EQ(terminal_columns(Pseudoterminal(132).stream()), 132);
    EXPECT_EQ(terminal_columns(Pseudoterminal(1).stream()), 1);
    EXPECT_EQ(terminal_columns(Pseudoterminal(0).stream()), 80);
}

TEST(PlatformOnPosix, TakesNoPipeOrDeviceForARegularFile) {
    const testing::TemporaryDirectory directory;
    const std::filesystem::path pipe = directory / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_FALSE(regular_file_exists(pipe));
    EXPECT_FALSE(regular_file_exists(pipe.c_str()));
    EXPECT_FALSE(regular_file_exists("/dev/null"));
}

}  // namespace
}  // namespace trv::platform
