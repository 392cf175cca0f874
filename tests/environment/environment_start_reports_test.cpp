#include <tests/common/channel_log.h>
#include <tests/common/child_process.h>
#include <tests/common/death_test.h>
#include <tests/environment/installation.h>
#include <tests/environment/start_up.h>
#include <trvfiles/environment/environment_start.h>
#include <trvfiles/environment/variables.h>
#include <trvfiles/support/dynamic_storage.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

// The start-up happens once in a process, so each test runs in its own process.

namespace trv {
namespace {

using testing::ChannelLog;
using testing::closing;
using testing::closingAfterOneFile;
using testing::closingAfterTwoFiles;
using ::testing::ElementsAre;
using testing::homeText;
using testing::Installation;
using ::testing::IsEmpty;
using testing::listError;
using testing::loading;
using testing::notLoaded;
using testing::opening;
using testing::overloading;
using testing::progress;
using testing::runAndLeave;
using testing::valueOf;

using EnvironmentStart = testing::ChildProcessTest;

// Failures, with handlers that return

TEST_F(EnvironmentStart, ReportsAMissingRootAtEachLookup) {
    const auto start = [] {
        const Installation installation;
        platform::set_environment("TRVHOME", nullptr);
        const ChannelLog log;
        EXPECT_EQ(valueOf("N"), "<undefined>");
        EXPECT_EQ(valueOf("N"), "<undefined>");
        const char* text = "The environment variable 'TRVHOME' is not defined\n";
        EXPECT_THAT(log.fatals(), ElementsAre(text, text));
        EXPECT_THAT(progress(log), ElementsAre(opening, opening));
        EXPECT_EQ(environment_store(), nullptr);
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, ReportsAMissingHomeFileAndTriesAgain) {
    const auto start = [] {
        const Installation installation;
        const ChannelLog log;
        EXPECT_EQ(valueOf("N"), "<undefined>");
        EXPECT_THAT(log.fatals(), ElementsAre(notLoaded(installation.homeFile())));
        EXPECT_EQ(environment_store(), nullptr);
        installation.write("config/environ.cfg", "[var]\nN = home\n");
        EXPECT_EQ(valueOf("N"), "home");
        const message_store* store = environment_store();
        installation.write("config/environ.cfg", "[var]\nN = changed\nM = 1\n");
        EXPECT_EQ(valueOf("M"), "<undefined>");
        load_environment();
        EXPECT_EQ(valueOf("N"), "home");
        EXPECT_EQ(environment_store(), store);
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, ReportsAHomeFileThatIsAborted) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg",
                           "[var]\nN = home\n[" + std::string(100, 'n') + "]\n");
        const ChannelLog log;
        EXPECT_EQ(valueOf("N"), "<undefined>");
        EXPECT_THAT(log.fatals(), ElementsAre("load_messages: file '" + installation.homeFile() +
                                                  "', line 0 : Error loading file.",
                                              notLoaded(installation.homeFile())));
        EXPECT_THAT(progress(log), ElementsAre(opening, loading(installation.homeFile())));
        EXPECT_EQ(environment_store(), nullptr);
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, ReportsAHomeFileThatIsADirectory) {
    const auto start = [] {
        const Installation installation;
        installation.makeDirectory("config/environ.cfg");
        const ChannelLog log;
        EXPECT_EQ(valueOf("N"), "<undefined>");
        EXPECT_THAT(log.fatals(), ElementsAre("load_messages: file '" + installation.homeFile() +
                                                  "', line 0 : Error opening file - " +
                                                  std::generic_category().message(EISDIR),
                                              notLoaded(installation.homeFile())));
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, NeverReadsTheHomeFileOfAnEmptyRoot) {
    const auto start = [] {
        const Installation installation;
        platform::set_environment("TRVHOME", "/");
        const ChannelLog log;
        EXPECT_EQ(valueOf("N"), "<undefined>");
        EXPECT_THAT(log.fatals(), ElementsAre("Error loading '\\config\\environ.cfg'\n"));
    };
    TRV_EXPECT_IN_CHILD(start);
}

// The file that the path would name exists there.
TEST_F(EnvironmentStart, NeverReadsTheHomeFileOfAnEmptyRootThoughItExists) {
    if (!testing::mayChangeRoot()) GTEST_SKIP() << "needs the right to change the root directory";
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg", "[var]\nN = home\n");
        EXPECT_TRUE(testing::passesInChild([&installation] {
            ASSERT_TRUE(testing::changeRoot(installation.root().c_str()));
            platform::set_environment("TRVHOME", "/");
            const ChannelLog log;
            EXPECT_EQ(valueOf("N"), "<undefined>");
            EXPECT_THAT(log.fatals(), ElementsAre("Error loading '\\config\\environ.cfg'\n"));
            platform::set_environment("TRVHOME", "/.");
            EXPECT_EQ(valueOf("N"), "home");
        }));
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, FreesTheStorageOfAHomeFileThatIsAborted) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg",
                           "[var]\nN = home\n[" + std::string(100, 'n') + "]\n");
        const ChannelLog log;
        EXPECT_EQ(valueOf("N"), "<undefined>");
        EXPECT_EQ(log.fatals().size(), 2U);
        char inUse[64];
        storage_report(inUse, sizeof inUse);
        EXPECT_STREQ(inUse, "data base memory : 0/0");
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, ReportsARootThatIsTooLong) {
    const auto start = [] {
        const Installation installation;
        // 492 characters and "\config\environ.cfg" are as long as a path may be.
        std::string below;
        while (below.size() < 492 - installation.root().size())
            below += below.size() % 50 == 0 ? '/' : 'd';
        if (below.back() == '/') below.back() = 'd';
        installation.write(below.substr(1) + "d/config/environ.cfg", "[var]\nN = long\n");
        installation.write(below.substr(1) + "/config/environ.cfg", "[var]\nN = short\n");
        const std::string root = installation.root() + below;
        platform::set_environment("TRVHOME", (root + "d").c_str());
        const ChannelLog log;
        EXPECT_EQ(valueOf("N"), "<undefined>");
        EXPECT_THAT(log.fatals(), ElementsAre(notLoaded(root + "d\\config\\environ.cfg")));
        platform::set_environment("TRVHOME", root.c_str());
        EXPECT_EQ(valueOf("N"), "short");
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, TreatsAnElementThatIsTooLongAsAMissingFile) {
    const auto start = [] {
        const Installation installation;
        std::string below;
        while (below.size() < 500 - installation.root().size())
            below += below.size() % 50 == 0 ? '/' : 'd';
        if (below.back() == '/') below.back() = 'd';
        installation.write("config/environ.cfg", homeText(installation.root() + below));
        installation.write(below.substr(1) + "/environ.cfg", "[var]\nN = long\n");
        const ChannelLog log;
        EXPECT_EQ(valueOf("N"), "home");
        EXPECT_EQ(progress(log).back(), closingAfterTwoFiles);
        EXPECT_THAT(log.fatals(), IsEmpty());
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, KeepsTheStoreAfterAListThatDoesNotExpand) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg", homeText("$(TRVHOME"));
        const ChannelLog log;
        EXPECT_EQ(valueOf("N"), "home");
        EXPECT_THAT(log.fatals(), ElementsAre(listError));
        EXPECT_THAT(progress(log), ElementsAre(opening, loading(installation.homeFile())));
        EXPECT_EQ(valueOf("M"), "<undefined>");
        EXPECT_EQ(log.fatals().size(), 1U);
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, TreatsAListOfMoreThan511CharactersAsAnError) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg", homeText(std::string(512, 'a')));
        const ChannelLog log;
        EXPECT_EQ(valueOf("N"), "home");
        EXPECT_THAT(log.fatals(), ElementsAre(listError));
        EXPECT_THAT(log.errors(),
                    ElementsAre("_Expand(\"?ENV\") = error -32 - buffer size 512 too small"));
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, KeepsTheStoreIfTheSecondFileSpoilsTheList) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg", homeText("$TRVHOME/b;$TRVHOME/a"));
        installation.write("a/environ.cfg", "[var]\nN = a\n[path]\nENV = ${X\n");
        const ChannelLog log;
        EXPECT_EQ(valueOf("N"), "a");
        EXPECT_THAT(log.fatals(), ElementsAre(listError));
        EXPECT_THAT(progress(log), ElementsAre(opening, loading(installation.homeFile()),
                                               loading(installation.path("a/environ.cfg"))));
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, GoesOnAfterASecondFileThatDoesNotLoad) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg", homeText("$TRVHOME/b;$TRVHOME/a"));
        installation.makeDirectory("a/environ.cfg");
        installation.write("b/environ.cfg", "[var]\nN = b\n");
        const ChannelLog log;
        EXPECT_EQ(valueOf("N"), "b");
        ASSERT_EQ(log.fatals().size(), 2U);
        EXPECT_EQ(log.fatals()[1], notLoaded(installation.path("a/environ.cfg")));
        EXPECT_EQ(progress(log).back(), closing);
    };
    TRV_EXPECT_IN_CHILD(start);
}

// The default handlers

TEST_F(EnvironmentStart, EndsTheProcessWithoutARoot) {
    const auto start = [] {
        static const Installation installation;
        platform::set_environment("TRVHOME", nullptr);
        get_variable("N");
    };
    TRV_EXPECT_FATAL(start, "The environment variable 'TRVHOME' is not defined\n\n");
}

TEST_F(EnvironmentStart, EndsTheProcessWithoutAHomeFile) {
    const auto start = [] {
        static const Installation installation;
        platform::set_environment("TRVHOME", "no_such_root");
        get_variable("N");
    };
    TRV_EXPECT_FATAL(start, "Error loading 'no_such_root\\config\\environ.cfg'\n\n");
}

TEST_F(EnvironmentStart, EndsTheProcessAfterAListThatDoesNotExpand) {
    const auto start = [] {
        static const Installation installation;
        installation.write("config/environ.cfg", homeText("$(TRVHOME"));
        get_variable("N");
    };
    TRV_EXPECT_FATAL(start,
                     "_Expand(\"?ENV\") = error -31 - syntax error\n"
                     "Error loading 'environ.cfg' files\n\n");
}

/// What the process writes to standard output while it makes its first lookup.
std::string outputOfStart(const Installation& installation) {
    const std::string file = installation.file("output").string();
    if (std::freopen(file.c_str(), "w", stdout) == nullptr) return "<no output>";
    get_variable("N");
    std::fflush(stdout);
    return testing::textOf(file);
}

TEST_F(EnvironmentStart, ShowsNothingByDefault) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg", homeText("$TRVHOME/b;$TRVHOME/a"));
        EXPECT_EQ(outputOfStart(installation), "");
    };
    EXPECT_EXIT(runAndLeave(start), ::testing::ExitedWithCode(0), ::testing::Eq(std::string()));
}

TEST_F(EnvironmentStart, ShowsFirstAndLastLinesAndOverloadingWhileEchoIsOn) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg", homeText("$TRVHOME/b;$TRVHOME/a"));
        set_echo_output(1);
        EXPECT_EQ(outputOfStart(installation), std::string(opening) + "\n" +
                                                   overloading(installation.path("b/environ.cfg")) +
                                                   "\n" + closing + "\n");
        EXPECT_EQ(echo_output(), 1);
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, ShowsTwoLinesOfAShortLoadWhileEchoIsOn) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg", homeText("$TRVHOME/a"));
        set_echo_output(1);
        EXPECT_EQ(outputOfStart(installation),
                  std::string(opening) + "\n" + closingAfterTwoFiles + "\n");
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, ShowsEverythingInVerboseMode) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg", "[var]\nN = home\n");
        platform::set_environment("TRV_TRVFILES_VERBOSE", "1");
        EXPECT_EQ(outputOfStart(installation),
                  std::string(opening) + "\n" + loading(installation.homeFile()) +
                      "\nENV = <undefined path>\n" + closingAfterOneFile + "\n");
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, SendsFatalReportsToStandardErrorWhileEchoIsOn) {
    const auto start = [] {
        static const Installation installation;
        platform::set_environment("TRVHOME", "no_such_root");
        set_echo_output(1);
        get_variable("N");
    };
    TRV_EXPECT_FATAL(start, "Error loading 'no_such_root\\config\\environ.cfg'\n\n");
}

// Flags after each outcome

TEST_F(EnvironmentStart, RestoresTheEchoFlagAfterFailures) {
    const auto start = [] {
        const Installation installation;
        const ChannelLog log;
        set_echo_output(1);
        platform::set_environment("TRVHOME", nullptr);
        get_variable("N");
        EXPECT_EQ(echo_output(), 1);
        platform::set_environment("TRVHOME", installation.root().c_str());
        get_variable("N");
        EXPECT_EQ(echo_output(), 1);
        installation.write("config/environ.cfg", homeText("$(X"));
        get_variable("N");
        EXPECT_EQ(echo_output(), 1);
        EXPECT_EQ(log.fatals().size(), 3U);
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, StartsAnewAfterAHandlerHasThrown) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg", "[var]\nN = home\n/what\n");
        const ChannelLog log;
        set_echo_output(1);
        set_fatal_handler([](const char* message) { throw std::runtime_error(message); });
        EXPECT_THROW(get_variable("N"), std::runtime_error);
        EXPECT_EQ(environment_store(), nullptr);
        EXPECT_EQ(echo_output(), 1);
        EXPECT_TRUE(set_record_flag(true));
        installation.write("config/environ.cfg", "[var]\nN = home\n");
        EXPECT_EQ(valueOf("N"), "home");
        EXPECT_EQ(valueOf("PC"), "1");
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, KeepsTheHomeFileIfAHandlerThrowsLater) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg", homeText("$TRVHOME/a"));
        installation.write("a/environ.cfg", "/what\n");
        const ChannelLog log;
        set_echo_output(1);
        set_fatal_handler([](const char* message) { throw std::runtime_error(message); });
        EXPECT_THROW(get_variable("N"), std::runtime_error);
        EXPECT_EQ(echo_output(), 1);
        EXPECT_EQ(valueOf("N"), "home");
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, LetsHandlersLookUpVariables) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg",
                           "[var]\nN = home\n/endif\n[path]\nENV = $TRVHOME/b;$TRVHOME/a\n");
        const ChannelLog log;
        static std::vector<std::string> seen;
        const auto lookUp = [](const char*) {
            seen.push_back(valueOf("N"));
            load_environment();
        };
        set_trace_handler(lookUp);
        set_fatal_handler(lookUp);
        EXPECT_EQ(valueOf("N"), "home");
        EXPECT_EQ(seen.front(), "<undefined>");
        EXPECT_EQ(seen.back(), "home");
    };
    TRV_EXPECT_IN_CHILD(start);
}

}  // namespace
}  // namespace trv
