#include <cli/context_commands.h>
#include <tests/cli/answer.h>

#include <gtest/gtest.h>

namespace trv::testing {
namespace {

TEST(ContextCommands, AreOneGroup) {
    const Answer answer = answerTo(words("context --help"));
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.out,
              "Usage: trvfiles context COMMAND [ARGUMENT...]\n"
              "\n"
              "Commands:\n"
              "  context list     List the favourite machine contexts\n"
              "  context default  Show which machine context is the default one\n"
              "  context create   Create a machine context and its reference axis file\n"
              "  context get      Print fields of machine contexts\n"
              "  context set      Change fields of machine contexts\n"
              "\n"
              "'trvfiles help COMMAND' explains a command, with examples.\n"
              "'trvfiles --version' prints the version.\n"
              "Exit status: 0 done, 1 a negative answer, 2 an error.\n");
}

TEST(ContextCommands, NameFilesByTheirDirectory) {
    const QString file = QStringLiteral("[a].mctx");
    EXPECT_EQ(cli::pathIn(QStringLiteral("."), file).toStdString(), "./[a].mctx");
    EXPECT_EQ(cli::pathIn(QStringLiteral("x/y"), file).toStdString(), "x/y/[a].mctx");
    EXPECT_EQ(cli::pathIn(QStringLiteral("x/"), file).toStdString(), "x/[a].mctx");
}

}  // namespace
}  // namespace trv::testing
