#include <tests/common/channel_log.h>
#include <tests/common/scoped_variable.h>
#include <tests/environment/zone_installation.h>
#include <trvfiles/environment/variables.h>
#include <trvfiles/environment/work_zone.h>
#include <trvfiles/support/platform.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace trv {
namespace {

using testing::ChannelLog;
using ::testing::ElementsAre;
using testing::Installation;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using testing::temporaryDirectory;
using testing::textOf;
using testing::WorkZone;
using testing::ZoneInstallation;

TEST_F(WorkZone, ReportsAMissingRootIfItIsNeeded) {
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

TEST_F(WorkZone, LosesANumberIfTheZonesFileCannotBeCreated) {
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

TEST_F(WorkZone, TreatsADeniedDirectoryAsMade) {
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

TEST_F(WorkZone, EndsTheProcessIfTheDirectoryCannotBeMade) {
    const auto find = [] {
        findWithoutReturn([](const Installation& installation) {
            std::filesystem::remove(installation.file("temporary"));
        });
    };
    TRV_EXPECT_FATAL(find, "Could not create temporary directory '.\\temporary\\00000010'\n");
}

}  // namespace
}  // namespace trv
