#include <tests/common/death_test.h>
#include <tests/common/scoped_variable.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/support/file_system.h>
#include <trvfiles/support/platform.h>
#include <trvfiles/support/program_root.h>

#include <gtest/gtest.h>

#include <cstdlib>

namespace trv {
namespace {

using testing::ScopedVariable;

class InstallRoot : public ::testing::Test {
protected:
    std::string published() const {
        const char* home = platform::get_environment("TRVHOME");
        return home == nullptr ? "<none>" : home;
    }
    ScopedVariable home_{"TRVHOME", nullptr};
    ScopedVariable serverHome_{"TRVHOME_LS", nullptr};
};

TEST_F(InstallRoot, IsAboveExeAndMsw) {
    EXPECT_EQ(root_of_program("/opt/trv/exe/msw/program"), "/opt/trv");
    EXPECT_EQ(root_of_program("C:\\TRV\\V1\\EXE\\Msw\\trv.exe"), "C:/TRV/V1");
    EXPECT_EQ(root_of_program("C:\\exe\\msw\\trv.exe"), "C:");
    EXPECT_EQ(root_of_program("\\\\server\\share\\exe\\msw\\trv.exe"), "//server/share");
}

TEST_F(InstallRoot, IsMissingForAnyOtherDirectory) {
    EXPECT_EQ(root_of_program("/opt/trv/exe/bin/program"), "");
    EXPECT_EQ(root_of_program("/opt/trv/bin/msw/program"), "");
    EXPECT_EQ(root_of_program("/opt/exe/msw/bin/program"), "");
    EXPECT_EQ(root_of_program("/exe/msw/p"), "");
    EXPECT_EQ(root_of_program("exe/msw/p"), "");
    EXPECT_EQ(root_of_program("msw/p"), "");
    EXPECT_EQ(root_of_program("p"), "");
    EXPECT_EQ(root_of_program(""), "");
}

TEST_F(InstallRoot, IsMissingForAModuleNameOf512Characters) {
    const std::string end = "/exe/msw/p";
    const std::string longest(511 - end.size(), 'x');
    EXPECT_EQ(root_of_program(longest + end), longest);
    EXPECT_EQ(root_of_program("x" + longest + end), "");
}

TEST_F(InstallRoot, IsTheUnchangedTrvhome) {
    home_.set("C:\\trv\\");
    serverHome_.set("/server");
    EXPECT_STREQ(install_root(false), "C:\\trv\\");
    EXPECT_STREQ(install_root(true), "C:\\trv\\");
    EXPECT_EQ(published(), "C:\\trv\\");
}

TEST_F(InstallRoot, IsTrvhomeLsWithoutTrvhome) {
    serverHome_.set("/server");
    EXPECT_STREQ(install_root(false), "/server");
    EXPECT_EQ(published(), "<none>");
}

TEST_F(InstallRoot, PublishesTrvhomeLs) {
    serverHome_.set("/server");
    EXPECT_STREQ(install_root(true), "/server");
    EXPECT_EQ(published(), "/server");
}

TEST_F(InstallRoot, AnEmptyVariableIsUnset) {
    home_.set("");
    serverHome_.set("/server");
    EXPECT_STREQ(install_root(true), "/server");
    EXPECT_EQ(published(), "/server");
    home_.set(nullptr);
    serverHome_.set("");
    EXPECT_EQ(install_root(false), nullptr);
}

TEST_F(InstallRoot, IsMissingIfTheProgramIsNotInstalled) {
    EXPECT_EQ(install_root(true), nullptr);
    EXPECT_EQ(published(), "<none>");
}

TEST_F(InstallRoot, OutlivesTheVariableThatItCameFrom) {
    home_.set("/first");
    const char* const root = install_root(false);
    home_.set("/second");
    EXPECT_STREQ(root, "/first");
}

// Runs in a copy of this program in the directory in which an installation has its programs.
TEST_F(InstallRoot, DISABLED_OfAnInstalledProgramIsPublished) {
    const char* const expected = platform::get_environment("TRVFILES_TEST_ROOT");
    ASSERT_NE(expected, nullptr);
    EXPECT_STREQ(install_root(false), expected);
    EXPECT_EQ(published(), "<none>");
    EXPECT_STREQ(install_root(true), expected);
    EXPECT_EQ(published(), expected);
}

TEST_F(InstallRoot, IsFoundFromTheProgramFile) {
    const testing::TemporaryDirectory directory;
    const std::filesystem::path programs = directory / "exe" / "MSW";
    std::filesystem::create_directories(programs);
    const std::filesystem::path program = programs / "tests.exe";
    std::filesystem::copy_file(platform::program_file(), program);
    // Windows searches the libraries of a program in the program's directory.
    for (const auto& entry : std::filesystem::directory_iterator(
             std::filesystem::path(platform::program_file()).parent_path())) {
        if (entry.path().extension() != ".dll") continue;
        std::filesystem::copy_file(entry.path(), programs / entry.path().filename());
    }
    const ScopedVariable expected("TRVFILES_TEST_ROOT", directory.text().c_str());
    const std::string command = "\"" + program.string() +
                                "\" --gtest_also_run_disabled_tests --gtest_brief=1"
                                " --gtest_filter=InstallRoot.DISABLED_*";
    EXPECT_EQ(std::system(command.c_str()), 0);
}

}  // namespace
}  // namespace trv
