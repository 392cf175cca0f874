#include <tests/common/channel_log.h>
#include <tests/common/death_test.h>
#include <tests/environment/installation.h>
#include <tests/environment/start_up.h>
#include <trvfiles/environment/environment_start.h>
#include <trvfiles/environment/store_writer.h>
#include <trvfiles/environment/variables.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

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
using testing::loading;
using testing::opening;
using testing::overloading;
using testing::progress;
using testing::valueOf;

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

TEST_F(EnvironmentStart, EndsAfterTwoFilesIfTheSecondOneEmptiesTheList) {
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

TEST_F(EnvironmentStart, TakesDoubleEntriesAndSectionsOfTheHomeFileUnchanged) {
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

}  // namespace
}  // namespace trv
