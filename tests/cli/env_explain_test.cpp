#include <tests/cli/env_sample.h>
#include <trvfiles/support/platform.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace trv::testing {
namespace {

class EnvExplain : public EnvCommand {
protected:
    // Definitions in a file that is read after the home file, so that each replaces the one before.
    void writeHistory(const char* line, int count) const {
        write("shop/config/environ.cfg", "[path]\nENV = $TRVHOME/site\n");
        std::string text = "[var]\n";
        for (int i = 0; i < count; ++i)
            text += std::string(line) + '\n';
        write("shop/site/environ.cfg", text);
    }
};

TEST_F(EnvExplain, ListsTheDefinitionsOfThreeFiles) {
    EXPECT_EQ(run({"explain", "SPINDLE_LIMIT"}), 0);
    EXPECT_EQ(err(), "");
    EXPECT_EQ(out(),
              "SPINDLE_LIMIT = 9000\n"
              "/opt/shop/cell/environ.cfg:5: the definition that was read last "
              "wins\n"
              "\n"
              "Definitions, oldest first\n"
              "  SPINDLE_LIMIT = 12000\n"
              "    /opt/shop/config/environ.cfg:20\n"
              "  SPINDLE_LIMIT = 10000\n"
              "    /opt/shop/site/environ.cfg:7\n"
              "  SPINDLE_LIMIT = 9000\n"
              "    /opt/shop/cell/environ.cfg:5\n");
}

TEST_F(EnvExplain, ReportsWhatAPlusMeans) {
    EXPECT_EQ(run({"explain", "POST_OPTIONS"}), 0);
    EXPECT_EQ(out(),
              "POST_OPTIONS = comments line-numbers pallet-codes\n"
              "/opt/shop/cell/environ.cfg:6: the definition that was read last "
              "wins\n"
              "\n"
              "Definitions, oldest first\n"
              "  POST_OPTIONS = comments\n"
              "    /opt/shop/config/environ.cfg:21\n"
              "  POST_OPTIONS = + line-numbers\n"
              "    /opt/shop/site/environ.cfg:10\n"
              "    + is 'comments'\n"
              "  POST_OPTIONS = + pallet-codes\n"
              "    /opt/shop/cell/environ.cfg:6\n"
              "    + is 'comments line-numbers'\n");
}

TEST_F(EnvExplain, ReportsWhatReferencesAreReplacedBy) {
    process_.setVariable("CELL", "$NOBODY");
    EXPECT_EQ(run({"explain", "LABEL"}), 0);
    EXPECT_EQ(out(),
              "LABEL = $SITE ${PALLET_MARK}$CELL\n"
              "/opt/shop/cell/environ.cfg:7: the only definition that counts\n"
              "\n"
              "Definitions, oldest first\n"
              "  LABEL = $SITE ${PALLET_MARK}$CELL\n"
              "    /opt/shop/cell/environ.cfg:7\n"
              "\n"
              "Expanded\n"
              "  = Erlbach #<NOBODY>\n"
              "    SITE = Erlbach  (/opt/shop/site/environ.cfg:4)\n"
              "    PALLET_MARK = #  (/opt/shop/config/environ.cfg:22)\n"
              "    CELL = $NOBODY  (environment variable CELL)\n"
              "    NOBODY is not defined\n");
}

TEST_F(EnvExplain, ExplainsPathLists) {
    EXPECT_EQ(run({"explain", "?TXT"}), 0);
    EXPECT_EQ(out(),
              "?TXT = $TRVHOME/site/texts;$TRVHOME/texts\n"
              "/opt/shop/site/environ.cfg:18: the definition that was read last "
              "wins\n"
              "\n"
              "Definitions, oldest first\n"
              "  TXT = $TRVHOME/texts\n"
              "    /opt/shop/config/environ.cfg:43\n"
              "  TXT = $TRVHOME/site/texts;+\n"
              "    /opt/shop/site/environ.cfg:18\n"
              "    + is '$TRVHOME/texts'\n"
              "\n"
              "Expanded\n"
              "  = /opt/shop/site/texts;/opt/shop/texts\n"
              "    TRVHOME = /opt/shop  (environment variable TRVHOME)\n"
              "    TRVHOME = /opt/shop  (environment variable TRVHOME)\n"
              "\n"
              "Directories, in the order of a search\n"
              "  " +
                  native("/opt/shop/site/texts") + "  (/opt/shop/site/environ.cfg:18)\n" + "  " +
                  native("/opt/shop/texts") + "  (/opt/shop/config/environ.cfg:43)\n");
    process_.setVariable("TXTPATH", "here");
    EXPECT_EQ(run({"explain", "?TXT"}), 0);
    EXPECT_EQ(out().substr(0, 84),
              "?TXT = here\n"
              "environment variable TXTPATH: the process environment goes before all fi");
}

TEST_F(EnvExplain, SaysWhichDirectoriesOfAListExist) {
    write("shop/config/environ.cfg",
          "[path]\nCFG = $TRVHOME/config;?SUB;$NOBODY/x\nSUB = nowhere\n");
    EXPECT_EQ(run({"explain", "?CFG"}), 0);
    const std::string end =
        "\nDirectories, in the order of a search\n"
        "  " +
        native("/opt/shop/config") + "  (/opt/shop/config/environ.cfg:2)\n" +
        "  nowhere  (/opt/shop/config/environ.cfg:3; does not exist)\n"
        "  " +
        native("/x") + "  (/opt/shop/config/environ.cfg:2; does not exist)\n";
    EXPECT_EQ(out().substr(out().size() - std::min(out().size(), end.size())), end);
    EXPECT_EQ(run({"explain", "--json", "?SUB"}), 0);
    EXPECT_NE(out().find("\"definitionsLeftOut\":0,\"directories\":["
                         "{\"exists\":false,\"file\":\"/opt/shop/config/environ.cfg\",\"line\":3,"
                         "\"origin\":\"file\",\"path\":\"nowhere\"}],\"expanded\":"),
              std::string::npos)
        << out();
}

// The lists refer to each other in a circle, and to one list very often.
TEST_F(EnvExplain, EndsForListsThatReferToEachOther) {
    write("shop/config/environ.cfg", "[path]\nA = ?B\nB = x;?A\n");
    EXPECT_EQ(run({"explain", "?A"}), 0);
    EXPECT_NE(out().find("EXP_NAME_TOO_LONG (-42)"), std::string::npos) << out();
    EXPECT_EQ(out().find("Directories"), std::string::npos) << out();
    std::string lists = "[path]\nA0 = x\n";
    for (int i = 1; i < 12; ++i)
        lists += "A" + std::to_string(i) + " = ?A" + std::to_string(i - 1) + ";?A" +
                 std::to_string(i - 1) + "\n";
    write("shop/config/environ.cfg", lists);
    EXPECT_EQ(run({"explain", "?A11"}), 0);
    const std::string line = "  x  (/opt/shop/config/environ.cfg:2; does not exist)\n";
    EXPECT_EQ(replaced(out(), line, "").size() + 2048 * line.size(), out().size());
}

TEST_F(EnvExplain, PutsTheProcessEnvironmentBeforeAllFiles) {
    process_.setVariable("COMPANY", "Mine");
    EXPECT_EQ(run({"explain", "COMPANY"}), 0);
    EXPECT_EQ(out(),
              "COMPANY = Mine\n"
              "environment variable COMPANY: the process environment goes before all files\n"
              "\n"
              "Definitions, oldest first\n"
              "  COMPANY = Hollmann Precision Parts\n"
              "    /opt/shop/config/environ.cfg:7\n");
    EXPECT_EQ(run({"explain", "TRVHOME"}), 0);
    EXPECT_EQ(
        out(),
        "TRVHOME = /opt/shop\nenvironment variable TRVHOME: the installation does not define it\n");
}

TEST_F(EnvExplain, SaysThatANameIsNotDefined) {
    EXPECT_EQ(run({"explain", "NOBODY"}), 1);
    EXPECT_EQ(out(), "");
    EXPECT_EQ(err(), "trvfiles: NOBODY is not defined\n");
    EXPECT_EQ(run({"explain", "SPINDEL_LIMIT"}), 1);
    EXPECT_EQ(err(), "trvfiles: SPINDEL_LIMIT is not defined; did you mean 'SPINDLE_LIMIT'?\n");
    EXPECT_EQ(run({"explain", "TXT"}), 1);
    EXPECT_EQ(err(), "trvfiles: TXT is not defined; did you mean '?TXT'?\n");
    EXPECT_EQ(run({"explain", "?SITE"}), 1);
    EXPECT_EQ(out(), "");
    EXPECT_EQ(err(), "trvfiles: ?SITE is not defined; did you mean 'SITE'?\n");
    EXPECT_EQ(run({"explain", "--json", "NOBODY"}), 1);
    EXPECT_EQ(out(), "{\"defined\":false,\"name\":\"NOBODY\",\"suggestion\":null}\n");
    EXPECT_EQ(run({"explain", "--json", "CEL"}), 1);
    EXPECT_EQ(out(), "{\"defined\":false,\"name\":\"CEL\",\"suggestion\":\"CELL\"}\n");
    EXPECT_EQ(err(), "");
}

TEST_F(EnvExplain, ShowsDefinitionsThatNoLookupReaches) {
    write("shop/config/environ.cfg", "[var]\nCELL = 1\nCELL = 2\n");
    EXPECT_EQ(run({"explain", "cell"}), 0);
    EXPECT_EQ(out(),
              "cell = 1\n"
              "/opt/shop/config/environ.cfg:2: the only definition that counts\n"
              "\n"
              "Definitions, oldest first\n"
              "  CELL = 1\n"
              "    /opt/shop/config/environ.cfg:2\n"
              "\n"
              "Never looked at\n"
              "  CELL = 2\n"
              "    /opt/shop/config/environ.cfg:3\n");
}

TEST_F(EnvExplain, SaysWhyAValueDoesNotExpand) {
    write("shop/config/environ.cfg", "[var]\nCELL = $SITE\nSITE = $CELL\n");
    EXPECT_EQ(run({"explain", "CELL"}), 0);
    EXPECT_NE(out().find("\nExpanded\n"
                         "  EXP_NAME_TOO_LONG (-42): a value refers to itself, or the text or its "
                         "expansion is too long\n"
                         "    SITE = $CELL  (/opt/shop/config/environ.cfg:3)\n"),
              std::string::npos)
        << out();
    EXPECT_EQ(run({"explain", "--json", "CELL"}), 0);
    EXPECT_NE(out().find("\"expanded\":null,"), std::string::npos) << out();
}

TEST_F(EnvExplain, KnowsTheTemporaryDirectory) {
    EXPECT_EQ(run({"explain", "TMP"}), 0);
    EXPECT_EQ(out(),
              "TMP = \\\\opt\\\\shop\\\\tmp\\\\00000001\nwork zone: the temporary directory\n");
    write("shop/config/environ.cfg", "[var]\nTMP = x\n");
    process_.setVariable("TRVTMPDIR", "here");
    EXPECT_EQ(run({"explain", "TMP"}), 0);
    EXPECT_EQ(out(),
              "TMP = here\n"
              "environment variable TRVTMPDIR: the installation does not define it\n"
              "\n"
              "Never looked at\n"
              "  TMP = x\n"
              "    /opt/shop/config/environ.cfg:2\n");
}

TEST_F(EnvExplain, PrintsJson) {
    EXPECT_EQ(run({"explain", "--json", "POST_OPTIONS"}), 0);
    EXPECT_EQ(
        out(),
        "{\"defined\":true,\"definitions\":["
        "{\"entry\":\"POST_OPTIONS = comments\",\"extended\":null,\"extends\":false,"
        "\"file\":\"/opt/shop/config/environ.cfg\",\"line\":21,\"origin\":\"file\"},"
        "{\"entry\":\"POST_OPTIONS = + line-numbers\",\"extended\":\"comments\",\"extends\":true,"
        "\"file\":\"/opt/shop/site/environ.cfg\",\"line\":10,\"origin\":\"file\"},"
        "{\"entry\":\"POST_OPTIONS = + pallet-codes\",\"extended\":\"comments "
        "line-numbers\",\"extends\":true,\"file\":\"/opt/shop/cell/environ.cfg\","
        "\"line\":6,\"origin\":\"file\"}],\"definitionsLeftOut\":0,"
        "\"expanded\":\"comments line-numbers "
        "pallet-codes\",\"file\":\"/opt/shop/cell/environ.cfg\",\"fromEnvironment\":false,"
        "\"hidden\":[],\"hiddenLeftOut\":0,\"line\":6,\"lookups\":[],\"name\":\"POST_OPTIONS\","
        "\"origin\":\"file\","
        "\"reason\":\"lastDefinition\","
        "\"value\":\"comments line-numbers pallet-codes\"}\n");
    EXPECT_EQ(run({"explain", "--json", "PC"}), 0);
    EXPECT_NE(out().find("[{\"entry\":\"PC = "
                         "1\",\"extended\":null,\"extends\":false,\"file\":null,\"line\":null,"
                         "\"origin\":\"program\"}]"),
              std::string::npos)
        << out();
    EXPECT_EQ(run({"explain", "--json", "VIEWER"}), 0);
    EXPECT_NE(out().find("\"expanded\":\"/opt/shop/bin/viewer\""), std::string::npos) << out();
    EXPECT_NE(out().find("\"lookups\":[{\"file\":null,\"line\":null,\"name\":\"TRVHOME\","
                         "\"origin\":\"environment\",\"value\":\"/opt/shop\"}]"),
              std::string::npos)
        << out();
}

TEST_F(EnvExplain, ShowsNothingBesideAFatalReport) {
    write("other/config/environ.cfg", "[var]\nCELL = $TMP\n");
    for (const char* form : {"--all", "--json"}) {
        EXPECT_EQ(run({"explain", "--root", "other", form, "CELL"}), 2);
        EXPECT_EQ(out(), "");
        EXPECT_NE(err().find("TRVZONE"), std::string::npos) << err();
    }
}

TEST_F(EnvExplain, WaitsForNoPipe) {
    if (!makePipe("pipe")) GTEST_SKIP() << "there are no named pipes here";
    process_.setVariable("CELL", (directory_.text() + "/pipe").c_str());
    EXPECT_EQ(run({"explain", "CELL"}), 0);
    EXPECT_EQ(out().substr(0, out().find('\n')), "CELL = " + directory_.text() + "/pipe");
}

TEST_F(EnvExplain, ShortensALongHistory) {
    writeHistory("A = + x", 1600);
    EXPECT_EQ(run({"explain", "A"}), 0);
    const std::string text = out();
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 3 + 1 + 10 * 3 - 1 + 1) << text;
    EXPECT_NE(text.find("\nDefinitions, oldest first\n"
                        "  A = + x\n"
                        "    /opt/shop/site/environ.cfg:2\n"
                        "  A = + x\n"
                        "    /opt/shop/site/environ.cfg:3\n"
                        "    + is '+ x'\n"
                        "  A = + x\n"
                        "    /opt/shop/site/environ.cfg:4\n"
                        "    + is '+ x x'\n"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("environ.cfg:6\n"
                        "    + is '+ x x x x'\n"
                        "  ... 1590 more; --all shows them\n"
                        "  A = + x\n"
                        "    /opt/shop/site/environ.cfg:1597\n"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("environ.cfg:1601\n    + is '+ x x x"), std::string::npos) << text;
}

TEST_F(EnvExplain, ShortensALongValueSoFar) {
    if (platform::backslash_separates()) GTEST_SKIP() << "no code page of Windows has the text";
    const std::string emoji = u8"\U0001f600";
    std::string value;
    for (int i = 0; i < 100; ++i)
        value += emoji;
    write("shop/config/environ.cfg", "[path]\nENV = $TRVHOME/site\n");
    write("shop/site/environ.cfg", "[var]\nA = " + value + "\nA = +\nA = y+\n");
    EXPECT_EQ(run({"explain", "A"}), 0);
    EXPECT_NE(out().find("\n    + is '" + value + "'\n"), std::string::npos) << out();
    // 200 code units would end within a character.
    write("shop/site/environ.cfg", "[var]\nA = x" + value + "\nA = +\nA = y+\n");
    EXPECT_EQ(run({"explain", "A"}), 0);
    EXPECT_NE(out().find("\n    + is 'x" + value.substr(0, 99 * emoji.size()) +
                         "...' (201 characters; --all shows them)\n"),
              std::string::npos)
        << out();
    EXPECT_EQ(run({"explain", "--all", "A"}), 0);
    EXPECT_NE(out().find("\n    + is 'x" + value + "'\n"), std::string::npos) << out();
}

TEST_F(EnvExplain, SaysThatTheLimitsOfTheRuntimeArePassed) {
    writeHistory("A = +", 10003);
    EXPECT_EQ(run({"explain", "A"}), 0);
    EXPECT_NE(out().find("environ.cfg:10003\n"
                         "    + is '+'\n"
                         "  A = +\n"
                         "    /opt/shop/site/environ.cfg:10004\n"
                         "    + is a value beyond the limits of the runtime\n"),
              std::string::npos)
        << out();
    EXPECT_EQ(run({"explain", "--json", "A"}), 0);
    EXPECT_NE(out().find("\"extended\":\"+\",\"extends\":true"), std::string::npos) << out();
    EXPECT_NE(out().find("\"extended\":null,\"extends\":true"), std::string::npos) << out();
}

TEST_F(EnvExplain, CountsInJsonWhatItLeavesOut) {
    write("shop/config/environ.cfg", "[var]\nA = 0\n[path]\nENV = $TRVHOME/site\n");
    std::string text = "[var]\n";
    for (int i = 1; i <= 13; ++i)
        text += "A = +" + std::string(300, 'x') + "\na = " + std::to_string(i) + '\n';
    write("shop/site/environ.cfg", text);
    const auto count = [&](const char* part) {
        int found = 0;
        for (std::size_t at = out().find(part); at != std::string::npos;
             at = out().find(part, at + 1))
            ++found;
        return found;
    };
    EXPECT_EQ(run({"explain", "--json", "A"}), 0);
    EXPECT_EQ(count("\"entry\":\"A = "), 10);
    EXPECT_EQ(count("\"entry\":\"a = "), 10);
    EXPECT_EQ(count("],\"definitionsLeftOut\":4,"), 1) << out();
    EXPECT_EQ(count("],\"hiddenLeftOut\":3,"), 1) << out();
    EXPECT_EQ(count(("\"extended\":\"0" + std::string(900, 'x') + "\"").c_str()), 1) << out();
    EXPECT_EQ(run({"explain", "--json", "--all", "A"}), 0);
    EXPECT_EQ(count("\"entry\":\"A = "), 14);
    EXPECT_EQ(count("\"entry\":\"a = "), 13);
    EXPECT_EQ(count("],\"definitionsLeftOut\":0,"), 1) << out();
    EXPECT_EQ(count("],\"hiddenLeftOut\":0,"), 1) << out();
    EXPECT_EQ(run({"explain", "A"}), 0);
    EXPECT_EQ(count("\n  ... 4 more; --all shows them\n"), 1) << out();
    EXPECT_EQ(count("\n  ... 3 more; --all shows them\n"), 1) << out();
}

// A walk that resolves every definition anew takes time for the third power of their number:
// several minutes, after which the process is killed.
TEST_F(EnvExplain, ShowsALongHistoryOnRequest) {
    writeHistory("A = +", 6000);
    EXPECT_EQ(run({"explain", "--all", "A"}), 0);
    const std::string text = out();
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 3 + 1 + 6000 * 3 - 1);
    const std::string end = "environ.cfg:6001\n    + is '+'\n";
    EXPECT_EQ(text.substr(text.size() - std::min(text.size(), end.size())), end);
}

}  // namespace
}  // namespace trv::testing
