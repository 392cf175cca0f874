#include <cli/view_command.h>
#include <tests/cli/process.h>
#include <tests/cli/scene_sample.h>
#include <tests/common/current_directory.h>
#include <trvfiles/support/platform.h>
#include <trvfiles/version.h>

#include <filesystem>

namespace trv::testing {
namespace {

class ViewCommand : public ViewedProject {
protected:
    void SetUp() override {
        if (cli::embeddedPageParts().scripts.empty()) GTEST_SKIP() << "built without libjs-three";
    }

    static Answer view(const QStringList& arguments) { return answerTo(words("view") + arguments); }

    static std::string refused(const QStringList& arguments) {
        const Answer answer = view(arguments);
        EXPECT_EQ(answer.status, 2);
        EXPECT_EQ(answer.out, "");
        const std::string end = "\nTry 'trvfiles view --help'.\n";
        EXPECT_EQ(answer.err.substr(answer.err.size() - std::min(end.size(), answer.err.size())),
                  end);
        return answer.err.substr(0, answer.err.find('\n'));
    }
};

TEST_F(ViewCommand, WritesAPageInTheCurrentDirectory) {
    file("vise, small.stl", emptyStl);
    file("part.stl", emptyStl);
    const QString setup = file("setup.xml", setupXml);
    std::filesystem::create_directory(directory_ / "elsewhere");
    const CurrentDirectory current(directory_ / "elsewhere");
    const Answer answer = view({setup});
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.out, "setup.html\n");
    EXPECT_EQ(answer.err, "");
    EXPECT_NE(bytes("elsewhere/setup.html").find("id=\"geometry-1\""), std::string::npos);
}

TEST_F(ViewCommand, WritesAPageThatIsNamed) {
    const QString setup = file("setup.xml", setupXml);
    const Answer answer = view({setup, QStringLiteral("-o"), path("a.html")});
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.out, text("a.html") + "\n");
    EXPECT_EQ(view({QStringLiteral("--output"), path("a.html"), setup}).status, 0);
    EXPECT_EQ(names(), (std::vector<std::string>{"a.html", "setup.xml"}));
}

TEST_F(ViewCommand, WritesAPageToStandardOutput) {
    const QString setup = file("setup.xml", setupXml);
    const Answer answer = view({QStringLiteral("-o"), QStringLiteral("-"), setup});
    view({QStringLiteral("-o"), path("a.html"), setup});
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.out, bytes("a.html"));
    EXPECT_EQ(answer.out.substr(0, 15), "<!DOCTYPE html>");
}

TEST_F(ViewCommand, ReportsTheGeometryThatItDoesNotShow) {
    file("part.stl", "no geometry");
    const Answer answer = view({file("setup.xml", setupXml), QStringLiteral("-o"), path("a.html")});
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(answer.err,
              "trvfiles: vise, small.stl: file not found; shown as a box\n"
              "trvfiles: part.stl: not an STL, OBJ or PLY file; shown as a box\n");
}

TEST_F(ViewCommand, KeepsAFileThatIsNoPage) {
    const QString setup = file("setup.xml", setupXml);
    const QString mine = file("a.html", "mine");
    const Answer answer = view({setup, QStringLiteral("-o"), mine});
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.out, "");
    EXPECT_EQ(answer.err, "trvfiles: " + text("a.html") +
                              ": eFileIOOpenError: the file exists and is not a page of this "
                              "command; --force replaces it\n");
    EXPECT_EQ(bytes("a.html"), "mine");
    EXPECT_EQ(view({setup, QStringLiteral("--force"), QStringLiteral("-o"), mine}).status, 0);
    EXPECT_EQ(bytes("a.html").substr(0, 15), "<!DOCTYPE html>");
}

TEST_F(ViewCommand, RejectsWrongCalls) {
    const QString setup = file("setup.xml", setupXml);
    const QString axis = file("a.dat", identityAxis);
    const QString diff = QStringLiteral("--diff");
    EXPECT_EQ(refused({}), "trvfiles view: a file name is missing");
    EXPECT_EQ(
        refused({setup, file("b.xml", setupXml)}),
        "trvfiles view: '" + text("b.xml") + "' is one assembly too many; --diff compares two");
    EXPECT_EQ(refused({diff, setup}), "trvfiles view: --diff takes two assemblies, not 1");
    EXPECT_EQ(refused({diff, axis}), "trvfiles view: --diff takes two assemblies, not 0");
    EXPECT_EQ(refused({diff, setup, setup, axis, setup}),
              "trvfiles view: --diff takes two assemblies, not 3");
    EXPECT_EQ(refused({setup, QStringLiteral("-o"), QString()}),
              "trvfiles view: --output takes the name of a file");
    EXPECT_EQ(refused({setup, QStringLiteral("--open"), QStringLiteral("-o"), QStringLiteral("-")}),
              "trvfiles view: --open is not valid with standard output");
    EXPECT_EQ(refused({setup, QStringLiteral("--json"), QStringLiteral("--force")}),
              "trvfiles view: --json and --force exclude each other");
    EXPECT_EQ(refused({setup, QStringLiteral("--json"), QStringLiteral("--open")}),
              "trvfiles view: --json and --open exclude each other");
    EXPECT_EQ(refused({setup, QStringLiteral("--json"), QStringLiteral("-o"), path("x")}),
              "trvfiles view: --json and --output exclude each other");
    EXPECT_EQ(refused({setup, QStringLiteral("--opne")}),
              "trvfiles view: unknown option '--opne'; did you mean '--open'?");
}

TEST_F(ViewCommand, ReportsEachFileThatCannotBeRead) {
    const Answer answer =
        view({path("missing.xml"), file("setup.xml", setupXml), file("notes.txt", "notes\n"),
              file("broken.xml", "<ComponentInfo>"), QStringLiteral("-o"), path("a.html")});
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(answer.out, "");
    EXPECT_EQ(answer.err,
              "trvfiles: " + text("missing.xml") +
                  ": eFileIOOpenError: No such file or directory\n"
                  "trvfiles: " +
                  text("notes.txt") +
                  ": eFileIOContentError: neither an assembly, nor an axis file, nor a machine "
                  "context\n");
    EXPECT_FALSE(exists("a.html"));
}

TEST_F(ViewCommand, ShowsFramesWithoutAnAssembly) {
    const QJsonObject data = dataOf({file("a.dat", identityAxis)});
    EXPECT_EQ(data.value(QLatin1String("assemblies")).toArray().size(), 0);
    EXPECT_EQ(data.value(QLatin1String("frames")).toArray().size(), 1);
    EXPECT_EQ(data.value(QLatin1String("title")).toString(), path("a.dat"));
}

TEST_F(ViewCommand, SharesTheFilesOfTwoAssemblies) {
    const QString first = file("a.xml", chainXml(1, "x.stl"));
    const QString second = file("b.xml", chainXml(2, "./x.stl"));
    const QJsonObject data = dataOf({QStringLiteral("--diff"), first, second});
    EXPECT_EQ(data.value(QLatin1String("files")).toArray().size(), 1);
    EXPECT_EQ(integersOf(column(assemblyIn(data, 0), "placements", "file")), std::vector<int>{0});
    EXPECT_EQ(integersOf(column(assemblyIn(data, 1), "placements", "file")), std::vector<int>{0});
    EXPECT_EQ(assemblyIn(data, 1).value(QLatin1String("path")).toString(), second);
}

// On POSIX the page can be opened with a program of the test.
TEST_F(ViewCommand, OpensThePage) {
    if (platform::backslash_separates()) GTEST_SKIP() << "no xdg-open";
    file("setup.xml", setupXml);
    file("vise, small.stl", emptyStl);
    file("part.stl", emptyStl);
    file("bin/xdg-open", "#!/bin/sh\necho \"$# $1\"\nprintf %s \"$1\" > opened\nexit 0\n");
    std::filesystem::permissions(directory_ / "bin/xdg-open", std::filesystem::perms::owner_all);
    Process process(directory_.path());
    process.setVariable("PATH", (text("bin") + ":/bin:/usr/bin").c_str());
    const QStringList call = words("view --open setup.xml -o a;b.html");
    EXPECT_EQ(process.run(call), 0);
    EXPECT_EQ(process.out(), "a;b.html\n");
    EXPECT_EQ(bytes("opened"), text("a;b.html"));

    file("bin/xdg-open", "#!/bin/sh\nexit 3\n");
    EXPECT_EQ(process.run(call), 2);
    EXPECT_EQ(process.out(), "a;b.html\n");
    EXPECT_EQ(process.err(),
              "trvfiles: a;b.html: the page is written, but not opened: xdg-open "
              "ended with status 3\n");
}

TEST(ViewCommandWithoutThreeJs, WritesNoPage) {
    QCommandLineParser call;
    call.addOptions(cli::viewCommand().front().options);
    ASSERT_TRUE(call.parse({QStringLiteral("view"), QStringLiteral("a.xml")}));
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(cli::viewFiles(call, {out, err}, {}), cli::failed);
    EXPECT_EQ(out.str(), "");
    EXPECT_EQ(err.str(),
              "trvfiles: this command was built without libjs-three, which a page needs\n");
}

class ViewDataWithoutThreeJs : public ViewedProject {};

TEST_F(ViewDataWithoutThreeJs, IsPrinted) {
    const QString axis = file("a.dat", identityAxis);
    QCommandLineParser call;
    call.addOptions(cli::viewCommand().front().options);
    ASSERT_TRUE(call.parse({QStringLiteral("view"), QStringLiteral("--json"), axis}));
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(cli::viewFiles(call, {out, err}, {}), cli::done);
    EXPECT_EQ(out.str(), viewed({axis}).out);
    EXPECT_EQ(err.str(), "");
}

}  // namespace
}  // namespace trv::testing
