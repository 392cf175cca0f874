// Runs the built command as a user does.

#include <tests/cli/process.h>
#include <tests/cli/samples.h>
#include <tests/common/child_process.h>
#include <tests/common/file_bytes.h>
#include <tests/common/host_locale.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/facade/CQvFilesIO.h>
#include <trvfiles/support/platform.h>

#include <QCoreApplication>
#include <QProcess>
#include <QTextCodec>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <initializer_list>
#include <string>

namespace trv::testing {
namespace {

class TrvfilesCommand : public ::testing::Test {
protected:
    static QStringList list(std::initializer_list<const char*> arguments) {
        QStringList result;
        for (const char* argument : arguments)
            result += QString::fromUtf8(argument);
        return result;
    }

    int run(std::initializer_list<const char*> arguments) { return process_.run(list(arguments)); }

    int runRedirected(const char* redirection, std::initializer_list<const char*> arguments) {
        return process_.runRedirected(redirection, list(arguments));
    }

    const std::string& out() const { return process_.out(); }
    const std::string& err() const { return process_.err(); }

    static bool hasShell() {
        return !platform::backslash_separates() && std::filesystem::exists("/bin/sh");
    }

    TemporaryDirectory directory_;
    Process process_{directory_.path()};
};

TEST_F(TrvfilesCommand, PrintsItsVersion) {
    EXPECT_EQ(run({"--version"}), 0);
    EXPECT_EQ(out(), "trvfiles " TRV_VERSION "\n");
    EXPECT_EQ(err(), "");
}

TEST_F(TrvfilesCommand, RejectsAWrongCallOnStandardError) {
    EXPECT_EQ(run({"axis"}), 2);
    EXPECT_EQ(out(), "");
    EXPECT_EQ(err(), "trvfiles axis: a command is missing\nTry 'trvfiles axis --help'.\n");
}

TEST_F(TrvfilesCommand, LeavesNoArgumentToQt) {
    EXPECT_EQ(run({"-qmljsdebugger=x"}), 2);
    EXPECT_EQ(out(), "");
    EXPECT_EQ(err(), "trvfiles: unknown option '-qmljsdebugger=x'\nTry 'trvfiles --help'.\n");
    EXPECT_EQ(run({"check", "-qmljsdebugger=x", "a"}), 2);
    EXPECT_EQ(out(), "");
    EXPECT_EQ(run({"check", "--", "-qmljsdebugger", "-qmljsdebugger=x"}), 1);
    EXPECT_EQ(err(),
              "-qmljsdebugger: error: eFileIOOpenError: No such file or directory\n"
              "-qmljsdebugger=x: error: eFileIOOpenError: No such file or directory\n");
}

TEST_F(TrvfilesCommand, DoesNotChangeItsArguments) {
    for (const char* argument : {"", " ", "a b", "\"", "a \"b\" c", "*", "?", u8"ü€😀"}) {
        EXPECT_EQ(run({argument}), 2);
        EXPECT_EQ(err(), "trvfiles: unknown command '" + std::string(argument) +
                             "'\nTry 'trvfiles --help'.\n");
    }
    EXPECT_EQ(run({"\\a\\\\\"b c\\"}), 2);
    EXPECT_EQ(err(),
              "trvfiles: unknown command '\\\\a\\\\\\\\\"b c\\\\'\nTry 'trvfiles --help'.\n");
}

TEST_F(TrvfilesCommand, ShowsAnAxisFileThatAHostWrote) {
    const double matrix[] = {0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 10, 20, 30, 1};
    ASSERT_EQ(CQvFilesIO(directory_.text()).writeAxis(L"a.ref", matrix, 3, 0, 7), eFileIOSuccess);
    EXPECT_EQ(run({"show", "a.ref"}), 0);
    EXPECT_EQ(err(), "");
    EXPECT_EQ(out(),
              "Axis file a.ref\n"
              "\n"
              "Matrix\n"
              "  x axis           0.000000      1.000000      0.000000      0.000000\n"
              "  y axis          -1.000000      0.000000      0.000000      0.000000\n"
              "  z axis           0.000000      0.000000      1.000000      0.000000\n"
              "  translation     10.000000     20.000000     30.000000      1.000000\n"
              "\n"
              "Inverse\n"
              "  x axis           0.000000     -1.000000      0.000000      0.000000\n"
              "  y axis           1.000000      0.000000      0.000000      0.000000\n"
              "  z axis           0.000000      0.000000      1.000000      0.000000\n"
              "  translation    -20.000000     10.000000    -30.000000      1.000000\n"
              "\n"
              "Identity     no\n"
              "Orthonormal  yes\n"
              "Mirror       no\n"
              "Singular     no\n"
              "Tags         3 0 7\n");
}

TEST_F(TrvfilesCommand, ShowsAnAssemblyOfMaxDepth) {
    writeBytes(directory_ / "deep.xml", chainXml(999, "f.stl"));
    EXPECT_EQ(run({"check", "deep.xml"}), 0);
    EXPECT_EQ(out(), "deep.xml: ok (assembly, 999 components, 1 placed file)\n");
    EXPECT_EQ(run({"assembly", "list", "deep.xml"}), 0);
    EXPECT_EQ(out(), "f.stl, at 0 0 0, axes 1 0 0 / 0 1 0 / 0 0 1\n");
    EXPECT_EQ(run({"assembly", "diff", "deep.xml", "deep.xml"}), 0);
    EXPECT_EQ(run({"show", "--json", "deep.xml"}), 0);
    writeBytes(directory_ / "deep.xml", chainXml(1000, "f.stl"));
    EXPECT_EQ(run({"assembly", "tree", "deep.xml"}), 2);
    EXPECT_NE(err().find(": more than 2000 elements are open\n"), std::string::npos) << err();
}

TEST_F(TrvfilesCommand, EndsWithOneForANegativeAnswer) {
    writeBytes(directory_ / "a.xml", setupXml);
    writeBytes(directory_ / "note", "note");
    EXPECT_EQ(run({"check", "a.xml", "note", "missing"}), 1);
    EXPECT_EQ(out(),
              "a.xml: ok (assembly, 3 components, 1 placed file)\n"
              "note: error\n"
              "missing: error\n"
              "3 files: 1 ok, 2 with errors\n");
    EXPECT_EQ(err(),
              "note: error: eFileIOContentError: neither an assembly, nor an axis file, nor a "
              "machine context\n"
              "missing: error: eFileIOOpenError: No such file or directory\n");
}

TEST_F(TrvfilesCommand, AcceptsNamesWithBlanksAndEveryCharacterInEveryLocale) {
    const char* const name = u8"Spann vorrichtung ü€😀.xml";
    writeBytes(directory_ / name,
               u8"<ComponentInfo version=\"1\"><Attributs/>"
               u8"<Component name=\"Stück\"/></ComponentInfo>");
    for (const char* locale : {"C", "POSIX", "C.UTF-8", "de_DE.ISO-8859-1"}) {
        process_.setVariable("LC_ALL", locale);
        EXPECT_EQ(run({"check", name}), 0) << locale;
        EXPECT_EQ(out(), name + std::string(": ok (assembly, 1 component, 0 placed files)\n"));
        EXPECT_EQ(run({"assembly", "tree", name}), 0) << locale;
        EXPECT_EQ(out(), u8"Stück, at 0 0 0\n");
        EXPECT_EQ(run({"axis", "write", u8"Lösung.ref"}), 0) << locale;
        EXPECT_TRUE(std::filesystem::remove(directory_ / u8"Lösung.ref"));
        EXPECT_EQ(run({"show", u8"fehlt ü"}), 2) << locale;
        EXPECT_EQ(err(), u8"trvfiles: fehlt ü: eFileIOOpenError: No such file or directory\n");
    }
}

TEST_F(TrvfilesCommand, PrintsTheSameMessagesInEveryLocale) {
    if (!can_fork) GTEST_SKIP() << "the locale is set in a child process";
    const HostLocale locale("UTF-8");
    if (!locale.exists()) GTEST_SKIP() << "localedef cannot make a German locale here";
    EXPECT_TRUE(passesInChild([&] {
        ASSERT_TRUE(locale.adopt());
        ASSERT_TRUE(setEnvironment("LANGUAGE", "de"));
        std::filesystem::current_path(directory_.path());
        EXPECT_NE(std::system("'" TRV_COMMAND "' check missing >/dev/null 2>message"), 0);
    }));
    EXPECT_EQ(textOf(directory_ / "message"),
              "missing: error: eFileIOOpenError: No such file or directory\n");
}

TEST_F(TrvfilesCommand, ReadsAndWritesNumbersWithAPointInEveryLocale) {
    if (!can_fork) GTEST_SKIP() << "the locale is set in a child process";
    for (const char* charset : {"UTF-8", "ISO-8859-1"}) {
        const HostLocale locale(charset);
        if (!locale.exists()) GTEST_SKIP() << "localedef cannot make a German locale here";
        EXPECT_TRUE(passesInChild([&] {
            ASSERT_TRUE(locale.adopt());
            std::filesystem::current_path(directory_.path());
            const auto shell = [](const std::string& arguments) {
                return std::system(("'" TRV_COMMAND "' " + arguments).c_str());
            };
            ASSERT_EQ(shell("axis write --translate 1.5,-2.25,1e-3 a.ref"), 0);
            ASSERT_EQ(shell("axis show --json a.ref >a.json"), 0);
            EXPECT_NE(shell("axis write --translate '1,5;2;3' a.ref 2>message"), 0);
        }));
        EXPECT_EQ(textOf(directory_ / "a.ref").substr(0, 65),
                  "      1\n      1.000000      0.000000      0.000000      1.500000\n");
        EXPECT_NE(textOf(directory_ / "a.json").find(",1.5,-2.25,0.001,1]"), std::string::npos);
    }
}

TEST_F(TrvfilesCommand, FailsWhenStandardOutputIsFull) {
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "there is no full device here";
    writeBytes(directory_ / "a.xml", setupXml);
    EXPECT_EQ(runRedirected(">/dev/full", {"show", "a.xml"}), 2);
    EXPECT_EQ(err(), "trvfiles: standard output cannot be written\n");
    EXPECT_EQ(runRedirected(">/dev/full", {"--help"}), 2);
    EXPECT_EQ(runRedirected(">/dev/full", {"check", "missing"}), 2);
}

TEST_F(TrvfilesCommand, FailsWhenStandardOutputIsClosed) {
    if (!hasShell()) GTEST_SKIP() << "a shell closes the stream";
    writeBytes(directory_ / "a.xml", setupXml);
    EXPECT_EQ(runRedirected(">&-", {"show", "a.xml"}), 2);
    EXPECT_EQ(err(), "trvfiles: standard output is closed\n");
    EXPECT_EQ(runRedirected(">&-", {"axis", "write", "a.ref"}), 2);
    EXPECT_FALSE(std::filesystem::exists(directory_ / "a.ref"));
}

TEST_F(TrvfilesCommand, FailsWhenItsOutputIsNotRead) {
    if (!hasShell()) GTEST_SKIP() << "a shell makes the pipe";
    writeBytes(directory_ / "deep.xml", chainXml(999, "f.stl"));
    // The text is much longer than the buffer of a pipe.
    EXPECT_EQ(process_.start(
                  QStringLiteral("/bin/sh"),
                  {QStringLiteral("-c"),
                   QStringLiteral("trap '' PIPE; { \"$0\" assembly tree deep.xml; echo $? >&2; } "
                                  "| true"),
                   QStringLiteral(TRV_COMMAND)}),
              0);
    EXPECT_EQ(err(), "trvfiles: standard output cannot be written\n2\n");
}

TEST_F(TrvfilesCommand, WritesItsWholeTextWithStandardInputAndErrorClosed) {
    if (!hasShell()) GTEST_SKIP() << "a shell closes the streams";
    writeBytes(directory_ / "a.xml", setupXml);
    EXPECT_EQ(runRedirected("<&- 2>&-", {"assembly", "list", "a.xml"}), 0);
    EXPECT_EQ(out(), "vise, small.stl, at 10 5 0.1, axes 1 0 0 / 0 1 0 / 0 0 1\n");
}

}  // namespace
}  // namespace trv::testing
