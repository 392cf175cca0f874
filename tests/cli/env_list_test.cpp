#include <tests/cli/env_sample.h>

#include <gtest/gtest.h>

namespace trv::testing {
namespace {

using EnvList = EnvCommand;

TEST_F(EnvList, ShowsWhatAProgramGets) {
    EXPECT_EQ(run({"list"}), 0);
    EXPECT_EQ(err(), "");
    EXPECT_EQ(out(),
              "COMPANY = Hollmann Precision Parts\n"
              "UNITS = mm\n"
              "TRVCONF = $TRVHOME/client/trvconf\n"
              "TRVTMP = $TRVHOME/tmp\n"
              "TRVZONE = $TRVHOME/zones/bracket\n"
              "TRVNULL = <$>\n"
              "SPINDLE_LIMIT = 9000\n"
              "POST_OPTIONS = comments line-numbers pallet-codes\n"
              "PALLET_MARK = #\n"
              "FEED_LIMIT = 100\n"
              "WINDOWS = 1\n"
              "PC = 1\n"
              "SITE = Erlbach\n"
              "VIEWER = $TRVHOME/bin/viewer\n"
              "CELL = 3\n"
              "LABEL = $SITE ${PALLET_MARK}$CELL\n");
}

TEST_F(EnvList, MarksWhatTheProcessOverrides) {
    write("shop/config/environ.cfg", "[var]\nSITE = Erlbach\nCELL = 3\n");
    process_.setVariable("SITE", "Ulm");
    EXPECT_EQ(run({"list"}), 0);
    EXPECT_EQ(out(), "SITE = Ulm  (environment variable SITE)\nCELL = 3\nWINDOWS = 1\nPC = 1\n");
}

TEST_F(EnvList, PrintsOriginsOnRequest) {
    write("shop/config/environ.cfg",
          "[var]\nSITE = Erlbach\nCELL = 3\n[path]\nENV = $TRVHOME/cell\n");
    write("shop/cell/environ.cfg", "[var]\nCELL = +1\n");
    process_.setVariable("SITE", "Ulm");
    EXPECT_EQ(run({"list", "--origin"}), 0);
    EXPECT_EQ(out(),
              "SITE = Ulm  (environment variable SITE)\n"
              "CELL = 31  (/opt/shop/cell/environ.cfg:2)\n"
              "WINDOWS = 1  (set by program)\n"
              "PC = 1  (set by program)\n");
}

TEST_F(EnvList, PrintsJson) {
    write("shop/config/environ.cfg", "[var]\nSITE = \"Erlbach\"\n");
    process_.setVariable("PC", "0");
    EXPECT_EQ(run({"list", "--json"}), 0);
    EXPECT_EQ(out(),
              "{\"variables\":["
              "{\"file\":\"/opt/shop/config/environ.cfg\",\"fromEnvironment\":false,\"line\":2,"
              "\"name\":\"SITE\",\"origin\":\"file\",\"value\":\"\\\"Erlbach\\\"\"},"
              "{\"file\":null,\"fromEnvironment\":false,\"line\":null,"
              "\"name\":\"WINDOWS\",\"origin\":\"program\",\"value\":\"1\"},"
              "{\"file\":null,\"fromEnvironment\":true,\"line\":null,"
              "\"name\":\"PC\",\"origin\":\"environment\",\"value\":\"0\"}]}\n");
}

TEST_F(EnvList, ListsPathListsOnRequest) {
    process_.setVariable("CFGPATH", "here");
    EXPECT_EQ(run({"list", "--paths"}), 0);
    EXPECT_EQ(out(),
              "?ENV = $TRVHOME/cell;$TRVHOME/site;$TRVHOME/config\n"
              "?CFG = here  (environment variable CFGPATH)\n"
              "?TXT = $TRVHOME/site/texts;$TRVHOME/texts\n");
    EXPECT_EQ(err(), "");
    EXPECT_EQ(run({"list", "--paths", "--origin"}), 0);
    EXPECT_EQ(out(),
              "?ENV = $TRVHOME/cell;$TRVHOME/site;$TRVHOME/config  "
              "(/opt/shop/config/environ.cfg:37)\n"
              "?CFG = here  (environment variable CFGPATH)\n"
              "?TXT = $TRVHOME/site/texts;$TRVHOME/texts  (/opt/shop/site/environ.cfg:18)\n");
    write("shop/config/environ.cfg", "[path]\nTMP = x\n");
    EXPECT_EQ(run({"list", "--paths", "--json"}), 0);
    EXPECT_EQ(out(),
              "{\"variables\":[{\"file\":\"/opt/shop/config/environ.cfg\","
              "\"fromEnvironment\":false,\"line\":2,\"name\":\"?TMP\",\"origin\":\"file\","
              "\"value\":\"x\"}]}\n");
}

TEST_F(EnvList, PrintsNothingWithoutVariables) {
    write("shop/config/environ.cfg", "[path]\nCFG = x\n");
    EXPECT_EQ(run({"list"}), 0);
    EXPECT_EQ(out() + err(), "");
    EXPECT_EQ(run({"list", "--json"}), 0);
    EXPECT_EQ(out(), "{\"variables\":[]}\n");
}

TEST_F(EnvList, MakesNoTemporaryDirectory) {
    write("shop/config/environ.cfg",
          "[var]\nTMP = x\nTRVTMP = $TRVHOME/tmp\nTRVZONE = $TRVHOME/zones/housing\n");
    EXPECT_EQ(run({"list"}), 0);
    EXPECT_EQ(out(),
              "TRVTMP = $TRVHOME/tmp\n"
              "TRVZONE = $TRVHOME/zones/housing\n"
              "WINDOWS = 1\n"
              "PC = 1\n");
    EXPECT_FALSE(std::filesystem::exists(directory_ / "shop/zones/housing/workzone.num"));
}

TEST_F(EnvList, WarnsOfATextThatIsNoVariable) {
    write("shop/config/environ.cfg", "[var]\nno entry\nCELL = 3\n");
    EXPECT_EQ(run({"list"}), 0);
    EXPECT_EQ(out(), "CELL = 3\nWINDOWS = 1\nPC = 1\n");
    EXPECT_EQ(err(),
              "trvfiles: warning: /opt/shop/config/environ.cfg:2: there is no \"=\" in the "
              "variable\n");
}

}  // namespace
}  // namespace trv::testing
