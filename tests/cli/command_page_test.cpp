// Runs the examples of the pages about the command.

#include <cli/command_table.h>
#include <cli/manual_page.h>
#include <cli/page_parts.h>
#include <tests/cli/env_sample.h>
#include <tests/cli/process.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/support/platform.h>

#include <QDir>
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

namespace trv::testing {
namespace {

struct Example {
    std::string command;
    std::string output;
};

// The lines between "```console" and "```": a line that begins with "$ " is a command, the lines
// after it are its output.
std::vector<Example> examplesOf(const std::filesystem::path& page) {
    const std::string prompt = "$ ";
    std::vector<Example> examples;
    bool inside = false;
    std::istringstream lines(textOf(page));
    for (std::string line; std::getline(lines, line);) {
        if (line == "```console") {
            inside = true;
        } else if (line == "```") {
            inside = false;
        } else if (inside && line.compare(0, prompt.size(), prompt) == 0) {
            examples.push_back({line.substr(prompt.size()), ""});
        } else if (inside && !examples.empty()) {
            examples.back().output += line + '\n';
        }
    }
    return examples;
}

// The files that a word with a "*" means; any other word itself.
QStringList filesOf(const QString& word, const QDir& directory) {
    if (!word.contains(QLatin1Char('*'))) return QStringList(word);
    return directory.entryList(QStringList(word), QDir::Files, QDir::Name);
}

// Splits a line like a shell, as far as the pages need it: at blanks, but not between quotes. A "*"
// outside of quotes means files of the directory.
QStringList wordsOf(const std::string& line, const QDir& directory) {
    QStringList words;
    const QStringList parts = QString::fromStdString(line).split(QLatin1Char('\''));
    for (int i = 0; i < parts.size(); ++i) {
        const bool quoted = i % 2 == 1;
        if (quoted) {
            words += parts.at(i);
            continue;
        }
        for (const QString& word : parts.at(i).split(QLatin1Char(' '), Qt::SkipEmptyParts))
            words += filesOf(word, directory);
    }
    return words;
}

// A page shows native paths of a system that separates by "/". A "\" is shown as two.
std::string comparable(const std::string& text) {
    if (!platform::backslash_separates()) return text;
    return replaced(replaced(text, "\\\\", "/"), "\\", "/");
}

// Whether the command was built with libjs-three.
bool hasPages() {
    return !cli::embeddedPageParts().scripts.empty();
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

    // Both streams of the command, as if the installation were in /opt/shop. The pages also use
    // "mv", which prints nothing.
    std::string outputOf(const std::string& command) {
        QStringList words = wordsOf(command, QDir(QString::fromStdString(project_)));
        const QString program = words.takeFirst();
        if (program == QLatin1String("mv") && words.size() == 2) {
            std::filesystem::rename(directory_ / "project" / words.at(0).toStdString(),
                                    directory_ / "project" / words.at(1).toStdString());
            return {};
        }
        EXPECT_EQ(program.toStdString(), "trvfiles");
        EXPECT_GE(process_.run(words), 0) << command;
        const std::string output = replaced(process_.out() + process_.err(), "\r\n", "\n");
        return asAtOptShop(output, installation_);
    }

    void expectExamplesOf(const std::filesystem::path& page, std::size_t minCount) {
        const std::vector<Example> examples = examplesOf(page);
        EXPECT_GT(examples.size(), minCount);
        for (const Example& example : examples) {
            if (example.command.find("trvfiles view ") == 0 && !hasPages()) continue;
            EXPECT_EQ(comparable(outputOf(example.command)), comparable(example.output))
                << example.command;
        }
    }

    const TemporaryDirectory directory_;
    const std::string project_ = (directory_ / "project").generic_string();
    const std::string installation_ = (directory_ / "installation").string();
    Process process_{directory_ / "project"};
};

TEST_F(CommandPage, ShowsWhatTheCommandPrints) {
    expectExamplesOf(TRV_PAGES "/command.md", 40);
}

TEST_F(CommandPage, ShowsADayInTheShop) {
    expectExamplesOf(TRV_PAGES "/day-in-the-shop.md", 10);
}

TEST_F(CommandPage, TheCallsOfADayWorkForTwoHundredAssembliesToo) {
    const std::filesystem::path project = directory_ / "project";
    for (int i = 1; i <= 200; ++i)
        std::filesystem::copy(project / "bracket.xml", project / (std::to_string(i) + ".xml"));
    std::vector<std::string> counts;
    for (const Example& example : examplesOf(TRV_PAGES "/day-in-the-shop.md")) {
        outputOf(example.command);
        if (example.command.find("--rename-file") == std::string::npos) continue;
        counts.push_back(replaced(process_.err(), "\r\n", "\n"));
    }
    EXPECT_EQ(counts, (std::vector<std::string>{"trvfiles: 202 of 202 files would change\n",
                                                "trvfiles: 202 of 202 files changed\n"}));
    EXPECT_EQ(textOf(project / "200.xml").find("vise-jaw.stl"), std::string::npos);
    EXPECT_NE(textOf(project / "200.xml").find("<File name=\"geometry/jaw-120.stl\"/>"),
              std::string::npos);
    EXPECT_EQ(outputOf("trvfiles check --references --quiet *.xml"), "");
}

// The status is 1 where the example asks a question whose answer is no.
TEST_F(CommandPage, TheExamplesOfTheHelpSucceed) {
    const std::string program = "trvfiles ";
    for (const cli::Command& command : cli::allCommands()) {
        if (command.name == QLatin1String("view") && !hasPages()) continue;
        for (const QString& example : command.examples) {
            const std::string call = example.toStdString();
            ASSERT_EQ(call.substr(0, program.size()), program);
            const QStringList arguments =
                wordsOf(call.substr(program.size()), QDir(QString::fromStdString(project_)));
            EXPECT_LE(process_.run(arguments), 1) << call;
            EXPECT_EQ(process_.err(), "") << call;
        }
    }
}

TEST_F(CommandPage, TheExamplesOfTheManualSucceed) {
    for (const cli::ManualExample& example : cli::manualExamples()) {
        const QStringList words =
            wordsOf(example.call.toStdString(), QDir(QString::fromStdString(project_)));
        ASSERT_EQ(words.first(), QStringLiteral("trvfiles"));
        const int status = process_.run(words.mid(1));
        EXPECT_TRUE(status == 0 || status == 1) << example.call.toStdString() << process_.err();
        EXPECT_NE(process_.out() + process_.err(), "");
    }
}

}  // namespace
}  // namespace trv::testing
