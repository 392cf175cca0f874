// Runs the examples of docs/command.md.

#include <cli/command_table.h>
#include <tests/cli/env_sample.h>
#include <tests/cli/process.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/support/platform.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

namespace trv::testing {
namespace {

struct Example {
    std::string arguments;
    std::string output;
};

// The lines between "```console" and "```": a line that begins with "$ trvfiles " is a call, the
// lines after it are its output.
std::vector<Example> examplesOf(const std::filesystem::path& page) {
    const std::string call = "$ trvfiles ";
    std::vector<Example> examples;
    bool inside = false;
    std::istringstream lines(textOf(page));
    for (std::string line; std::getline(lines, line);) {
        if (line == "```console") {
            inside = true;
        } else if (line == "```") {
            inside = false;
        } else if (inside && line.compare(0, call.size(), call) == 0) {
            examples.push_back({line.substr(call.size()), ""});
        } else if (inside && !examples.empty()) {
            examples.back().output += line + '\n';
        }
    }
    return examples;
}

// Splits a line like a shell, as far as the page needs it: at blanks, but not between quotes.
QStringList wordsOf(const std::string& line) {
    QStringList words;
    const QStringList parts = QString::fromStdString(line).split(QLatin1Char('\''));
    for (int i = 0; i < parts.size(); ++i) {
        const bool quoted = i % 2 == 1;
        words += quoted ? QStringList(parts.at(i))
                        : parts.at(i).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    }
    return words;
}

// The page shows native paths of a system that separates by "/". A "\" is shown as two.
std::string comparable(const std::string& text) {
    if (!platform::backslash_separates()) return text;
    return replaced(replaced(text, "\\\\", "/"), "\\", "/");
}

// The command in a copy of the sample project, with the installation of the sample.
class CommandPage : public ::testing::Test {
protected:
    void SetUp() override {
        std::filesystem::copy(TRV_SAMPLE_PROJECT, directory_.path(),
                              std::filesystem::copy_options::recursive);
        process_.setVariable("TRVHOME", installation_.c_str());
        process_.setVariable("TRV_MCTX_DEF", nullptr);
    }

    const TemporaryDirectory directory_;
    const std::string installation_ = (directory_ / "installation").string();
    Process process_{directory_ / "project"};
};

TEST_F(CommandPage, ShowsWhatTheCommandPrints) {
    const std::vector<Example> examples = examplesOf(TRV_COMMAND_PAGE);
    EXPECT_GT(examples.size(), 20U);
    for (const Example& example : examples) {
        ASSERT_GE(process_.run(wordsOf(example.arguments)), 0);
        const std::string output = replaced(process_.out() + process_.err(), "\r\n", "\n");
        EXPECT_EQ(comparable(asAtOptShop(output, installation_)), comparable(example.output))
            << example.arguments;
    }
}

// The status is 1 where the example asks a question whose answer is no.
TEST_F(CommandPage, TheExamplesOfTheHelpSucceed) {
    const std::string program = "trvfiles ";
    for (const cli::Command& command : cli::allCommands()) {
        for (const QString& example : command.examples) {
            const std::string call = example.toStdString();
            ASSERT_EQ(call.substr(0, program.size()), program);
            EXPECT_LE(process_.run(wordsOf(call.substr(program.size()))), 1) << call;
            EXPECT_EQ(process_.err(), "") << call;
        }
    }
}

}  // namespace
}  // namespace trv::testing
