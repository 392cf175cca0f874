#include <cli/command_table.h>
#include <cli/manual_page.h>
#include <cli/roff_page.h>
#include <tests/cli/answer.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

namespace trv::testing {
namespace {

std::string page() {
    return cli::manualPage(cli::allCommands()).toStdString();
}

// The titles of the sections or of the subsections.
std::vector<std::string> titles(const std::string& text, const std::string& macro) {
    std::vector<std::string> found;
    std::istringstream lines(text);
    const std::string begin = macro + " \"";
    for (std::string line; std::getline(lines, line);) {
        if (line.compare(0, begin.size(), begin) != 0) continue;
        found.push_back(line.substr(begin.size(), line.size() - begin.size() - 1));
    }
    return found;
}

// The text from a heading to the next one.
std::string partOf(const std::string& text, const std::string& heading) {
    const std::size_t begin = text.find(heading + '\n');
    EXPECT_NE(begin, std::string::npos) << heading;
    const std::size_t end = begin + heading.size();
    return text.substr(begin, std::min(text.find("\n.SS ", end), text.find("\n.SH ", end)) - begin);
}

void expectIn(const std::string& text, const std::string& part) {
    EXPECT_NE(text.find(part), std::string::npos) << part;
}

std::string roff(const QString& text) {
    return cli::roffText(text).toStdString();
}

TEST(ManualPage, HasTheUsualSections) {
    EXPECT_EQ(titles(page(), ".SH"),
              (std::vector<std::string>{"NAME", "SYNOPSIS", "DESCRIPTION", "OPTIONS", "COMMANDS",
                                        "INPUT AND OUTPUT", "EXIT STATUS", "ENVIRONMENT", "FILES",
                                        "EXAMPLES", "SEE ALSO"}));
    expectIn(page(), ".SH \"NAME\"\ntrvfiles \\- show, check, compare and write ");
}

TEST(ManualPage, HasTheVersionAndNoDate) {
    const std::string text = page();
    EXPECT_EQ(text.substr(0, text.find('\n')),
              ".TH TRVFILES 1 \"\" \"trvfiles " TRV_VERSION "\" \"User Commands\"");
}

TEST(ManualPage, HasASubsectionForEachCommand) {
    const cli::CommandGroup commands = cli::allCommands();
    std::vector<std::string> subsections = titles(page(), ".SS");
    ASSERT_GT(subsections.size(), commands.size());
    subsections.resize(commands.size());
    for (std::size_t i = 0; i < commands.size(); ++i)
        EXPECT_EQ(subsections[i], commands[i].name.toStdString());
}

TEST(ManualPage, HasEachOptionOfEachCommand) {
    const std::string text = page();
    for (const cli::Command& command : cli::allCommands()) {
        const std::string part = partOf(text, ".SS \"" + command.name.toStdString() + '"');
        for (const QCommandLineOption& option : command.options) {
            std::string term;
            for (const QString& name : cli::typedNames(option))
                term += (term.empty() ? "\\fB" : ", \\fB") + roff(name) + "\\fR";
            const std::string value = roff(option.valueName());
            if (!value.empty()) term += " \\fI" + value + "\\fR";
            expectIn(part, ".TP\n" + term + '\n' + roff(option.description()) + ".\n");
        }
    }
}

TEST(ManualPage, HasTheExplanationAndTheExamplesOfEachCommand) {
    const std::string text = page();
    for (const cli::Command& command : cli::allCommands()) {
        const std::string part = partOf(text, ".SS \"" + command.name.toStdString() + '"');
        expectIn(part, roff(command.summary) + ".\n");
        const QString last = command.details.trimmed().section(QLatin1Char(' '), -1);
        expectIn(part, roff(last) + '\n');
        EXPECT_FALSE(command.examples.isEmpty());
        for (const QString& example : command.examples)
            expectIn(part, '\n' + roff(example) + '\n');
    }
}

TEST(ManualPage, ShowsTheCallsOfACommand) {
    const std::string text = page();
    expectIn(text,
             ".SS \"assembly list\"\n"
             ".SY \"trvfiles assembly list\"\n"
             "[\\fB\\-\\-json\\fR | \\fB\\-\\-csv\\fR [\\fB\\-\\-raw\\fR]] "
             "\\fIFILE\\fR...\n"
             ".YS\n");
    expectIn(text,
             ".SY \"trvfiles context create\"\n"
             "[\\fB\\-\\-json\\fR] \\fB\\-\\-position\\fR \\fIN\\fR \\fIDIR\\fR\n"
             ".SY \"trvfiles context create\"\n"
             "[\\fB\\-\\-json\\fR] \\fB\\-\\-machine\\fR \\fIM\\fR ");
    expectIn(text, "\\fIFILE\\fR... \\fIsection.key=value\\fR...\n");
    expectIn(text, "\n\\fBbash\\fR | \\fBzsh\\fR | \\fBfish\\fR\n");
    expectIn(text, "\\(aq?\\fILIST\\fR\\e\\fIFILE\\fR\\(aq\n");
    expectIn(text, ".SY \"trvfiles manual\"\n.YS\n");
}

TEST(ManualPage, ExplainsItsExamples) {
    const std::string part = partOf(page(), ".SH \"EXAMPLES\"");
    EXPECT_GE(cli::manualExamples().size(), 3);
    for (const cli::ManualExample& example : cli::manualExamples()) {
        expectIn(part, roff(example.explanation) + ":\n.RS 4\n.EX\n" + roff(example.call) + '\n');
    }
}

TEST(ManualCommand, PrintsThePage) {
    const Answer answer = answerTo(words("manual"));
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.out, page());
    EXPECT_EQ(answer.err, "");
}

TEST(ManualCommand, TakesNoArguments) {
    const Answer answer = answerTo(words("manual show"));
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.out, "");
    EXPECT_EQ(answer.err,
              "trvfiles manual: 'show' is one argument too many\nTry 'trvfiles manual --help'.\n");
}

TEST(ManualCommand, IsExplainedWithoutArguments) {
    EXPECT_EQ(answerTo(words("manual --help")).out,
              "Usage: trvfiles manual\n"
              "\n"
              "Print the manual page of trvfiles.\n"
              "The page is roff text with the man macros. If it is not installed,\n"
              "'trvfiles manual | man -l -' shows it.\n"
              "\n"
              "Options:\n"
              "  -h, --help  Show this help\n"
              "\n"
              "Examples:\n"
              "  trvfiles manual\n");
}

}  // namespace
}  // namespace trv::testing
