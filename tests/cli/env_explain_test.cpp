#include <tests/cli/env_sample.h>

#include <gtest/gtest.h>

namespace trv::testing {
namespace {

using EnvExplain = EnvCommand;

TEST_F(EnvExplain, ListsTheDefinitionsOfThreeFiles) {
    EXPECT_EQ(run({"explain", "SPINDLE_LIMIT"}), 0);
    EXPECT_EQ(err(), "");
    EXPECT_EQ(
        out(),
        "SPINDLE_LIMIT = 9000\n"
        "from '\\\\opt\\\\shop\\\\cell\\\\environ.cfg' line 5: the definition that was read last "
        "wins\n"
        "\n"
        "Definitions, oldest first\n"
        "  SPINDLE_LIMIT = 12000\n"
        "    from '/opt/shop\\\\config\\\\environ.cfg' line 20\n"
        "  SPINDLE_LIMIT = 10000\n"
        "    from '\\\\opt\\\\shop\\\\site\\\\environ.cfg' line 7\n"
        "  SPINDLE_LIMIT = 9000\n"
        "    from '\\\\opt\\\\shop\\\\cell\\\\environ.cfg' line 5\n");
}

TEST_F(EnvExplain, TellsWhatAPlusStandsFor) {
    EXPECT_EQ(run({"explain", "POST_OPTIONS"}), 0);
    EXPECT_EQ(
        out(),
        "POST_OPTIONS = comments line-numbers pallet-codes\n"
        "from '\\\\opt\\\\shop\\\\cell\\\\environ.cfg' line 6: the definition that was read last "
        "wins\n"
        "\n"
        "Definitions, oldest first\n"
        "  POST_OPTIONS = comments\n"
        "    from '/opt/shop\\\\config\\\\environ.cfg' line 21\n"
        "  POST_OPTIONS = + line-numbers\n"
        "    from '\\\\opt\\\\shop\\\\site\\\\environ.cfg' line 10\n"
        "    + is 'comments'\n"
        "  POST_OPTIONS = + pallet-codes\n"
        "    from '\\\\opt\\\\shop\\\\cell\\\\environ.cfg' line 6\n"
        "    + is 'comments line-numbers'\n");
}

TEST_F(EnvExplain, TellsWhatReferencesAreReplacedBy) {
    process_.setVariable("CELL", "$NOBODY");
    EXPECT_EQ(run({"explain", "LABEL"}), 0);
    EXPECT_EQ(
        out(),
        "LABEL = $SITE ${PALLET_MARK}$CELL\n"
        "from '\\\\opt\\\\shop\\\\cell\\\\environ.cfg' line 7: the only definition that counts\n"
        "\n"
        "Definitions, oldest first\n"
        "  LABEL = $SITE ${PALLET_MARK}$CELL\n"
        "    from '\\\\opt\\\\shop\\\\cell\\\\environ.cfg' line 7\n"
        "\n"
        "Expanded\n"
        "  = Erlbach #<NOBODY>\n"
        "    SITE = 'Erlbach' from '\\\\opt\\\\shop\\\\site\\\\environ.cfg' line 4\n"
        "    PALLET_MARK = '#' from '/opt/shop\\\\config\\\\environ.cfg' line 22\n"
        "    CELL = '$NOBODY' from environment\n"
        "    NOBODY = <undefined variable>\n");
}

TEST_F(EnvExplain, ExplainsPathLists) {
    EXPECT_EQ(run({"explain", "?TXT"}), 0);
    EXPECT_EQ(
        out(),
        "?TXT = $TRVHOME/site/texts;$TRVHOME/texts\n"
        "from '\\\\opt\\\\shop\\\\site\\\\environ.cfg' line 18: the definition that was read last "
        "wins\n"
        "\n"
        "Definitions, oldest first\n"
        "  TXT = $TRVHOME/texts\n"
        "    from '/opt/shop\\\\config\\\\environ.cfg' line 43\n"
        "  TXT = $TRVHOME/site/texts;+\n"
        "    from '\\\\opt\\\\shop\\\\site\\\\environ.cfg' line 18\n"
        "    + is '$TRVHOME/texts'\n"
        "\n"
        "Expanded\n"
        "  = /opt/shop/site/texts;/opt/shop/texts\n"
        "    TRVHOME = '/opt/shop' from environment\n"
        "    TRVHOME = '/opt/shop' from environment\n");
    process_.setVariable("TXTPATH", "here");
    EXPECT_EQ(run({"explain", "?TXT"}), 0);
    EXPECT_EQ(out().substr(0, 83),
              "?TXT = here\n"
              "from environment 'TXTPATH': the process environment goes before all fil");
}

TEST_F(EnvExplain, PutsTheProcessEnvironmentBeforeAllFiles) {
    process_.setVariable("COMPANY", "Mine");
    EXPECT_EQ(run({"explain", "COMPANY"}), 0);
    EXPECT_EQ(out(),
              "COMPANY = Mine\n"
              "from environment: the process environment goes before all files\n"
              "\n"
              "Definitions, oldest first\n"
              "  COMPANY = Hollmann Precision Parts\n"
              "    from '/opt/shop\\\\config\\\\environ.cfg' line 7\n");
    EXPECT_EQ(run({"explain", "TRVHOME"}), 0);
    EXPECT_EQ(out(),
              "TRVHOME = /opt/shop\nfrom environment: the installation does not define it\n");
}

TEST_F(EnvExplain, SaysThatANameIsNotDefined) {
    EXPECT_EQ(run({"explain", "NOBODY"}), 1);
    EXPECT_EQ(out(), "NOBODY is not defined\n");
    EXPECT_EQ(err(), "");
    EXPECT_EQ(run({"explain", "?SITE"}), 1);
    EXPECT_EQ(out(), "?SITE is not defined\n");
    EXPECT_EQ(run({"explain", "--json", "NOBODY"}), 1);
    EXPECT_EQ(out(), "{\"defined\":false,\"name\":\"NOBODY\"}\n");
}

TEST_F(EnvExplain, ShowsDefinitionsThatNoLookupReaches) {
    write("shop/config/environ.cfg", "[var]\nCELL = 1\nCELL = 2\n");
    EXPECT_EQ(run({"explain", "cell"}), 0);
    EXPECT_EQ(out(),
              "cell = 1\n"
              "from '/opt/shop\\\\config\\\\environ.cfg' line 2: the only definition that counts\n"
              "\n"
              "Definitions, oldest first\n"
              "  CELL = 1\n"
              "    from '/opt/shop\\\\config\\\\environ.cfg' line 2\n"
              "\n"
              "Never looked at\n"
              "  CELL = 2\n"
              "    from '/opt/shop\\\\config\\\\environ.cfg' line 3\n");
}

TEST_F(EnvExplain, SaysWhyAValueDoesNotExpand) {
    write("shop/config/environ.cfg", "[var]\nCELL = $SITE\nSITE = $CELL\n");
    EXPECT_EQ(run({"explain", "CELL"}), 0);
    EXPECT_NE(out().find("\nExpanded\n"
                         "  EXP_NAME_TOO_LONG (-42): a value refers to itself, or the text or its "
                         "expansion is too long\n"
                         "    SITE = '$CELL' from '/opt/shop\\\\config\\\\environ.cfg' line 3\n"),
              std::string::npos)
        << out();
    EXPECT_EQ(run({"explain", "--json", "CELL"}), 0);
    EXPECT_NE(out().find("\"expanded\":null,"), std::string::npos) << out();
}

TEST_F(EnvExplain, KnowsTheTemporaryDirectory) {
    EXPECT_EQ(run({"explain", "TMP"}), 0);
    EXPECT_EQ(
        out(),
        "TMP = \\\\opt\\\\shop\\\\tmp\\\\00000001\nthe temporary directory of the work zone\n");
    write("shop/config/environ.cfg", "[var]\nTMP = x\n");
    process_.setVariable("TRVTMPDIR", "here");
    EXPECT_EQ(run({"explain", "TMP"}), 0);
    EXPECT_EQ(out(),
              "TMP = here\n"
              "from environment variable TRVTMPDIR: the installation does not define it\n"
              "\n"
              "Never looked at\n"
              "  TMP = x\n"
              "    from '/opt/shop\\\\config\\\\environ.cfg' line 2\n");
}

TEST_F(EnvExplain, PrintsJson) {
    EXPECT_EQ(run({"explain", "--json", "POST_OPTIONS"}), 0);
    EXPECT_EQ(out(),
              "{\"defined\":true,\"definitions\":["
              "{\"entry\":\"POST_OPTIONS = comments\",\"extended\":null,"
              "\"file\":\"/opt/shop\\\\config\\\\environ.cfg\",\"line\":21},"
              "{\"entry\":\"POST_OPTIONS = + line-numbers\",\"extended\":\"comments\","
              "\"file\":\"\\\\opt\\\\shop\\\\site\\\\environ.cfg\",\"line\":10},"
              "{\"entry\":\"POST_OPTIONS = + pallet-codes\",\"extended\":\"comments "
              "line-numbers\",\"file\":\"\\\\opt\\\\shop\\\\cell\\\\environ.cfg\",\"line\":6}],"
              "\"expanded\":\"comments line-numbers pallet-codes\",\"fromEnvironment\":false,"
              "\"hidden\":[],\"lookups\":[],\"name\":\"POST_OPTIONS\","
              "\"origin\":\"from '\\\\opt\\\\shop\\\\cell\\\\environ.cfg' line 6\","
              "\"reason\":\"the definition that was read last wins\","
              "\"value\":\"comments line-numbers pallet-codes\"}\n");
    EXPECT_EQ(run({"explain", "--json", "PC"}), 0);
    EXPECT_NE(out().find("[{\"entry\":\"PC = 1\",\"extended\":null,\"file\":null,\"line\":null}]"),
              std::string::npos)
        << out();
    EXPECT_EQ(run({"explain", "--json", "VIEWER"}), 0);
    EXPECT_NE(out().find("\"expanded\":\"/opt/shop/bin/viewer\""), std::string::npos) << out();
    EXPECT_NE(out().find("\"lookups\":[\"TRVHOME = '/opt/shop' from environment\"]"),
              std::string::npos)
        << out();
}

}  // namespace
}  // namespace trv::testing
