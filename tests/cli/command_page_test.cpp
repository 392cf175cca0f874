// The examples of docs/command.md, run as they stand there.

#include <tests/cli/process.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>

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

// The lines between "```console" and "```": each one that begins with "$ trvfiles " is a call, the
// others are its output.
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

TEST(CommandPage, ShowsWhatTheCommandPrints) {
    const TemporaryDirectory directory;
    const std::filesystem::path project = std::filesystem::path(TRV_SAMPLE_PROJECT) / "project";
    std::filesystem::copy(project, directory.path(), std::filesystem::copy_options::recursive);

    const std::vector<Example> examples = examplesOf(TRV_COMMAND_PAGE);
    EXPECT_GT(examples.size(), 10U);
    Process process(directory.path());
    for (const Example& example : examples) {
        ASSERT_GE(process.run(QString::fromStdString(example.arguments).split(QLatin1Char(' '))),
                  0);
        EXPECT_EQ(process.out() + process.err(), example.output) << example.arguments;
    }
}

}  // namespace
}  // namespace trv::testing
