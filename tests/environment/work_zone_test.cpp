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
using ::testing::Contains;
using ::testing::ElementsAre;
using testing::Installation;
using ::testing::IsEmpty;
using testing::ScopedVariable;
using testing::temporaryDirectory;
using testing::textOf;
using testing::WorkZone;
using testing::ZoneInstallation;

/// Creates a directory in the installation whose path has so many characters.
std::string directoryOfLength(const Installation& installation, std::size_t length, char letter) {
    std::string path = installation.root();
    while (length - path.size() > 200)
        path += '/' + std::string(99, letter);
    path += '/' + std::string(length - path.size() - 1, letter);
    std::filesystem::create_directories(path);
    return path;
}

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

TEST_F(WorkZone, TakesTheNumberOfAKnownZoneUnchanged) {
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

TEST_F(WorkZone, TreatsBlanksAsAnEmptyNumber) {
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

TEST_F(WorkZone, TakesTheCounterBelowTheRootIfTrvConfDoesNotExpand) {
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

TEST_F(WorkZone, TakesTheCounterBelowTheRootIfThePathOfTrvConfHas512Characters) {
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

TEST_F(WorkZone, TracesNothingWithoutAListener) {
    const auto find = [] {
        const ZoneInstallation installation("");
        installation.write("client/trvconf/workzone.num", "1\n");
        EXPECT_EQ(temporaryDirectory(), installation.path("temporary/00000002"));
    };
    TRV_EXPECT_IN_CHILD(find);
}

}  // namespace
}  // namespace trv
