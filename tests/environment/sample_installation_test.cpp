#include <tests/common/channel_log.h>
#include <tests/common/death_test.h>
#include <tests/environment/installation.h>
#include <trvfiles/environment/configuration_loader.h>
#include <trvfiles/environment/path_search.h>
#include <trvfiles/environment/variable_expansion.h>
#include <trvfiles/environment/variables.h>
#include <trvfiles/environment/work_zone.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

// Checks what the README of the sample installation says.

namespace trv {
namespace {

using testing::ChannelLog;
using ::testing::IsEmpty;
using testing::textOf;

class SampleInstallation : public testing::Installation {
public:
    SampleInstallation() {
        for (const char* name : {"SHOP_SHIFT", "TXTPATH"})
            platform::set_environment(name, nullptr);
        std::filesystem::copy(TRV_SAMPLE_PROJECT "/installation", file("."),
                              std::filesystem::copy_options::recursive);
    }
};

std::string expanded(const char* text) {
    std::string result;
    EXPECT_FALSE(is_expand_error(expand_variables(text, &result)));
    return result;
}

using Sample = testing::ChildProcessTest;

TEST_F(Sample, LoadsThreeFilesOfWhichTheCellWins) {
    const auto load = [] {
        const SampleInstallation installation;
        const ChannelLog log;
        EXPECT_STREQ(get_variable("COMPANY"), "Hollmann Precision Parts");
        EXPECT_STREQ(get_variable("SPINDLE_LIMIT"), "9000");
        EXPECT_STREQ(get_variable("POST_OPTIONS"), "comments line-numbers pallet-codes");
        EXPECT_STREQ(get_variable("FEED_LIMIT"), "100");
        EXPECT_STREQ(get_variable("VIEWER"), "$TRVHOME/bin/viewer");
        EXPECT_EQ(expanded("$LABEL"), "Erlbach #3");
        EXPECT_EQ(expanded("$NOBODY"), "<NOBODY>");
        EXPECT_EQ(expanded("?TXT"),
                  installation.root() + "/site/texts;" + installation.root() + "/texts");
        EXPECT_THAT(log.errors(), IsEmpty());
        EXPECT_THAT(log.fatals(), IsEmpty());
    };
    TRV_EXPECT_IN_CHILD(load);
}

TEST_F(Sample, TakesTheBranchOfTheShift) {
    const auto load = [] {
        const SampleInstallation installation;
        platform::set_environment("SHOP_SHIFT", "night");
        EXPECT_STREQ(get_variable("FEED_LIMIT"), "60");
    };
    TRV_EXPECT_IN_CHILD(load);
}

TEST_F(Sample, HoldsAHostsFileInTwoDirectories) {
    const auto load = [] {
        const SampleInstallation installation;
        const ChannelLog log;
        EXPECT_EQ(load_application_files("shop.cfg", "?CFG"), 0);
        EXPECT_STREQ(get_application_parameter("coolant", "default"), "emulsion");
        EXPECT_STREQ(get_application_parameter("coolant", "pressure"), "40");
        EXPECT_STREQ(get_application_parameter("probing", "retract"), "5");
        EXPECT_THAT(log.fatals(), IsEmpty());
    };
    TRV_EXPECT_IN_CHILD(load);
}

TEST_F(Sample, HoldsAMessageCatalogueThatTheSiteOverrides) {
    const auto load = [] {
        const SampleInstallation installation;
        const ChannelLog log;
        EXPECT_EQ(load_found_messages("messages.msg", "?TXT"), 0);
        EXPECT_EQ(load_found_messages("limits.msg", "?TXT"), 0);
        EXPECT_STREQ(get_catalogue_message("vise", 2), "Pallet #%d is not loaded.");
        EXPECT_STREQ(get_catalogue_parameter("limits", "jaw_travel"), "160");
        EXPECT_STREQ(get_catalogue_parameter("limits", "part_mass"), "50");
        EXPECT_THAT(log.errors(), IsEmpty());
    };
    TRV_EXPECT_IN_CHILD(load);
}

TEST_F(Sample, KnowsTheNumberOfOneZone) {
    const auto find = [] {
        const SampleInstallation installation;
        EXPECT_STREQ(get_variable("TMP"), installation.path("tmp/00000001").c_str());
        EXPECT_EQ(textOf(installation.file("client/trvconf/workzone.num")), "00000002\n");
    };
    TRV_EXPECT_IN_CHILD(find);
}

TEST_F(Sample, DrawsANumberForTheOtherZone) {
    const auto find = [] {
        const SampleInstallation installation;
        platform::set_environment("TRVZONE", (installation.root() + "/zones/housing").c_str());
        EXPECT_STREQ(get_variable("TMP"), installation.path("tmp/00000003").c_str());
        EXPECT_EQ(textOf(installation.file("zones/housing/workzone.num")), "00000003\n");
    };
    TRV_EXPECT_IN_CHILD(find);
}

}  // namespace
}  // namespace trv
