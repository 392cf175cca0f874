#include <tests/cli/env_sample.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace trv::testing {
namespace {

using EnvFind = EnvCommand;

TEST_F(EnvFind, PrintsThePathAlone) {
    EXPECT_EQ(run({"find", "?CFG\\shop.cfg"}), 0);
    EXPECT_EQ(out(), native("/opt/shop/site/shop.cfg") + "\n");
    EXPECT_EQ(err(), "");
}

TEST_F(EnvFind, ShowsOnRequestWhatIsLookedUpAndTried) {
    EXPECT_EQ(run({"find", "--trace", "?CFG\\shop.cfg"}), 0);
    EXPECT_EQ(out(), native("/opt/shop/site/shop.cfg") + "\n");
    const std::string home = "trvfiles: TRVHOME = /opt/shop  (environment variable TRVHOME)\n";
    EXPECT_EQ(err(),
              "trvfiles: ?CFG = ?ENV  (/opt/shop/config/environ.cfg:40)\n"
              "trvfiles: ?ENV = $TRVHOME/cell;$TRVHOME/site;$TRVHOME/config  "
              "(/opt/shop/config/environ.cfg:37)\n" +
                  home +  //
                  "trvfiles: " + native("/opt/shop/cell/shop.cfg") + ": not found\n" +
                  "trvfiles: " + native("/opt/shop/site/shop.cfg") + ": found\n");
}

TEST_F(EnvFind, ShowsNoTrialsOfASearchThatFailed) {
    process_.setVariable("CFGPATH", "$TRVHOME;$NOBODY");
    EXPECT_EQ(run({"find", "--trace", "?CFG/shop.cfg"}), 1);
    EXPECT_EQ(out(), "");
    EXPECT_EQ(err(),
              "trvfiles: ?CFG = $TRVHOME;$NOBODY  (environment variable CFGPATH)\n"
              "trvfiles: TRVHOME = /opt/shop  (environment variable TRVHOME)\n"
              "trvfiles: NOBODY is not defined\n"
              "trvfiles: ?CFG/shop.cfg: $NOBODY is not defined\n");
}

TEST_F(EnvFind, PrintsJson) {
    process_.setVariable("CFGPATH", "$TRVHOME/cell;$TRVHOME/site");
    EXPECT_EQ(run({"find", "--json", "?CFG/shop.cfg"}), 0);
    const std::string lookups =
        "\"lookups\":["
        "{\"file\":null,\"line\":null,\"name\":\"?CFG\",\"origin\":\"environment\","
        "\"value\":\"$TRVHOME/cell;$TRVHOME/site\"},"
        "{\"file\":null,\"line\":null,\"name\":\"TRVHOME\",\"origin\":\"environment\","
        "\"value\":\"/opt/shop\"}],";
    EXPECT_EQ(out(),
              "{\"candidates\":["
              "{\"found\":false,\"path\":\"" +
                  native("/opt/shop/cell/shop.cfg") + "\"},{\"found\":true,\"path\":\"" +
                  native("/opt/shop/site/shop.cfg") + "\"}],\"found\":true," + lookups +
                  "\"path\":\"" + native("/opt/shop/site/shop.cfg") +
                  "\",\"text\":\"?CFG/shop.cfg\",\"undefined\":[]}\n");
    EXPECT_EQ(run({"find", "--json", "?NOLIST\\a"}), 1);
    EXPECT_EQ(out(),
              "{\"candidates\":[],\"found\":false,\"lookups\":[{\"name\":\"?NOLIST\","
              "\"value\":null}],\"path\":null,\"text\":\"?NOLIST\\\\a\","
              "\"undefined\":[\"?NOLIST\"]}\n");
    EXPECT_EQ(err(), "");
    EXPECT_EQ(run({"find", "--json", "?CFG"}), 2);
    EXPECT_EQ(out(), "");
}

TEST_F(EnvFind, TakesBothSeparators) {
    EXPECT_EQ(run({"find", "?CFG\\shop.cfg"}), 0);
    const std::string answer = out();
    EXPECT_EQ(run({"find", "?CFG/shop.cfg"}), 0);
    EXPECT_EQ(out(), answer);
}

// The path is too long for the first buffer, so the runtime searches twice.
TEST_F(EnvFind, ShowsEachTrialOnceIfTheFoundPathIsLong) {
    if (platform::backslash_separates()) GTEST_SKIP() << "Windows opens no path of this length";
    std::string list = "$TRVHOME/nowhere;$TRVHOME";
    for (int i = 0; i < 250; ++i)
        list += "/site/..";
    process_.setVariable("CFGPATH", (list + "/site").c_str());
    EXPECT_EQ(run({"find", "--trace", "?CFG/shop.cfg"}), 0);
    EXPECT_EQ(replaced(out(), "/site/..", ""), "/opt/shop/site/shop.cfg\n");
    EXPECT_EQ(replaced(err(), "/site/..", ""),
              "trvfiles: ?CFG = $TRVHOME/nowhere;$TRVHOME/site  (environment variable CFGPATH)\n"
              "trvfiles: TRVHOME = /opt/shop  (environment variable TRVHOME)\n"
              "trvfiles: /opt/shop/nowhere/shop.cfg: not found\n"
              "trvfiles: /opt/shop/site/shop.cfg: found\n");
}

TEST_F(EnvFind, SaysThatNoDirectoryHasTheFile) {
    process_.setVariable("CFGPATH", "$TRVHOME/site;$TRVHOME/nowhere");
    EXPECT_EQ(run({"find", "?CFG/none.cfg"}), 1);
    EXPECT_EQ(out(), "");
    EXPECT_EQ(
        err(),
        "trvfiles: ?CFG/none.cfg: not found in 2 directories; --trace lists what was tried\n");
    EXPECT_EQ(run({"find", "--trace", "?CFG/none.cfg"}), 1);
    EXPECT_EQ(out(), "");
    const std::string end = "trvfiles: ?CFG/none.cfg: not found in 2 directories\n";
    EXPECT_EQ(err().substr(err().size() - end.size()), end);
}

TEST_F(EnvFind, LooksAtANameWithoutAList) {
    EXPECT_EQ(run({"find", "$TRVHOME/cell/environ.cfg"}), 0);
    EXPECT_EQ(out(), native("/opt/shop/cell/environ.cfg") + "\n");
    EXPECT_EQ(run({"find", "$TRVHOME/none.cfg"}), 1);
    EXPECT_EQ(out(), "");
    EXPECT_EQ(err(), "trvfiles: $TRVHOME/none.cfg: not found\n");
}

TEST_F(EnvFind, FindsFilesThatAreNotRegular) {
    EXPECT_EQ(run({"find", "$TRVHOME/cell"}), 0);
    EXPECT_EQ(out(), native("/opt/shop/cell") + "\n");
    if (!makePipe("shop/site/pipe")) GTEST_SKIP() << "there are no named pipes here";
    EXPECT_EQ(run({"find", "?CFG/pipe"}), 0);
    EXPECT_EQ(out(), "/opt/shop/site/pipe\n");
    EXPECT_EQ(run({"find", "$TRVHOME/site/pipe"}), 0);
    EXPECT_EQ(out(), "/opt/shop/site/pipe\n");
}

TEST_F(EnvFind, NamesAListThatIsUndefined) {
    EXPECT_EQ(run({"find", "?NOLIST\\shop.cfg"}), 1);
    EXPECT_EQ(out(), "");
    EXPECT_EQ(err(), "trvfiles: ?NOLIST\\\\shop.cfg: ?NOLIST is not defined\n");
}

TEST_F(EnvFind, SaysWhyItCannotSearch) {
    EXPECT_EQ(run({"find", "?CFG"}), 2);
    EXPECT_EQ(out(), "");
    EXPECT_EQ(err(),
              "trvfiles: ?CFG: EXP_INVALID_ARGUMENT (-44): no file name follows the list of "
              "directories\n");
    const std::string longName(510, 'x');
    EXPECT_EQ(run({"find", longName.c_str()}), 2);
    EXPECT_EQ(err(), "trvfiles: " + longName +
                         ": EXP_NAME_TOO_LONG (-42): a value refers to itself, or the text or its "
                         "expansion is too long\n");
}

}  // namespace
}  // namespace trv::testing
