#include <cli/view_output.h>
#include <tests/cli/project_directory.h>

#include <filesystem>
#include <ostream>
#include <stdexcept>
#include <system_error>

namespace trv::testing {
namespace {

const std::string oldPage =
    "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">\n"
    "<meta name=\"generator\" content=\"trvfiles view 0.0.1\">\nold";

class ViewOutput : public ProjectDirectory {
protected:
    static std::string nameOf(const char* name) {
        return cli::pageNameOf(QString::fromUtf8(name)).toStdString();
    }

    // The reason of the problem, if there is one.
    static std::string save(const QString& name, const QStringList& inputs = {},
                            bool isForced = false) {
        return cli::savePage({name, inputs, isForced}, [](std::ostream& out) { out << "new\n"; })
            .reason.toStdString();
    }
};

TEST_F(ViewOutput, IsNamedAfterTheFile) {
    EXPECT_EQ(nameOf("bracket.xml"), "bracket.html");
    EXPECT_EQ(nameOf("sub/a.b.xml"), "a.b.html");
    EXPECT_EQ(nameOf("setup"), "setup.html");
    EXPECT_EQ(nameOf("[MACHINE_POSITION_1].mctx"), "[MACHINE_POSITION_1].html");
    EXPECT_EQ(nameOf("-"), "view.html");
}

TEST_F(ViewOutput, CreatesAFileAndNothingElse) {
    EXPECT_EQ(save(path("a.html")), "");
    EXPECT_EQ(bytes("a.html"), "new\n");
    EXPECT_EQ(names(), std::vector<std::string>{"a.html"});
}

TEST_F(ViewOutput, ReplacesAPageOfTheCommand) {
    EXPECT_EQ(save(file("a.html", oldPage)), "");
    EXPECT_EQ(bytes("a.html"), "new\n");
}

TEST_F(ViewOutput, KeepsAFileThatIsNoPage) {
    const std::string reason =
        "the file exists and is not a page of this command; --force replaces it";
    EXPECT_EQ(save(file("a.html", "<!DOCTYPE html>\n<html>mine</html>\n")), reason);
    EXPECT_EQ(save(file("b.html", "")), reason);
    EXPECT_EQ(bytes("a.html"), "<!DOCTYPE html>\n<html>mine</html>\n");
    EXPECT_EQ(names(), (std::vector<std::string>{"a.html", "b.html"}));
}

TEST_F(ViewOutput, ReplacesAnyFileIfItIsForced) {
    EXPECT_EQ(save(file("a.html", "mine"), {}, true), "");
    EXPECT_EQ(bytes("a.html"), "new\n");
}

TEST_F(ViewOutput, NeverReplacesAFileThatItShows) {
    const QString input = file("a.xml", "mine");
    std::filesystem::create_directory(directory_ / "sub");
    EXPECT_EQ(save(path("sub/../a.xml"), {path("other"), input}, true),
              "the page would replace a file that it shows");
    std::error_code error;
    std::filesystem::create_symlink("a.xml", directory_ / "link.html", error);
    if (!error) {
        EXPECT_EQ(save(path("link.html"), {input}, true),
                  "the page would replace a file that it shows");
    }
    EXPECT_EQ(bytes("a.xml"), "mine");
}

TEST_F(ViewOutput, IsNoDirectory) {
    std::filesystem::create_directory(directory_ / "a.html");
    EXPECT_EQ(save(path("a.html"), {}, true), "Is a directory");
    EXPECT_EQ(save(path("missing/a.html")), "No such file or directory");
}

TEST_F(ViewOutput, LeavesTheOldPageIfTheNewOneFails) {
    file("a.html", oldPage);
    const auto fail = [](std::ostream&) { throw std::runtime_error("gone"); };
    EXPECT_THROW(cli::savePage({path("a.html"), {}, false}, fail), std::runtime_error);
    const cli::Problem problem = cli::savePage(
        {path("a.html"), {}, false}, [](std::ostream& out) { out.setstate(std::ios::badbit); });
    EXPECT_EQ(problem.status, eFileIOShortWrite);
    EXPECT_EQ(bytes("a.html"), oldPage);
    EXPECT_EQ(names(), std::vector<std::string>{"a.html"});
}

}  // namespace
}  // namespace trv::testing
