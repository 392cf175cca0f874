#include <tests/common/file_bytes.h>
#include <tests/common/scoped_variable.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/support/platform_programs.h>

#include <gtest/gtest.h>

#include <filesystem>

namespace trv::platform {
namespace {

class OpenOnDesktop : public ::testing::Test {
protected:
    void install(const std::string& script) const {
        const std::filesystem::path program = directory_ / "xdg-open";
        testing::writeBytes(program, "#!/bin/sh\n" + script);
        std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    }

    const testing::TemporaryDirectory directory_;
    const testing::ScopedVariable path_{"PATH", directory_.text().c_str()};
};

TEST_F(OpenOnDesktop, PassesTheFileAsOneArgument) {
    install("printf '%s\\n' \"$#\" \"$1\" > \"${0%/*}/seen\"\n");
    EXPECT_EQ(open_on_desktop("/tmp/a b;$(c)'.html"), "");
    EXPECT_EQ(testing::bytesOf(directory_ / "seen"), "1\n/tmp/a b;$(c)'.html\n");
}

TEST_F(OpenOnDesktop, ReportsTheStatusOfAFailure) {
    install("exit 4\n");
    EXPECT_EQ(open_on_desktop("/tmp/a.html"), "xdg-open ended with status 4");
    install("kill -9 $$\n");
    EXPECT_EQ(open_on_desktop("/tmp/a.html"), "xdg-open was ended by a signal");
}

TEST_F(OpenOnDesktop, ReportsAMissingProgram) {
    EXPECT_EQ(open_on_desktop("/tmp/a.html"), "xdg-open: No such file or directory");
}

}  // namespace
}  // namespace trv::platform
