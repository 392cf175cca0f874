#include <tests/common/channel_log.h>
#include <tests/common/death_test.h>
#include <tests/environment/installation.h>
#include <trvfiles/environment/environment_start.h>
#include <trvfiles/environment/store_writer.h>
#include <trvfiles/environment/variables.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

// The start-up happens once in a process, so each test runs in one of its own.

namespace trv {
namespace {

using testing::ChannelLog;
using ::testing::ElementsAre;
using testing::Installation;
using ::testing::IsEmpty;
using testing::runAndLeave;

constexpr char opening[] = "LOADING ENVIRONMENT FILES ....";
constexpr char closing[] = "LOADING ENVIRONMENT FILES ....done.";
constexpr char closingAfterOneFile[] = ".LOADING ENVIRONMENT FILES ....done.";
constexpr char closingAfterTwoFiles[] = "..LOADING ENVIRONMENT FILES ....done.";
constexpr char listError[] = "Error loading 'environ.cfg' files\n";

std::string loading(const std::string& file) {
    return "loading configuration file '" + file + "'";
}

std::string overloading(const std::string& file) {
    return "Overloading '" + file + "'\n";
}

std::string notLoaded(const std::string& file) {
    return "Error loading '" + file + "'\n";
}

std::string valueOf(const char* name) {
    const char* value = get_variable(name);
    return value != nullptr ? value : "<undefined>";
}

/// The trace lines of the loader itself, without those of lookups and expansions.
std::vector<std::string> progress(const ChannelLog& log) {
    std::vector<std::string> lines;
    for (const std::string& line : log.traces()) {
        const std::string start = line.substr(0, line.find(' '));
        if (start == "LOADING" || start == ".LOADING" || start == "..LOADING" ||
            start == "loading" || start == "Overloading") {
            lines.push_back(line);
        }
    }
    return lines;
}

/// A home file with this list of further directories.
std::string homeText(const std::string& list) {
    return "[var]\nN = home\nFROM_HOME = 1\n[path]\nENV = " + list + "\n";
}

using EnvironmentStart = testing::ChildProcessTest;

TEST_F(EnvironmentStart, LoadsTheHomeFileAloneWithoutAList) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg", "[var]\nN = home\n");
        const ChannelLog log;
        EXPECT_EQ(valueOf("N"), "home");
        EXPECT_THAT(progress(log),
                    ElementsAre(opening, loading(installation.homeFile()), closingAfterOneFile));
        EXPECT_THAT(log.errors(), IsEmpty());
        EXPECT_THAT(log.fatals(), IsEmpty());
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, PassesTheDirectoryOfTheHomeFileOver) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg", homeText("$TRVHOME/config"));
        const ChannelLog log;
        EXPECT_EQ(valueOf("N"), "home");
        EXPECT_THAT(progress(log),
                    ElementsAre(opening, loading(installation.homeFile()), closingAfterOneFile));
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, TakesTheRootItselfForASecondDirectory) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg", homeText("$TRVHOME"));
        installation.write("environ.cfg", "[var]\nN = root\n");
        const ChannelLog log;
        EXPECT_EQ(valueOf("N"), "root");
        EXPECT_THAT(progress(log),
                    ElementsAre(opening, loading(installation.homeFile()),
                                loading(installation.path("environ.cfg")), closingAfterTwoFiles));
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, LoadsTwoFiles) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg", homeText("$TRVHOME/a;$TRVHOME/config"));
        installation.write("a/environ.cfg", "[var]\nN = a\n");
        const ChannelLog log;
        EXPECT_EQ(valueOf("N"), "a");
        EXPECT_EQ(valueOf("FROM_HOME"), "1");
        EXPECT_THAT(progress(log),
                    ElementsAre(opening, loading(installation.homeFile()),
                                loading(installation.path("a/environ.cfg")), closingAfterTwoFiles));
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, LoadsThreeFilesAndTheFirstElementWins) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg",
                           homeText("$TRVHOME/b,$TRVHOME/a/;$TRVHOME/config"));
        installation.write("a/environ.cfg", "[var]\nN = a\nA = 1\n");
        installation.write("b/environ.cfg", "[var]\nN = b\nB = 1\n");
        const ChannelLog log;
        EXPECT_EQ(valueOf("n"), "b");
        EXPECT_EQ(valueOf("A"), "1");
        EXPECT_EQ(valueOf("B"), "1");
        EXPECT_THAT(progress(log),
                    ElementsAre(opening, loading(installation.homeFile()),
                                loading(installation.path("a/environ.cfg")),
                                overloading(installation.path("b/environ.cfg")), closing));
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, LoadsEveryDirectoryBeforeTheThirdAgain) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg",
                           homeText("$TRVHOME/config;$TRVHOME/a;$TRVHOME/b;$TRVHOME/a"));
        installation.write("a/environ.cfg", "[var]\nN = +a\n");
        installation.write("b/environ.cfg", "[var]\nN = +b\n");
        const ChannelLog log;
        EXPECT_EQ(valueOf("N"), "home");
        EXPECT_THAT(progress(log),
                    ElementsAre(opening, loading(installation.homeFile()),
                                loading(installation.path("a/environ.cfg")),
                                overloading(installation.path("b/environ.cfg")),
                                overloading(installation.path("a/environ.cfg")),
                                overloading(installation.path("config/environ.cfg")), closing));
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, ExtendsValuesWithAPlusInLoadOrder) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg", homeText("$TRVHOME/b;$TRVHOME/a"));
        installation.write("a/environ.cfg", "[var]\nN = +;a\n");
        installation.write("b/environ.cfg", "[var]\nN = b;+\n");
        const ChannelLog log;
        EXPECT_EQ(valueOf("N"), "b;home;a");
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, TakesTheListThatTheSecondFileHasChanged) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg", homeText("$TRVHOME/x;$TRVHOME/a"));
        installation.write("a/environ.cfg", "[path]\nENV = $TRVHOME/b;$TRVHOME/a\n");
        installation.write("b/environ.cfg", "[var]\nN = b\n");
        const ChannelLog log;
        EXPECT_EQ(valueOf("N"), "b");
        EXPECT_THAT(progress(log),
                    ElementsAre(opening, loading(installation.homeFile()),
                                loading(installation.path("a/environ.cfg")),
                                overloading(installation.path("b/environ.cfg")), closing));
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, EndsAfterTwoFilesWhereTheSecondOneEmptiesTheList) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg", homeText("$TRVHOME/x;$TRVHOME/a"));
        installation.write("a/environ.cfg", "[path]\nENV =\n");
        const ChannelLog log;
        valueOf("N");
        EXPECT_EQ(progress(log).back(), closingAfterTwoFiles);
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, AsksForTheListAsAPathVariable) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg",
                           "[var]\nENV = $TRVHOME/a\n[path]\nENV = $TRVHOME/b\n");
        installation.write("a/environ.cfg", "[var]\nN = a\n");
        installation.write("b/environ.cfg", "[var]\nN = b\n");
        installation.write("c/environ.cfg", "[var]\nN = c\n");
        platform::set_environment("ENV", (installation.root() + "/a").c_str());
        const ChannelLog log;
        EXPECT_EQ(valueOf("N"), "b");
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, AsksTheProcessEnvironmentForTheListFirst) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg", homeText("$TRVHOME/b"));
        installation.write("b/environ.cfg", "[var]\nN = b\n");
        installation.write("c/environ.cfg", "[var]\nN = c\n");
        platform::set_environment("ENVPATH", (installation.root() + "/c").c_str());
        const ChannelLog log;
        EXPECT_EQ(valueOf("N"), "c");
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, TakesTrvNullForAnUndefinedList) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg",
                           "[var]\nTRVNULL = " + installation.root() + "/a\n");
        installation.write("a/environ.cfg", "[var]\nN = a\n");
        const ChannelLog log;
        EXPECT_EQ(valueOf("N"), "a");
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, KeepsBlanksOfTheFirstTwoAndTrimsTheOthers) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg",
                           homeText("$TRVHOME/x; $TRVHOME/c ;$TRVHOME/a; $TRVHOME/b"));
        installation.write("b/environ.cfg", "[var]\nB = 1\n");
        installation.write("c/environ.cfg", "[var]\nC = 1\n");
        const ChannelLog log;
        EXPECT_EQ(valueOf("B"), "<undefined>");
        EXPECT_EQ(valueOf("C"), "1");
        EXPECT_THAT(progress(log),
                    ElementsAre(opening, loading(installation.homeFile()),
                                loading(" " + installation.path("b/environ.cfg")),
                                overloading(installation.path("a/environ.cfg")),
                                overloading(installation.path("c/environ.cfg")),
                                overloading(installation.path("x/environ.cfg")), closing));
        EXPECT_THAT(log.fatals(), IsEmpty());
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, PassesEmptyElementsOver) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg", homeText(";/;;$TRVHOME/b,/,;$TRVHOME/a;,\\;"));
        const ChannelLog log;
        valueOf("N");
        EXPECT_THAT(progress(log),
                    ElementsAre(opening, loading(installation.homeFile()),
                                loading(installation.path("a/environ.cfg")),
                                overloading(installation.path("b/environ.cfg")), closing));
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, ExpandsTheListOfFurtherDirectoriesTwice) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg", homeText("$$TRVHOME/b;$TRVHOME/a"));
        installation.write("b/environ.cfg", "[var]\nN = b\n");
        const ChannelLog log;
        EXPECT_EQ(valueOf("N"), "b");
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, DropsOneSeparatorAtTheEndOfTheRoot) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg", homeText("$TRVHOME/config"));
        platform::set_environment("TRVHOME", (installation.root() + "/").c_str());
        const ChannelLog log;
        EXPECT_EQ(valueOf("N"), "home");
        EXPECT_THAT(progress(log),
                    ElementsAre(opening, loading(installation.homeFile()), closingAfterOneFile));
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, PublishesTheRoot) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg", homeText("$TRVHOME/a"));
        installation.write("a/environ.cfg", "[var]\nN = a\n");
        platform::set_environment("TRVHOME", nullptr);
        platform::set_environment("TRVHOME_LS", installation.root().c_str());
        const ChannelLog log;
        EXPECT_EQ(valueOf("TRVHOME"), installation.root());
        EXPECT_EQ(valueOf("N"), "a");
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, PassesMissingFilesOverInSilence) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg", homeText("$TRVHOME/c;$TRVHOME/b;$TRVHOME/a"));
        const ChannelLog log;
        EXPECT_EQ(valueOf("N"), "home");
        EXPECT_EQ(progress(log).back(), closing);
        EXPECT_THAT(log.errors(), IsEmpty());
        EXPECT_THAT(log.fatals(), IsEmpty());
    };
    TRV_EXPECT_IN_CHILD(start);
}

// Conditions and predefined variables

TEST_F(EnvironmentStart, LetsConditionsSeeTheVariablesAboveThem) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg",
                           "[var]\nSITE = north\n/if SITE == north\nN = 1\n/else\nN = 2\n/endif\n"
                           "/if LATER\nM = 1\n/else\nM = 2\n/endif\nLATER = 1\n"
                           "/if TMP\nT = 1\n/else\nT = 2\n/endif\n");
        ChannelLog log;
        EXPECT_EQ(valueOf("N"), "1");
        EXPECT_EQ(valueOf("M"), "2");
        EXPECT_EQ(valueOf("T"), "2");
        EXPECT_THAT(log.errors(), IsEmpty());
        EXPECT_THAT(log.fatals(), ElementsAre("TRVZONE is not defined\n"));
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, DefinesTwoVariablesAfterTheHomeFile) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg",
                           "[var]\n/if WINDOWS\nH = 1\n/endif\n[path]\nENV = $TRVHOME/a\n");
        installation.write("a/environ.cfg",
                           "[var]\n/if WINDOWS == 1\nW = 1\n/endif\n"
                           "/if PC == 1\nP = 1\n/endif\n");
        const ChannelLog log;
        EXPECT_EQ(valueOf("H"), "<undefined>");
        EXPECT_EQ(valueOf("W"), "1");
        EXPECT_EQ(valueOf("P"), "1");
        char origin[100];
        EXPECT_EQ(describe_variable_origin(origin, sizeof origin, "PC", get_variable("PC")), 0);
        EXPECT_STREQ(origin, "set by program");
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, DefinesNothingWithoutASectionOfVariables) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg", "[path]\nENV = $TRVHOME/a\n");
        installation.write("a/environ.cfg", "[var]\nN = a\n");
        const ChannelLog log;
        EXPECT_EQ(valueOf("N"), "a");
        EXPECT_EQ(valueOf("WINDOWS"), "<undefined>");
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, DoesNotSaveThePredefinedVariables) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg", "[var]\nN = home\nWINDOWS = 0\n");
        const ChannelLog log;
        EXPECT_EQ(valueOf("WINDOWS"), "1");
        EXPECT_TRUE(set_record_flag(true)) << "the flag is back";
        EXPECT_EQ(store_parameters(environment_store(), installation.homeFile().c_str()), 0);
        EXPECT_EQ(testing::textOf(installation.file("config/environ.cfg")),
                  "[var]\nN = home\nWINDOWS = 0\n");
    };
    TRV_EXPECT_IN_CHILD(start);
}

TEST_F(EnvironmentStart, TakesDoubleEntriesAndSectionsOfTheHomeFileAsTheyStand) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg",
                           "[var]\nA = 1\nA = 2\n[path]\nENV = $TRVHOME/a\n[var]\nB = 1\n");
        installation.write("a/environ.cfg", "[var]\nA = 3\n[x]\n[var]\nC = 1\n");
        const ChannelLog log;
        EXPECT_EQ(valueOf("A"), "3");
        EXPECT_EQ(valueOf("B"), "<undefined>");
        EXPECT_EQ(valueOf("C"), "1");
        EXPECT_STREQ(get_message(environment_store(), 0, 1), "A = 2");
    };
    TRV_EXPECT_IN_CHILD(start);
}

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

TEST_F(EnvironmentStart, ReportsAHomeFileThatIsGivenUp) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg",
                           "[var]\nN = home\n[" + std::string(100, 'n') + "]\n");
        const ChannelLog log;
        EXPECT_EQ(valueOf("N"), "<undefined>");
        EXPECT_THAT(log.fatals(), ElementsAre("load_messages: file '" + installation.homeFile() +
                                                  "', line 0 : Error loading file.",
                                              notLoaded(installation.homeFile())));
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

TEST_F(EnvironmentStart, TakesAnElementThatIsTooLongForAMissingFile) {
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

TEST_F(EnvironmentStart, TakesAListOfMoreThan511CharactersForAnError) {
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

TEST_F(EnvironmentStart, KeepsTheStoreWhereTheSecondFileSpoilsTheList) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg", homeText("$TRVHOME/b;$TRVHOME/a"));
        installation.write("a/environ.cfg", "[var]\nN = a\n[path]\nENV = ${X\n");
        const ChannelLog log;
        EXPECT_EQ(valueOf("N"), "a");
        EXPECT_THAT(log.fatals(), ElementsAre(listError));
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

// Flags after each way out

TEST_F(EnvironmentStart, GivesTheEchoFlagBackAfterFailures) {
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

TEST_F(EnvironmentStart, KeepsTheHomeFileWhereAHandlerThrowsLater) {
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
