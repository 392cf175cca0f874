#include <tests/cli/env_sample.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace trv::testing {
namespace {

using EnvExpand = EnvCommand;

TEST_F(EnvExpand, PrintsALineForEachText) {
    EXPECT_EQ(run({"expand", "$LABEL", "?TXT", "", "a//./b $$5"}), 0);
    EXPECT_EQ(out(),
              "Erlbach #3\n"
              "/opt/shop/site/texts;/opt/shop/texts\n"
              "\n"
              "a//./b $5\n");
    EXPECT_EQ(err(), "");
}

TEST_F(EnvExpand, PrintsPathsOfTheSystemOnRequest) {
    EXPECT_EQ(run({"expand", "--path", "a//./b\\$CELL", "?TXT"}), 0);
    EXPECT_EQ(out(),
              native("a/b/3") + "\n" + native("/opt/shop/site/texts;/opt/shop/texts") + "\n");
}

TEST_F(EnvExpand, NamesWhatIsUndefined) {
    EXPECT_EQ(run({"expand", "$NOBODY ?NOLIST $NOBODY", "$CELL"}), 1);
    EXPECT_EQ(out(), "<NOBODY> <NOLIST> <NOBODY>\n3\n");
    EXPECT_EQ(err(),
              "trvfiles: $NOBODY ?NOLIST $NOBODY: $NOBODY is not defined\n"
              "trvfiles: $NOBODY ?NOLIST $NOBODY: ?NOLIST is not defined\n");
}

TEST_F(EnvExpand, PrintsJson) {
    EXPECT_EQ(run({"expand", "--json", "$CELL \x1b", "$NOBODY ?NOLIST $NOBODY"}), 1);
    EXPECT_EQ(out(),
              "{\"texts\":["
              "{\"code\":0,\"expanded\":\"3 \\u001b\",\"status\":\"EXP_OK\","
              "\"text\":\"$CELL \\u001b\",\"undefined\":[]},"
              "{\"code\":-43,\"expanded\":\"<NOBODY> <NOLIST> <NOBODY>\","
              "\"status\":\"EXP_UNDEFINED\",\"text\":\"$NOBODY ?NOLIST $NOBODY\","
              "\"undefined\":[\"$NOBODY\",\"?NOLIST\"]}]}\n");
    EXPECT_EQ(err(), "");
    EXPECT_EQ(run({"expand", "--json", "--path", "${CELL", "?TXT"}), 2);
    EXPECT_EQ(out(),
              "{\"texts\":["
              "{\"code\":-31,\"expanded\":null,\"status\":\"EXP_SYNTAX_ERROR\","
              "\"text\":\"${CELL\",\"undefined\":[]},"
              "{\"code\":0,\"expanded\":\"" +
                  native("/opt/shop/site/texts;/opt/shop/texts") +
                  "\",\"status\":\"EXP_OK\",\"text\":\"?TXT\",\"undefined\":[]}]}\n");
    EXPECT_EQ(err(),
              "trvfiles: ${CELL: EXP_SYNTAX_ERROR (-31): a bracket after a $ or ? is not closed\n");
}

// Every line names the text, so a long one would make the output grow with its square.
TEST_F(EnvExpand, NamesALongTextByItsBeginning) {
    const std::string text = "$NOBODY ?NOLIST " + std::string(184, 'x');
    EXPECT_EQ(run({"expand", text.c_str(), (text + 'y').c_str()}), 1);
    EXPECT_EQ(err(), "trvfiles: " + text + ": $NOBODY is not defined\n" +      //
                         "trvfiles: " + text + ": ?NOLIST is not defined\n" +  //
                         "trvfiles: " + text + "...: $NOBODY is not defined\n" +
                         "trvfiles: " + text + "...: ?NOLIST is not defined\n");
}

TEST_F(EnvExpand, SaysWhatIsWrongWithAText) {
    process_.setVariable("SITE", "$SITE");
    EXPECT_EQ(run({"expand", "${CELL", "$CELL", "$NOBODY", "$SITE"}), 2);
    EXPECT_EQ(out(), "3\n<NOBODY>\n");
    EXPECT_EQ(err(),
              "trvfiles: ${CELL: EXP_SYNTAX_ERROR (-31): a bracket after a $ or ? is not closed\n"
              "trvfiles: $NOBODY: $NOBODY is not defined\n"
              "trvfiles: $SITE: EXP_NAME_TOO_LONG (-42): a value refers to itself, or the text or "
              "its expansion is too long\n");
}

// The trace of the lookup is 500 MB long: a line for each replacement, with the value so far.
TEST_F(EnvExpand, NeedsNoMemoryForATraceThatIsNotShown) {
    if (!std::filesystem::exists("/bin/sh")) GTEST_SKIP() << "a shell sets the limit";
    std::string text = "[var]\nA = 0\n";
    for (int i = 0; i < 1000; ++i)
        text += "A = + " + std::string(999, 'x') + '\n';
    write("shop/config/environ.cfg", "[path]\nENV = $TRVHOME/site\n");
    write("shop/site/environ.cfg", text);
    const auto runLimited = [&](const char* call) {
        return process_.start(
            QStringLiteral("/bin/sh"),
            {QStringLiteral("-c"),
             QStringLiteral("ulimit -v 300000; exec \"$0\" ") + QString::fromLatin1(call),
             QStringLiteral(TRV_COMMAND)});
    };
    if (runLimited("--version") != 0) GTEST_SKIP() << "a sanitizer needs more than the limit";
    EXPECT_EQ(runLimited("env expand '$A'"), 0);
    EXPECT_EQ(err(), "");
    EXPECT_EQ(out().size(), 1 + 1000 * 1000 + 1U);
}

}  // namespace
}  // namespace trv::testing
