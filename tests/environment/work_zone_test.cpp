#include <tests/common/channel_log.h>
#include <tests/common/death_test.h>
#include <tests/common/scoped_variable.h>
#include <tests/environment/installation.h>
#include <trvfiles/environment/variables.h>
#include <trvfiles/environment/work_zone.h>
#include <trvfiles/support/platform.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <stdexcept>
#include <string>

// The temporary directory is worked out once in a process, so each test runs in one of its own.

namespace trv {
namespace {

using testing::ChannelLog;
using ::testing::Contains;
using ::testing::ElementsAre;
using testing::Installation;
using ::testing::IsEmpty;
using testing::ScopedVariable;
using ::testing::StartsWith;
using testing::textOf;

/// An installation with a zone, a counter at 0000000f and a directory for temporary directories.
class ZoneInstallation : public Installation {
public:
    explicit ZoneInstallation(const std::string& more = "TRVCONF = $TRVHOME/conf\n") {
        write("config/environ.cfg",
              "[var]\nTRVZONE = $TRVHOME/zone\nTRVTMP = $TRVHOME/temporary\n" + more);
        write("conf/workzone.num", "0000000f\n");
        makeDirectory("zone");
        makeDirectory("temporary");
    }
};

std::string temporaryDirectory() {
    const char* directory = get_temporary_directory();
    return directory != nullptr ? directory : "<none>";
}

/// Creates a directory in the installation whose path has so many characters.
std::string directoryOfLength(const Installation& installation, std::size_t length, char letter) {
    std::string path = installation.root();
    while (length - path.size() > 200)
        path += '/' + std::string(99, letter);
    path += '/' + std::string(length - path.size() - 1, letter);
    std::filesystem::create_directories(path);
    return path;
}

using WorkZone = testing::ChildProcessTest;

TEST_F(WorkZone, GivesANewZoneTheNextNumber) {
    const auto find = [] {
        const ZoneInstallation installation;
        const ChannelLog log;
        EXPECT_EQ(temporaryDirectory(), installation.path("temporary/00000010"));
        EXPECT_TRUE(std::filesystem::is_directory(installation.file("temporary/00000010")));
        EXPECT_EQ(textOf(installation.file("zone/workzone.num")), "00000010\n");
        EXPECT_EQ(textOf(installation.file("conf/workzone.num")), "00000010\n");
        EXPECT_THAT(log.fatals(), IsEmpty());
    };
    TRV_EXPECT_IN_CHILD(find);
}

TEST_F(WorkZone, GivesAnUnreadableCounterTheNumberOne) {
    const auto find = [] {
        const ZoneInstallation installation;
        installation.write("conf/workzone.num", "no number\n");
        EXPECT_EQ(temporaryDirectory(), installation.path("temporary/00000001"));
        EXPECT_EQ(textOf(installation.file("zone/workzone.num")), "00000001\n");
    };
    TRV_EXPECT_IN_CHILD(find);
}

TEST_F(WorkZone, TakesTheNumberOfAKnownZoneAsItStands) {
    const auto find = [] {
        const ZoneInstallation installation;
        installation.write("zone/workzone.num", "1a   \n");
        EXPECT_EQ(temporaryDirectory(), installation.path("temporary/1a"));
        EXPECT_TRUE(std::filesystem::is_directory(installation.file("temporary/1a")));
        EXPECT_EQ(textOf(installation.file("conf/workzone.num")), "0000000f\n");
        EXPECT_EQ(textOf(installation.file("zone/workzone.num")), "1a   \n");
    };
    TRV_EXPECT_IN_CHILD(find);
}

TEST_F(WorkZone, ExpandsTheNumberWithTheRest) {
    const auto find = [] {
        const ZoneInstallation installation("NUMBER = 77\n");
        installation.write("zone/workzone.num", "../temporary/$NUMBER\n");
        EXPECT_EQ(temporaryDirectory(), installation.path("temporary/../temporary/77"));
        EXPECT_TRUE(std::filesystem::is_directory(installation.file("temporary/77")));
    };
    TRV_EXPECT_IN_CHILD(find);
}

TEST_F(WorkZone, KeepsLeadingBlanksOfTheNumber) {
    const auto find = [] {
        const ZoneInstallation installation;
        installation.write("zone/workzone.num", "  7\n");
        EXPECT_EQ(temporaryDirectory(), installation.path("temporary/  7"));
    };
    TRV_EXPECT_IN_CHILD(find);
}

TEST_F(WorkZone, TakesBlanksForAnEmptyNumber) {
    const auto find = [] {
        const ZoneInstallation installation;
        installation.write("zone/workzone.num", "   \n");
        EXPECT_EQ(temporaryDirectory(), installation.path("temporary/"));
    };
    TRV_EXPECT_IN_CHILD(find);
}

TEST_F(WorkZone, IsWorkedOutOnce) {
    const auto find = [] {
        const ZoneInstallation installation;
        const char* directory = get_temporary_directory();
        std::filesystem::remove(installation.file("zone/workzone.num"));
        std::filesystem::remove(installation.file("conf/workzone.num"));
        platform::set_environment("TRVZONE", "elsewhere");
        EXPECT_EQ(get_temporary_directory(), directory);
    };
    TRV_EXPECT_IN_CHILD(find);
}

TEST_F(WorkZone, MakesADirectoryAgainThatIsGone) {
    const auto find = [] {
        const ZoneInstallation installation;
        get_temporary_directory();
        std::filesystem::remove(installation.file("temporary/00000010"));
        EXPECT_EQ(temporaryDirectory(), installation.path("temporary/00000010"));
        EXPECT_TRUE(std::filesystem::is_directory(installation.file("temporary/00000010")));
    };
    TRV_EXPECT_IN_CHILD(find);
}

TEST_F(WorkZone, IsTheVariableTmp) {
    const auto find = [] {
        const ZoneInstallation installation;
        platform::set_environment("TMP", "not this one");
        EXPECT_EQ(get_variable("TMP"), get_temporary_directory());
        const bool same = platform::backslash_separates();  // names ignore case on Windows
        EXPECT_STREQ(get_variable("tmp"), same ? "not this one" : nullptr);
    };
    TRV_EXPECT_IN_CHILD(find);
}

// TRVTMPDIR

TEST_F(WorkZone, GivesWayToTrvTmpDirWhichIsNotLookedAt) {
    const auto find = [] {
        const ZoneInstallation installation;
        platform::set_environment("TRVTMPDIR", "no/such$X/directory\\");
        EXPECT_EQ(temporaryDirectory(), "no/such$X/directory\\");
        EXPECT_EQ(environment_store(), nullptr);
        EXPECT_FALSE(std::filesystem::exists(installation.file("zone/workzone.num")));
        EXPECT_EQ(textOf(installation.file("conf/workzone.num")), "0000000f\n");
        EXPECT_THAT(std::filesystem::directory_iterator(installation.file("temporary")),
                    std::filesystem::directory_iterator());
    };
    TRV_EXPECT_IN_CHILD(find);
}

TEST_F(WorkZone, GivesWayToADirectoryThatIsSetLater) {
    const auto find = [] {
        const ZoneInstallation installation;
        const std::string worked_out = temporaryDirectory();
        set_temporary_directory("/set/by\\host/");
        EXPECT_EQ(temporaryDirectory(), "/set/by\\host/");
        EXPECT_STREQ(platform::get_environment("TRVTMPDIR"), "/set/by\\host/");
        set_temporary_directory("");
        EXPECT_EQ(platform::get_environment("TRVTMPDIR"), nullptr);
        EXPECT_EQ(temporaryDirectory(), worked_out);
        const ScopedVariable empty("TRVTMPDIR", "");
        EXPECT_EQ(temporaryDirectory(), worked_out);
        set_temporary_directory("x");
        set_temporary_directory(nullptr);
        EXPECT_EQ(temporaryDirectory(), worked_out);
    };
    TRV_EXPECT_IN_CHILD(find);
}

// The counter's place

TEST_F(WorkZone, TakesTheCounterBelowTheRootWithoutTrvConf) {
    const auto find = [] {
        const ZoneInstallation installation("");
        installation.write("client/trvconf/workzone.num", "1\n");
        const ChannelLog log;
        EXPECT_EQ(temporaryDirectory(), installation.path("temporary/00000002"));
        EXPECT_EQ(textOf(installation.file("client/trvconf/workzone.num")), "00000002\n");
        EXPECT_THAT(log.traces(), Contains("$TRVCONF/workzone.num expansion error : -43"));
        EXPECT_THAT(log.errors(), IsEmpty());
    };
    TRV_EXPECT_IN_CHILD(find);
}

TEST_F(WorkZone, TakesTheCounterBelowTheRootWhereTrvConfDoesNotExpand) {
    const auto find = [] {
        const ZoneInstallation installation("TRVCONF = $(TRVHOME\n");
        installation.write("client/trvconf/workzone.num", "1\n");
        const ChannelLog log;
        EXPECT_EQ(temporaryDirectory(), installation.path("temporary/00000002"));
        EXPECT_THAT(log.traces(), Contains("$TRVCONF/workzone.num expansion error : -31"));
    };
    TRV_EXPECT_IN_CHILD(find);
}

// "/workzone.num" has 13 characters, so these paths have 511.
TEST_F(WorkZone, TakesAZoneFileAndACounterWithPathsOf511Characters) {
    if (platform::backslash_separates()) GTEST_SKIP() << "paths of Windows end at 260 characters";
    const auto find = [] {
        const ZoneInstallation installation;
        const std::string zone = directoryOfLength(installation, 498, 'z');
        const std::string conf = directoryOfLength(installation, 498, 'c');
        platform::set_environment("TRVZONE", zone.c_str());
        platform::set_environment("TRVCONF", conf.c_str());
        testing::writeBytes(conf + "/workzone.num", "1\n");
        const ChannelLog log;
        EXPECT_EQ(temporaryDirectory(), installation.path("temporary/00000002"));
        EXPECT_EQ(textOf(zone + "/workzone.num"), "00000002\n");
        EXPECT_EQ(textOf(conf + "/workzone.num"), "00000002\n");
        EXPECT_THAT(log.errors(), IsEmpty());
        EXPECT_THAT(log.fatals(), IsEmpty());
    };
    TRV_EXPECT_IN_CHILD(find);
}

TEST_F(WorkZone, TakesTheCounterBelowTheRootWhereThePathOfTrvConfHas512Characters) {
    if (platform::backslash_separates()) GTEST_SKIP() << "paths of Windows end at 260 characters";
    const auto find = [] {
        const ZoneInstallation installation;
        const std::string conf = directoryOfLength(installation, 499, 'c');
        platform::set_environment("TRVCONF", conf.c_str());
        testing::writeBytes(conf + "/workzone.num", "1\n");
        installation.write("client/trvconf/workzone.num", "7\n");
        const ChannelLog log;
        EXPECT_EQ(temporaryDirectory(), installation.path("temporary/00000008"));
        EXPECT_EQ(textOf(conf + "/workzone.num"), "1\n");
        EXPECT_THAT(log.traces(), Contains("$TRVCONF/workzone.num expansion error : -32"));
        EXPECT_THAT(log.errors(), ElementsAre("_Expand(\"$TRVCONF/workzone.num\") = error -32 - "
                                              "buffer size 512 too small"));
        EXPECT_THAT(log.fatals(), IsEmpty());
    };
    TRV_EXPECT_IN_CHILD(find);
}

// "/client/trvconf/workzone.num" has 28 characters.
TEST_F(WorkZone, TakesACounterBelowTheRootWithAPathOf511CharactersAndNoLongerOne) {
    if (platform::backslash_separates()) GTEST_SKIP() << "paths of Windows end at 260 characters";
    const auto find = [] {
        const ZoneInstallation installation("");
        get_variable("TRVZONE");
        platform::set_environment("TRVZONE", (installation.root() + "/zone").c_str());
        platform::set_environment("TRVTMP", (installation.root() + "/temporary").c_str());
        const std::string tooLong = directoryOfLength(installation, 484, 'l');
        const std::string home = directoryOfLength(installation, 483, 'h');
        for (const std::string& root : {tooLong, home}) {
            std::filesystem::create_directories(root + "/client/trvconf");
            testing::writeBytes(root + "/client/trvconf/workzone.num", "1\n");
        }
        const ChannelLog log;
        platform::set_environment("TRVHOME", tooLong.c_str());
        EXPECT_EQ(temporaryDirectory(), "<none>");
        EXPECT_THAT(log.fatals(), ElementsAre("TRVHOME is not defined\n"));
        EXPECT_THAT(log.errors(),
                    Contains("_Expand(\"$TRVHOME/client/trvconf/workzone.num\") = error -32 - "
                             "buffer size 512 too small"));
        log.fatals().clear();
        platform::set_environment("TRVHOME", home.c_str());
        EXPECT_EQ(temporaryDirectory(), installation.path("temporary/00000002"));
        EXPECT_EQ(textOf(home + "/client/trvconf/workzone.num"), "00000002\n");
        EXPECT_EQ(textOf(tooLong + "/client/trvconf/workzone.num"), "1\n");
        EXPECT_THAT(log.fatals(), IsEmpty());
    };
    TRV_EXPECT_IN_CHILD(find);
}

// "/00000010" has 9 characters.
TEST_F(WorkZone, IsADirectoryWithAPathOf523CharactersAndNoLongerOne) {
    if (platform::backslash_separates()) GTEST_SKIP() << "paths of Windows end at 260 characters";
    const auto find = [] {
        const ZoneInstallation installation;
        const std::string longest = directoryOfLength(installation, 514, 't');
        const std::string tooLong = directoryOfLength(installation, 515, 'u');
        const ChannelLog log;
        platform::set_environment("TRVTMP", tooLong.c_str());
        EXPECT_EQ(temporaryDirectory(), "<none>");
        EXPECT_THAT(log.errors(), ElementsAre("_Expand(\"$TRVTMP/00000010\") = error -32 - "
                                              "buffer size 524 too small"));
        EXPECT_TRUE(std::filesystem::is_empty(tooLong));
        platform::set_environment("TRVTMP", longest.c_str());
        EXPECT_EQ(temporaryDirectory(), testing::backslashed(longest + "/00000010"));
        EXPECT_TRUE(std::filesystem::is_directory(longest + "/00000010"));
        EXPECT_THAT(log.fatals(), IsEmpty());
    };
    TRV_EXPECT_IN_CHILD(find);
}

TEST_F(WorkZone, TracesNothingWhereNobodyListens) {
    const auto find = [] {
        const ZoneInstallation installation("");
        installation.write("client/trvconf/workzone.num", "1\n");
        EXPECT_EQ(temporaryDirectory(), installation.path("temporary/00000002"));
    };
    TRV_EXPECT_IN_CHILD(find);
}

TEST_F(WorkZone, ReportsAMissingRootWhereItIsNeeded) {
    const auto find = [] {
        const ZoneInstallation installation("");
        const ChannelLog log;
        get_variable("TRVZONE");
        platform::set_environment("TRVZONE", (installation.root() + "/zone").c_str());
        platform::set_environment("TRVHOME", nullptr);
        EXPECT_EQ(temporaryDirectory(), "<none>");
        EXPECT_THAT(log.fatals(), ElementsAre("TRVHOME is not defined\n"));
    };
    TRV_EXPECT_IN_CHILD(find);
}

// Failures, with handlers that return

TEST_F(WorkZone, ReportsAZoneThatIsNotDefined) {
    const auto find = [] {
        const Installation installation;
        installation.write("config/environ.cfg", "[var]\nTRVTMP = $TRVHOME\n");
        const ChannelLog log;
        EXPECT_EQ(temporaryDirectory(), "<none>");
        EXPECT_THAT(log.fatals(), ElementsAre("TRVZONE is not defined\n"));
        EXPECT_THAT(log.errors(), IsEmpty());
    };
    TRV_EXPECT_IN_CHILD(find);
}

TEST_F(WorkZone, TakesTrvNullForNoZone) {
    const auto find = [] {
        const Installation installation;
        installation.write("config/environ.cfg", "[var]\nTRVNULL = $TRVHOME\n");
        const ChannelLog log;
        EXPECT_EQ(temporaryDirectory(), "<none>");
        EXPECT_THAT(log.fatals(), ElementsAre("TRVZONE is not defined\n"));
    };
    TRV_EXPECT_IN_CHILD(find);
}

TEST_F(WorkZone, ReportsAZoneWhosePathIsTooLong) {
    const auto find = [] {
        const ZoneInstallation installation;
        platform::set_environment("TRVZONE", std::string(499, 'z').c_str());
        const ChannelLog log;
        EXPECT_EQ(temporaryDirectory(), "<none>");
        EXPECT_THAT(log.fatals(), ElementsAre("TRVZONE is not defined\n"));
        EXPECT_THAT(log.errors(), ElementsAre("_Expand(\"$TRVZONE/workzone.num\") = error -32 - "
                                              "buffer size 512 too small"));
    };
    TRV_EXPECT_IN_CHILD(find);
}

TEST_F(WorkZone, ReportsAZoneFileThatCannotBeRead) {
    const auto find = [] {
        const ZoneInstallation installation;
        const ChannelLog log;
        const std::string file = installation.path("zone/workzone.num");
        installation.makeDirectory("zone/workzone.num");
        EXPECT_EQ(temporaryDirectory(), "<none>");
        std::filesystem::remove(installation.file("zone/workzone.num"));
        installation.write("zone/workzone.num", "");
        EXPECT_EQ(temporaryDirectory(), "<none>");
        EXPECT_THAT(log.fatals(), ElementsAre("Error opening file '" + file + "' for read access\n",
                                              "Error reading file '" + file + "'\n"));
        installation.write("zone/workzone.num", "7\n");
        EXPECT_EQ(temporaryDirectory(), installation.path("temporary/7"));
    };
    TRV_EXPECT_IN_CHILD(find);
}

TEST_F(WorkZone, ReportsACounterThatIsMissingOrEmpty) {
    const auto find = [] {
        const ZoneInstallation installation;
        const ChannelLog log;
        const std::string file = installation.path("conf/workzone.num");
        std::filesystem::remove(installation.file("conf/workzone.num"));
        EXPECT_EQ(temporaryDirectory(), "<none>");
        EXPECT_FALSE(std::filesystem::exists(installation.file("conf/workzone.num")));
        installation.write("conf/workzone.num", "");
        EXPECT_EQ(temporaryDirectory(), "<none>");
        EXPECT_FALSE(std::filesystem::exists(installation.file("zone/workzone.num")));
        EXPECT_THAT(log.fatals(), ElementsAre("Error opening '" + file + "' file\n",
                                              "Error reading '" + file + "' file\n"));
    };
    TRV_EXPECT_IN_CHILD(find);
}

TEST_F(WorkZone, LosesANumberWhereTheZonesFileCannotBeCreated) {
    const auto find = [] {
        const ZoneInstallation installation;
        const ChannelLog log;
        std::filesystem::remove(installation.file("zone"));
        EXPECT_EQ(temporaryDirectory(), "<none>");
        EXPECT_THAT(log.fatals(), ElementsAre("Error creating '" +
                                              installation.path("zone/workzone.num") + "' file\n"));
        EXPECT_EQ(textOf(installation.file("conf/workzone.num")), "00000010\n");
        installation.makeDirectory("zone");
        EXPECT_EQ(temporaryDirectory(), installation.path("temporary/00000011"));
    };
    TRV_EXPECT_IN_CHILD(find);
}

TEST_F(WorkZone, YieldsNothingWithoutARootForTemporaryDirectories) {
    const auto find = [] {
        const Installation installation;
        installation.write("config/environ.cfg", "[var]\nTRVZONE = $TRVHOME/zone\n");
        installation.write("zone/workzone.num", "7\n");
        std::filesystem::current_path(installation.root());
        const ChannelLog log;
        EXPECT_EQ(temporaryDirectory(), "<none>");
        EXPECT_THAT(log.fatals(), IsEmpty());
        EXPECT_FALSE(std::filesystem::exists(installation.file("$TRVTMP")));
        EXPECT_FALSE(std::filesystem::exists(installation.file("7")));
        installation.makeDirectory("temporary");
        platform::set_environment("TRVTMP", (installation.root() + "/temporary").c_str());
        EXPECT_EQ(temporaryDirectory(), installation.path("temporary/7"));
        std::filesystem::current_path(std::filesystem::temp_directory_path());
    };
    TRV_EXPECT_IN_CHILD(find);
}

TEST_F(WorkZone, ReturnsADirectoryThatCannotBeMade) {
    const auto find = [] {
        const ZoneInstallation installation;
        const ChannelLog log;
        std::filesystem::remove(installation.file("temporary"));
        const std::string directory = installation.path("temporary/00000010");
        EXPECT_EQ(temporaryDirectory(), directory);
        EXPECT_EQ(temporaryDirectory(), directory);
        const std::string text = "Could not create temporary directory '" + directory + "'";
        EXPECT_THAT(log.fatals(), ElementsAre(text, text));
        EXPECT_FALSE(std::filesystem::exists(installation.file("temporary")));
        installation.makeDirectory("temporary");
        EXPECT_EQ(temporaryDirectory(), directory);
        EXPECT_EQ(log.fatals().size(), 2U);
        EXPECT_TRUE(std::filesystem::is_directory(installation.file("temporary/00000010")));
    };
    TRV_EXPECT_IN_CHILD(find);
}

TEST_F(WorkZone, ReportsAFileInThePlaceOfTheDirectory) {
    const auto find = [] {
        const ZoneInstallation installation;
        const ChannelLog log;
        installation.write("temporary/00000010", "a file");
        const std::string directory = installation.path("temporary/00000010");
        EXPECT_EQ(temporaryDirectory(), directory);
        EXPECT_THAT(log.fatals(),
                    ElementsAre("Could not create temporary directory '" + directory + "'"));
    };
    TRV_EXPECT_IN_CHILD(find);
}

/// Whether the system refuses this user what a directory's permissions refuse.
bool permissionsCount() {
    const testing::TemporaryDirectory directory;
    std::filesystem::permissions(directory.path(), std::filesystem::perms::owner_read);
    std::error_code denied;
    std::filesystem::create_directory(directory / "probe", denied);
    std::filesystem::permissions(directory.path(), std::filesystem::perms::owner_all);
    return static_cast<bool>(denied);
}

TEST_F(WorkZone, TakesADeniedDirectoryForMade) {
    if (!permissionsCount()) GTEST_SKIP() << "permissions mean nothing to this user";
    const auto find = [] {
        const ZoneInstallation installation;
        const ChannelLog log;
        const std::filesystem::path parent = installation.file("temporary");
        std::filesystem::permissions(parent, std::filesystem::perms::owner_read);
        EXPECT_EQ(temporaryDirectory(), installation.path("temporary/00000010"));
        EXPECT_THAT(log.fatals(), IsEmpty());
        std::filesystem::permissions(parent, std::filesystem::perms::owner_all);
        EXPECT_FALSE(std::filesystem::exists(parent / "00000010"));
    };
    TRV_EXPECT_IN_CHILD(find);
}

// Requests from within, and handlers that throw

TEST_F(WorkZone, YieldsNothingToARequestFromWithin) {
    const auto find = [] {
        const ZoneInstallation installation;
        const ChannelLog log;
        platform::set_environment("TRVZONE", "$TMP/zone");
        EXPECT_EQ(temporaryDirectory(), "<none>");
        EXPECT_THAT(log.fatals(), ElementsAre("TRVZONE is not defined\n"));
        platform::set_environment("TRVZONE", nullptr);
        platform::set_environment("TRVTMP", "$TMP");
        EXPECT_EQ(temporaryDirectory(), "<none>");
        platform::set_environment("TRVTMP", nullptr);
        EXPECT_EQ(temporaryDirectory(), installation.path("temporary/00000010"));
    };
    TRV_EXPECT_IN_CHILD(find);
}

TEST_F(WorkZone, YieldsNothingToAHandlerThatAsksFromWithin) {
    const auto find = [] {
        const ZoneInstallation installation;
        const ChannelLog log;
        static std::string seen;
        set_trace_handler([](const char*) { seen += temporaryDirectory(); });
        EXPECT_EQ(temporaryDirectory(), installation.path("temporary/00000010"));
        EXPECT_THAT(seen, StartsWith("<none>"));
        EXPECT_THAT(seen, ::testing::Not(::testing::HasSubstr("00000010")));
    };
    TRV_EXPECT_IN_CHILD(find);
}

TEST_F(WorkZone, StartsAnewAfterAHandlerHasThrown) {
    const auto find = [] {
        const ZoneInstallation installation;
        const ChannelLog log;
        set_fatal_handler([](const char* message) { throw std::runtime_error(message); });
        platform::set_environment("TRVZONE", "$UNKNOWN");
        EXPECT_THROW(get_temporary_directory(), std::runtime_error);
        platform::set_environment("TRVZONE", nullptr);
        installation.write("zone/workzone.num", "");
        EXPECT_THROW(get_temporary_directory(), std::runtime_error);
        installation.write("zone/workzone.num", "7\n");
        EXPECT_EQ(temporaryDirectory(), installation.path("temporary/7"));
    };
    TRV_EXPECT_IN_CHILD(find);
}

TEST_F(WorkZone, TakesTheZoneThatTheHookSetsLate) {
    const auto find = [] {
        const ZoneInstallation installation;
        installation.write("late/workzone.num", "77\n");
        static std::string zone;
        zone = installation.root() + "/late";
        set_zone_hook([] { platform::set_environment("TRVZONE", zone.c_str()); });
        EXPECT_EQ(temporaryDirectory(), installation.path("temporary/77"));
    };
    TRV_EXPECT_IN_CHILD(find);
}

// The default handlers

TEST_F(WorkZone, EndsTheProcessWithoutAZone) {
    const auto find = [] {
        static const Installation installation;
        installation.write("config/environ.cfg", "");
        get_temporary_directory();
    };
    TRV_EXPECT_FATAL(find, "TRVZONE is not defined\n\n");
}

/// Ends the process in an installation whose root is the current directory.
template <class Spoil>
void findWithoutReturn(const Spoil& spoil) {
    static const ZoneInstallation installation;
    std::filesystem::current_path(installation.root());
    platform::set_environment("TRVHOME", ".");
    spoil(installation);
    get_temporary_directory();
}

TEST_F(WorkZone, EndsTheProcessWithoutACounter) {
    const auto find = [] {
        findWithoutReturn([](const Installation& installation) {
            std::filesystem::remove(installation.file("conf/workzone.num"));
        });
    };
    TRV_EXPECT_FATAL(find, "Error opening '.\\conf\\workzone.num' file\n\n");
}

TEST_F(WorkZone, EndsTheProcessWithAnEmptyCounter) {
    const auto find = [] {
        findWithoutReturn(
            [](const Installation& installation) { installation.write("conf/workzone.num", ""); });
    };
    TRV_EXPECT_FATAL(find, "Error reading '.\\conf\\workzone.num' file\n\n");
}

TEST_F(WorkZone, EndsTheProcessWithoutADirectoryForTheZonesFile) {
    const auto find = [] {
        findWithoutReturn([](const Installation& installation) {
            std::filesystem::remove(installation.file("zone"));
        });
    };
    TRV_EXPECT_FATAL(find, "Error creating '.\\zone\\workzone.num' file\n\n");
}

TEST_F(WorkZone, EndsTheProcessWithAZoneFileThatIsADirectory) {
    const auto find = [] {
        findWithoutReturn([](const Installation& installation) {
            installation.makeDirectory("zone/workzone.num");
        });
    };
    TRV_EXPECT_FATAL(find, "Error opening file '.\\zone\\workzone.num' for read access\n\n");
}

TEST_F(WorkZone, EndsTheProcessWithAnEmptyZoneFile) {
    const auto find = [] {
        findWithoutReturn(
            [](const Installation& installation) { installation.write("zone/workzone.num", ""); });
    };
    TRV_EXPECT_FATAL(find, "Error reading file '.\\zone\\workzone.num'\n\n");
}

TEST_F(WorkZone, EndsTheProcessWhereTheDirectoryCannotBeMade) {
    const auto find = [] {
        findWithoutReturn([](const Installation& installation) {
            std::filesystem::remove(installation.file("temporary"));
        });
    };
    TRV_EXPECT_FATAL(find, "Could not create temporary directory '.\\temporary\\00000010'\n");
}

}  // namespace
}  // namespace trv
