#include <tests/common/death_test.h>
#include <tests/environment/installation.h>
#include <trvfiles/environment/variable_expansion.h>
#include <trvfiles/environment/variables.h>
#include <trvfiles/environment/work_zone.h>

#include <gtest/gtest.h>

#include <string>

namespace trv {
namespace {

using Runtime = testing::ChildProcessTest;

TEST_F(Runtime, ReadsNoVariableAndNoFileBeforeTheFirstLookup) {
    const auto run = [] {
        const testing::Installation installation;
        installation.write("config/environ.cfg", "[var]\nN = home\n");
        EXPECT_EQ(environment_store(), nullptr);
        EXPECT_EQ(get_application_parameter("var", "N"), nullptr);
        EXPECT_EQ(get_catalogue_message("var", 0), nullptr);
        EXPECT_EQ(get_catalogue_parameter("var", "N"), nullptr);
        EXPECT_EQ(environment_store(), nullptr);
        EXPECT_STREQ(get_variable("N"), "home");
        EXPECT_NE(environment_store(), nullptr);
    };
    TRV_EXPECT_IN_CHILD(run);
}

TEST_F(Runtime, LoadsTheConfigurationForAPathVariable) {
    const auto run = [] {
        const testing::Installation installation;
        installation.write("config/environ.cfg", "[path]\nBIN = configured\n");
        EXPECT_STREQ(get_path_variable("BIN"), "configured");
    };
    TRV_EXPECT_IN_CHILD(run);
}

TEST_F(Runtime, FindsTheTemporaryDirectoryOfTheZoneThatTheHookNames) {
    const auto run = [] {
        const testing::Installation installation;
        installation.write("config/environ.cfg", "[var]\nTRVTMP = $TRVHOME\n");
        installation.write("zone/workzone.num", "7\n");
        static std::string zone;
        zone = installation.root() + "/zone";
        set_zone_hook([] { platform::set_environment("TRVZONE", zone.c_str()); });
        std::string text;
        EXPECT_EQ(expand_path("$TMP/x", &text), EXP_OK);
        EXPECT_EQ(text, installation.path("7/x"));
    };
    TRV_EXPECT_IN_CHILD(run);
}

}  // namespace
}  // namespace trv
