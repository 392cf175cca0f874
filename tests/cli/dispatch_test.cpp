#include <cli/command_table.h>
#include <tests/cli/answer.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace trv::testing {
namespace {

constexpr const char* overview =
    "Usage: trvfiles COMMAND [ARGUMENT...]\n"
    "\n"
    "Shows, checks, compares and writes project files of a machining workstation.\n"
    "\n"
    "Commands:\n"
    "  show             Show an assembly, an axis file or a machine context\n"
    "  check            Report what is wrong with files\n"
    "  view             Write a page that shows an assembly in a browser\n"
    "  assembly tree    Show the components of an assembly\n"
    "  assembly list    List the placed geometry files of an assembly\n"
    "  assembly diff    Show the differences between two assemblies\n"
    "  assembly edit    Change assemblies\n"
    "  axis show        Show an axis file\n"
    "  axis invert      Write the inverse of an axis file to another one\n"
    "  axis write       Write an axis file\n"
    "  context list     List the favourite machine contexts\n"
    "  context default  Show which machine context is the default one\n"
    "  context create   Create a machine context and its reference axis file\n"
    "  context get      Print fields of machine contexts\n"
    "  context set      Change fields of machine contexts\n"
    "  env list         List the variables of an installation\n"
    "  env explain      Explain why a variable has its value\n"
    "  env expand       Replace the references in texts\n"
    "  env find         Search for a file in the directories of a path list\n"
    "  env messages     Show a message file\n"
    "  env check        Check message and configuration files\n"
    "  help             Explain a command\n"
    "  completion       Print a script that completes calls in a shell\n"
    "  manual           Print the manual page of trvfiles\n"
    "\n"
    "'trvfiles help COMMAND' explains a command, with examples.\n"
    "'trvfiles --version' prints the version.\n"
    "Exit status: 0 done, 1 a negative answer, 2 an error.\n";

std::size_t maxLineLength(const std::string& text) {
    std::size_t length = 0;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        length = std::max(length, line.size());
    return length;
}

TEST(Dispatch, ExplainsTheWholeCommand) {
    for (const QStringList& arguments :
         {QStringList(), words("--help"), words("-h"), words("help")}) {
        const Answer answer = answerTo(arguments);
        EXPECT_EQ(answer.status, 0);
        EXPECT_EQ(answer.out, overview);
        EXPECT_LE(maxLineLength(answer.out), 80U);
        EXPECT_EQ(answer.err, "");
    }
}

TEST(Dispatch, ExplainsAGroup) {
    const Answer answer = answerTo(words("axis --help"));
    EXPECT_EQ(answerTo(words("help axis")).out, answer.out);
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.out,
              "Usage: trvfiles axis COMMAND [ARGUMENT...]\n"
              "\n"
              "Commands:\n"
              "  axis show    Show an axis file\n"
              "  axis invert  Write the inverse of an axis file to another one\n"
              "  axis write   Write an axis file\n"
              "\n"
              "'trvfiles help COMMAND' explains a command, with examples.\n"
              "'trvfiles --version' prints the version.\n"
              "Exit status: 0 done, 1 a negative answer, 2 an error.\n");
}

TEST(Dispatch, ExplainsOneCommand) {
    const char* const text =
        "Usage: trvfiles assembly list [--json | --csv [--raw]] FILE...\n"
        "\n"
        "List the placed geometry files of an assembly.\n"
        "Prints a line for each placed file: its name, its translation and its three axis\n"
        "vectors in the assembly's frame. Disabled components are left out. JSON and CSV\n"
        "also have the path of the component. \"-\" is standard input. A file that cannot\n"
        "be read is reported, the others are listed; the exit status is then 2.\n"
        "\n"
        "Options:\n"
        "  --json      Print JSON\n"
        "  --csv       Print comma-separated values with a header line\n"
        "  --raw       Print texts like =A1 without a quote before them\n"
        "  -h, --help  Show this help\n"
        "\n"
        "Examples:\n"
        "  trvfiles assembly list bracket.xml\n"
        "  trvfiles assembly list --csv bracket.xml bracket-rev-b.xml\n";
    EXPECT_EQ(answerTo(words("assembly list --help")).out, text);
    EXPECT_EQ(answerTo(words("help assembly list")).out, text);
    EXPECT_EQ(answerTo(words("assembly list -h a b c")).out, text);
    EXPECT_EQ(answerTo(words("assembly list --bad --help")).status, 0);
}

TEST(Dispatch, ExplainsEveryCommand) {
    for (const cli::Command& command : cli::allCommands()) {
        const Answer answer = answerTo(cli::wordsOf(command) + words("--help"));
        EXPECT_EQ(answer.status, 0);
        EXPECT_EQ(answer.err, "");
        const std::string end = command.arguments.isEmpty() ? "\n" : " ";
        EXPECT_EQ(answer.out.find("Usage: trvfiles " + command.name.toStdString() + end), 0U);
        EXPECT_NE(answer.out.find("\n\nOptions:\n"), std::string::npos);
        EXPECT_NE(answer.out.find("\n\nExamples:\n"), std::string::npos);
        EXPECT_LE(maxLineLength(answer.out), 80U) << answer.out;
    }
}

TEST(Dispatch, PrintsTheVersion) {
    for (const char* option : {"--version", "-v"}) {
        const Answer answer = answerTo(words(option));
        EXPECT_EQ(answer.status, 0);
        EXPECT_EQ(answer.out, "trvfiles " TRV_VERSION "\n");
        EXPECT_EQ(answer.err, "");
    }
}

void expectRefusal(const QStringList& arguments, const std::string& text) {
    const Answer answer = answerTo(arguments);
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.out, "");
    EXPECT_EQ(answer.err, text);
}

TEST(Dispatch, RequiresACommandOfAGroup) {
    expectRefusal(words("axis"),
                  "trvfiles axis: a command is missing\nTry 'trvfiles axis --help'.\n");
}

TEST(Dispatch, RejectsAnUnknownCommand) {
    expectRefusal(words("frob"), "trvfiles: unknown command 'frob'\nTry 'trvfiles --help'.\n");
    expectRefusal(words("axis tree a"),
                  "trvfiles axis: unknown command 'tree'\nTry 'trvfiles axis --help'.\n");
    expectRefusal({QStringLiteral("axis show")},
                  "trvfiles: unknown command 'axis show'\nTry 'trvfiles --help'.\n");
    expectRefusal({QString()}, "trvfiles: unknown command ''\nTry 'trvfiles --help'.\n");
    expectRefusal({QStringLiteral("a\nb %1")},
                  "trvfiles: unknown command 'a\\x0ab %1'\nTry 'trvfiles --help'.\n");
}

TEST(Dispatch, SuggestsWhatWasMeant) {
    expectRefusal(words("shwo a"),
                  "trvfiles: unknown command 'shwo'; did you mean 'show'?\n"
                  "Try 'trvfiles --help'.\n");
    expectRefusal(words("assembly lst"),
                  "trvfiles assembly: unknown command 'lst'; did you mean 'list'?\n"
                  "Try 'trvfiles assembly --help'.\n");
    expectRefusal(words("show --jsn a"),
                  "trvfiles show: unknown option '--jsn'; did you mean '--json'?\n"
                  "Try 'trvfiles show --help'.\n");
    expectRefusal(words("--versoin"),
                  "trvfiles: unknown option '--versoin'; did you mean '--version'?\n"
                  "Try 'trvfiles --help'.\n");
    expectRefusal(words("help axis wirte"),
                  "trvfiles help: unknown command 'wirte'; did you mean 'write'?\n"
                  "Try 'trvfiles help --help'.\n");
    expectRefusal(words("completion fihs"),
                  "trvfiles completion: unknown shell 'fihs'; did you mean 'fish'?\n"
                  "Try 'trvfiles completion --help'.\n");
}

TEST(Dispatch, RejectsOptionsInPlaceOfACommand) {
    expectRefusal(words("--frob show a"),
                  "trvfiles: unknown option '--frob'\nTry 'trvfiles --help'.\n");
    expectRefusal(words("axis -x"),
                  "trvfiles axis: unknown option '-x'\nTry 'trvfiles axis --help'.\n");
    expectRefusal(words("axis --version"),
                  "trvfiles axis: unknown option '--version'\nTry 'trvfiles axis --help'.\n");
    expectRefusal(words("-"), "trvfiles: unknown command '-'\nTry 'trvfiles --help'.\n");
}

TEST(Dispatch, RefusesOptionsThatACommandDoesNotHave) {
    expectRefusal(words("show --csv a"),
                  "trvfiles show: unknown option '--csv'\nTry 'trvfiles show --help'.\n");
    expectRefusal(words("show -x a"),
                  "trvfiles show: unknown option '-x'\nTry 'trvfiles show --help'.\n");
    expectRefusal(words("show --json=1 a"),
                  "trvfiles show: unexpected value after '--json'\n"
                  "Try 'trvfiles show --help'.\n");
    expectRefusal(words("axis write a --tags"),
                  "trvfiles axis write: missing value after '--tags'\n"
                  "Try 'trvfiles axis write --help'.\n");
}

TEST(Dispatch, CallsArgumentsByWhatTheyAre) {
    expectRefusal(words("env explain"),
                  "trvfiles env explain: a name is missing\n"
                  "Try 'trvfiles env explain --help'.\n");
    expectRefusal(words("env list a"),
                  "trvfiles env list: 'a' is one argument too many\n"
                  "Try 'trvfiles env list --help'.\n");
    expectRefusal(words("axis write a %2"),
                  "trvfiles axis write: '%2' is one file name too many\n"
                  "Try 'trvfiles axis write --help'.\n");
}

TEST(Dispatch, CountsTheFileNames) {
    expectRefusal(words("show"),
                  "trvfiles show: a file name is missing\nTry 'trvfiles show --help'.\n");
    expectRefusal(words("axis invert a b c d"),
                  "trvfiles axis invert: 'c' is one file name too many\n"
                  "Try 'trvfiles axis invert --help'.\n");
}

TEST(Dispatch, TreatsArgumentsAfterTwoDashesAsFileNames) {
    expectRefusal(words("show -- --help"),
                  "trvfiles: --help: eFileIOOpenError: No such file or directory\n");
}

}  // namespace
}  // namespace trv::testing
