#include <tests/cli/answer.h>

#include <gtest/gtest.h>

namespace trv::testing {
namespace {

TEST(EnvCommands, AreOneGroup) {
    EXPECT_EQ(answerTo(words("env --help")).out,
              "Usage: trvfiles env COMMAND [ARGUMENT...]\n"
              "\n"
              "Commands:\n"
              "  env list      List the variables of an installation\n"
              "  env explain   Explain why a variable has its value\n"
              "  env expand    Replace the references in texts\n"
              "  env find      Search for a file in the directories of a path list\n"
              "  env messages  Show a message file\n"
              "  env check     Check message and configuration files\n"
              "\n"
              "'trvfiles help COMMAND' explains a command, with examples.\n"
              "'trvfiles --version' prints the version.\n"
              "Exit status: 0 done, 1 a negative answer, 2 an error.\n");
}

TEST(EnvCommands, AllTakeARoot) {
    for (const char* command :
         {"env list", "env explain", "env expand", "env find", "env messages", "env check"}) {
        const std::string help = answerTo(words(command) + words("--help")).out;
        EXPECT_EQ(help.find("Usage: trvfiles " + std::string(command) + " [--root DIR] "), 0U)
            << help;
        EXPECT_NE(help.find("\n  --root DIR  The installation, instead of that of TRVHOME\n"),
                  std::string::npos)
            << help;
    }
}

}  // namespace
}  // namespace trv::testing
