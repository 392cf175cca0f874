// Runs the examples of docs/command.md.

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

TEST(CommandPage, ShowsWhatTheCommandPrints) {
    const TemporaryDirectory directory;
    std::filesystem::copy(TRV_SAMPLE_PROJECT, directory.path(),
                          std::filesystem::copy_options::recursive);
    const std::string installation = (directory / "installation").string();

    const std::vector<Example> examples = examplesOf(TRV_COMMAND_PAGE);
    EXPECT_GT(examples.size(), 20U);
    Process process(directory / "project");
    process.setVariable("TRVHOME", installation.c_str());
    process.setVariable("TRV_MCTX_DEF", nullptr);
    for (const Example& example : examples) {
        ASSERT_GE(process.run(wordsOf(example.arguments)), 0);
        const std::string output = replaced(process.out() + process.err(), "\r\n", "\n");
        EXPECT_EQ(comparable(asAtOptShop(output, installation)), comparable(example.output))
            << example.arguments;
    }
}

}  // namespace
}  // namespace trv::testing
