#include <cli/input_files.h>
#include <tests/cli/process.h>
#include <tests/cli/samples.h>
#include <tests/common/child_process.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/support/platform.h>

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <functional>
#include <sstream>
#include <thread>

namespace trv::cli {
namespace {

class InputFiles : public ::testing::Test {
protected:
    QString file(const char* name, std::string_view bytes) const {
        testing::writeBytes(directory_ / name, bytes);
        return path(name);
    }

    QString path(const char* name) const {
        return QString::fromStdString((directory_ / name).generic_string());
    }

    static std::string text(const Problem& problem) {
        return problem ? problemText(problem).toStdString() : "";
    }

    std::string assemblyProblem(std::string_view xml) const {
        CTrvAssemblyData ignored;
        return text(readAssembly(file("a.xml", xml), ignored));
    }

    static Problem write(const QString& name, const AxisFile& axis) {
        return writeAxis(name, axis, holdFile(name).get());
    }

    std::string axisProblem(std::string_view lines) const {
        AxisFile ignored;
        return text(readAxis(file("a.ref", lines), ignored));
    }

    testing::TemporaryDirectory directory_;
};

TEST_F(InputFiles, NamesEveryStatus) {
    EXPECT_EQ(text({eFileIOOpenError, QStringLiteral("x")}), "eFileIOOpenError: x");
    EXPECT_EQ(text({eFileIOShortWrite, QStringLiteral("x")}), "eFileIOShortWrite: x");
    EXPECT_EQ(text({eFileIOContentError, QStringLiteral("x")}), "eFileIOContentError: x");
    EXPECT_EQ(text({eFileIOStructureError, QStringLiteral("x\n")}),
              "eFileIOStructureError: x\\x0a");
    EXPECT_EQ(problemText({}).toStdString(), "eFileIOSuccess: ");
}

TEST_F(InputFiles, ReportsOnTheErrorStreamAndFails) {
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(report(QStringLiteral("a\tb"), {eFileIOOpenError, QStringLiteral("why")}, {out, err}),
              failed);
    EXPECT_EQ(out.str(), "");
    EXPECT_EQ(err.str(), "trvfiles: a\\x09b: eFileIOOpenError: why\n");
}

TEST_F(InputFiles, NameStandardInputInTexts) {
    EXPECT_EQ(displayName(QStringLiteral("-")).toStdString(), "standard input");
    EXPECT_EQ(displayName(QStringLiteral("./-")).toStdString(), "./-");
}

TEST_F(InputFiles, AreReadUnderTheirOwnPath) {
    QString readable;
    EXPECT_FALSE(readablePath(file("a", ""), readable));
    EXPECT_EQ(readable, path("a"));
    EXPECT_FALSE(readablePath(path("missing"), readable));
    EXPECT_EQ(readable, path("missing"));
}

TEST_F(InputFiles, WriteNoStandardInput) {
    const QString name = QStringLiteral("-");
    const std::string refusal = "eFileIOOpenError: standard input cannot be written";
    EXPECT_EQ(text(writeAxis(name, {}, nullptr)), refusal);
    EXPECT_EQ(text(writeContext(name, {})), refusal);
    EXPECT_EQ(holdFile(name), nullptr);
}

TEST_F(InputFiles, FindsTheKindByContentWhateverTheName) {
    FileKind kind = FileKind::unknown;
    EXPECT_FALSE(findKind(file("a.ref", testing::setupXml), kind));
    EXPECT_EQ(kind, FileKind::assembly);
    EXPECT_FALSE(findKind(file("a.xml", testing::turnedAxis), kind));
    EXPECT_EQ(kind, FileKind::axis);
}

TEST_F(InputFiles, ReportsWhyThereIsNoKind) {
    FileKind kind = FileKind::axis;
    EXPECT_EQ(text(findKind(file("empty", ""), kind)), "eFileIOContentError: the file is empty");
    EXPECT_EQ(kind, FileKind::unknown);
    EXPECT_EQ(text(findKind(file("note", "note"), kind)),
              "eFileIOContentError: neither an assembly, nor an axis file, nor a machine context");
    EXPECT_EQ(text(findKind(path("missing"), kind)), "eFileIOOpenError: No such file or directory");
    EXPECT_EQ(text(findKind(path(""), kind)), "eFileIOOpenError: Is a directory");
}

TEST_F(InputFiles, LooksIntoNoDevice) {
    if (!std::filesystem::exists("/dev/zero")) GTEST_SKIP() << "there are no device files here";
    FileKind kind = FileKind::axis;
    AxisFile axis;
    const std::string refusal = "eFileIOOpenError: not a regular file";
    EXPECT_EQ(text(findKind(QStringLiteral("/dev/zero"), kind)), refusal);
    EXPECT_EQ(text(readAxis(QStringLiteral("/dev/zero"), axis)), refusal);
    CTrvAssemblyData assembly;
    EXPECT_EQ(text(readAssembly(QStringLiteral("/dev/zero"), assembly)), refusal);
}

TEST_F(InputFiles, ReportsMissingRights) {
    if (!testing::can_fork) GTEST_SKIP() << "rights are given up in a child process";
    const QString name = file("secret", testing::setupXml);
    std::filesystem::permissions(directory_.path(), std::filesystem::perms(0755));
    std::filesystem::permissions(directory_ / "secret", std::filesystem::perms::none);
    EXPECT_TRUE(testing::passesInChild([&] {
        ASSERT_TRUE(testing::becomeOrdinaryUser());
        const std::string denied = "eFileIOOpenError: Permission denied";
        FileKind kind = FileKind::unknown;
        CTrvAssemblyData assembly;
        AxisFile axis;
        EXPECT_EQ(text(findKind(name, kind)), denied);
        EXPECT_EQ(text(readAssembly(name, assembly)), denied);
        EXPECT_EQ(text(readAxis(name, axis)), denied);
        EXPECT_EQ(text(write(name, axis)), denied);
    }));
}

TEST_F(InputFiles, FailWithAReason) {
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(fail(QStringLiteral("%2\n"), QStringLiteral("why"), {out, err}), failed);
    EXPECT_EQ(out.str(), "");
    EXPECT_EQ(err.str(), "trvfiles: %2\\x0a: why\n");
}

TEST_F(InputFiles, ReadsAnAssembly) {
    CTrvAssemblyData assembly;
    EXPECT_FALSE(readAssembly(file("a.xml", testing::setupXml), assembly));
    EXPECT_EQ(assembly.getRootComponent().getName(), "Setup");
    EXPECT_EQ(assembly.getComponentNumber(), 2U);
}

TEST_F(InputFiles, ReportsThePlaceOfAFaultInAnAssembly) {
    EXPECT_EQ(assemblyProblem("<ComponentInfo version=\"1\">\n<Attributs>\n</ComponentInfo>"),
              "eFileIOContentError: line 3, column 16: tag mismatch: <Attributs> of line 2 is not "
              "closed");
    EXPECT_EQ(
        assemblyProblem("<ComponentInfo>\n<Attributs>\n<a/>"),
        "eFileIOContentError: line 3, column 5: unexpected end of file: <Attributs> of line 2 "
        "is not closed");
    EXPECT_EQ(assemblyProblem("<ComponentInfo version=\"1\"/>"),
              "eFileIOContentError: line 1, column 27: <ComponentInfo> has no <Attributs>");
    EXPECT_EQ(assemblyProblem("<ComponentInfo version=\"1\"><Attributs/></ComponentInfo>"),
              "eFileIOContentError: line 1, column 27: <ComponentInfo> has no <Component>");
    EXPECT_EQ(assemblyProblem("\n<a/>"),
              "eFileIOStructureError: line 2, column 3: the root element is <a>, not "
              "<ComponentInfo>");
    EXPECT_EQ(assemblyProblem("<a>\n  <!--\x01--></a>"),
              "eFileIOContentError: line 2, column 7: XML does not allow the character U+0001");
    EXPECT_EQ(
        assemblyProblem("<ComponentInfo version=\"1.0\"/>"),
        "eFileIOContentError: line 1, column 29: the version of <ComponentInfo> is no integer");
}

TEST_F(InputFiles, NamesACommandForAFileOfAnotherKind) {
    const std::string isAssembly =
        "eFileIOContentError: this is an assembly; try 'trvfiles assembly tree'";
    const std::string isAxis =
        "eFileIOContentError: this is an axis file; try 'trvfiles axis show'";
    const std::string isContext =
        "eFileIOContentError: this is a machine context; try 'trvfiles show'";
    EXPECT_EQ(axisProblem(testing::setupXml), isAssembly);
    EXPECT_EQ(axisProblem(testing::setupContext), isContext);
    EXPECT_EQ(assemblyProblem(testing::identityAxis), isAxis);
    EXPECT_EQ(assemblyProblem(testing::setupContext), isContext);
    ContextFile context;
    EXPECT_EQ(text(readContext(file("a.mctx", testing::setupXml), context)), isAssembly);
    EXPECT_EQ(text(readContext(file("a.mctx", testing::identityAxis), context)), isAxis);
    // No other kind.
    EXPECT_EQ(axisProblem("note"), "eFileIOContentError: line 2: four numbers are expected");
    EXPECT_FALSE(readContext(file("a.mctx", "note"), context));
}

TEST_F(InputFiles, ReportsWhyAnAssemblyDoesNotOpen) {
    CTrvAssemblyData ignored;
    EXPECT_EQ(text(readAssembly(path("missing"), ignored)),
              "eFileIOOpenError: No such file or directory");
    EXPECT_EQ(text(readAssembly(path(""), ignored)), "eFileIOOpenError: Is a directory");
    // The current directory.
    EXPECT_EQ(text(readAssembly(QString(), ignored)), "eFileIOOpenError: Is a directory");
}

TEST_F(InputFiles, ReadsAnAxisFileWithItsTags) {
    AxisFile axis;
    EXPECT_FALSE(readAxis(file("a.ref", testing::turnedAxis), axis));
    EXPECT_EQ(axis.matrix, (AxisMatrix{0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 10, 20, 30, 1}));
    EXPECT_EQ(axis.tags, (std::array<int, 3>{3, 0, 7}));
}

TEST_F(InputFiles, LeavesMissingTagsNegative) {
    AxisFile axis;
    EXPECT_FALSE(readAxis(file("a.ref", testing::identityAxis), axis));
    EXPECT_EQ(axis.tags, (std::array<int, 3>{-1, -1, -1}));
    EXPECT_FALSE(readAxis(file("b.ref", std::string(testing::identityAxis) + "  #5 x\n"), axis));
    EXPECT_EQ(axis.tags, (std::array<int, 3>{5, -1, -1}));
}

TEST_F(InputFiles, ReportsTheFaultyLineOfAnAxisFile) {
    EXPECT_EQ(axisProblem(""), "eFileIOContentError: line 2: four numbers are expected");
    EXPECT_EQ(axisProblem("0\n1 0 0 0\n0 1 0 0\n0 0 1\n0 0 0 1\n"),
              "eFileIOContentError: line 4: four numbers are expected");
    EXPECT_EQ(axisProblem("0\n1 0 0 0\n0 1 0 0\n0 0 1 0\n"),
              "eFileIOContentError: line 5: four numbers are expected");
}

TEST_F(InputFiles, ReportsWhyAnAxisFileDoesNotOpen) {
    AxisFile ignored;
    EXPECT_EQ(text(readAxis(path("missing"), ignored)),
              "eFileIOOpenError: No such file or directory");
    EXPECT_EQ(text(readAxis(path(""), ignored)), "eFileIOOpenError: Is a directory");
}

// Calls `change` repeatedly in another thread until it is destroyed.
class Changing {
public:
    explicit Changing(const std::function<void()>& change)
        : thread_([this, change] {
              while (!stopped_)
                  change();
          }) {}
    ~Changing() {
        stopped_ = true;
        thread_.join();
    }
    Changing(const Changing&) = delete;
    Changing& operator=(const Changing&) = delete;

private:
    std::atomic<bool> stopped_ = false;
    std::thread thread_;
};

TEST_F(InputFiles, NamesNoLineThatAFileDoesNotHave) {
    const QString name = file("a.ref", "");
    const Changing writer([&] {
        file("a.ref", "0\n1 0 0 0\n");
        file("a.ref", testing::identityAxis);
    });
    for (int i = 0; i < 20000; ++i) {
        AxisFile ignored;
        ASSERT_EQ(text(readAxis(name, ignored)).find("line 0"), std::string::npos);
    }
}

TEST_F(InputFiles, WritesAnAxisFile) {
    const AxisFile axis = {{0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 10, 20, 30, 1}, {3, 0, 7}};
    EXPECT_FALSE(write(path("a.ref"), axis));
    EXPECT_EQ(testing::textOf(directory_ / "a.ref"), testing::turnedAxis);
}

TEST_F(InputFiles, ReportsEveryFailureToWrite) {
    EXPECT_EQ(text(write(path("missing/a.ref"), {})),
              "eFileIOOpenError: No such file or directory");
    // The rest of the text is from the system.
    EXPECT_EQ(text(write(path(""), {})).substr(0, 18), "eFileIOOpenError: ");
    // Windows allows such a name, but no code page has it.
    EXPECT_EQ(text(write(path("a") + QChar(0xD800), {})),
              platform::backslash_separates()
                  ? "eFileIOOpenError: the local code page lacks a character of the file name"
                  : "eFileIOOpenError: not a valid file name");
}

TEST_F(InputFiles, ReplacesNothingButARegularFile) {
    EXPECT_EQ(text(write(path(""), {})), "eFileIOOpenError: Is a directory");
    testing::Process process(directory_.path());
    if (process.start(QStringLiteral("mkfifo"), {path("pipe")}) != 0) {
        GTEST_SKIP() << "there are no named pipes here";
    }
    EXPECT_EQ(text(write(path("pipe"), {})), "eFileIOOpenError: not a regular file");
    EXPECT_TRUE(std::filesystem::is_fifo(directory_ / "pipe"));
}

TEST_F(InputFiles, SeesAFileThatCannotGrow) {
    if (!testing::can_fork) GTEST_SKIP() << "the limit is set in a child process";
    EXPECT_TRUE(testing::passesInChild([&] {
        ASSERT_TRUE(testing::limitFileSize(100));
        EXPECT_EQ(text(write(path("a.ref"), {})), "eFileIOShortWrite: File too large");
        EXPECT_FALSE(std::filesystem::exists(directory_ / "a.ref"));
    }));
    file("a.ref", testing::turnedAxis);
    EXPECT_TRUE(testing::passesInChild([&] {
        ASSERT_TRUE(testing::limitFileSize(100));
        EXPECT_EQ(text(write(path("a.ref"), {})), "eFileIOShortWrite: File too large");
    }));
    EXPECT_EQ(testing::textOf(directory_ / "a.ref"), testing::turnedAxis);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(directory_.path()), {}), 1);
}

TEST_F(InputFiles, KeepsALinkToAnAxisFile) {
    if (!testing::can_fork) GTEST_SKIP() << "links need rights here";
    file("real", testing::turnedAxis);
    std::filesystem::create_symlink("real", directory_ / "link");
    EXPECT_FALSE(write(path("link"), {identityAxis}));
    EXPECT_TRUE(std::filesystem::is_symlink(directory_ / "link"));
    EXPECT_EQ(testing::textOf(directory_ / "real"), testing::identityAxis);
}

TEST_F(InputFiles, ReadsAMachineContext) {
    ContextFile context;
    EXPECT_FALSE(readContext(file("a.mctx", testing::setupContext), context));
    EXPECT_EQ(context.data.getName(), "Setup A");
    EXPECT_EQ(context.data.getClampingProximity(), 2.5);
    EXPECT_TRUE(context.missingSections.isEmpty());
}

TEST_F(InputFiles, NamesTheSectionsThatAMachineContextLacks) {
    ContextFile context;
    EXPECT_FALSE(
        readContext(file("a.mctx", "[header]\n[machine]\n\nname=M\nposition=P\n"), context));
    EXPECT_EQ(context.missingSections.join(QLatin1Char(' ')).toStdString(),
              "header postpro clamping_system");
}

TEST_F(InputFiles, ReportsWhichKeyAMachineContextLacks) {
    ContextFile context;
    EXPECT_EQ(text(readContext(file("a.mctx", "[header]\nname=x\n\n[machine]\nname=M\n"), context)),
              "eFileIOContentError: line 4: section [machine] has no \"position\"");
    EXPECT_EQ(text(readContext(file("a.mctx", "[machine]\n#\n"), context)),
              "eFileIOContentError: line 1: section [machine] has no \"name\"");
    EXPECT_EQ(text(readContext(file("a.mctx", "\n[postpro]\norigin=1 2 3\n"), context)),
              "eFileIOContentError: line 2: section [postpro] has no \"origin_program\"");
}

TEST_F(InputFiles, ReportsWhyAMachineContextDoesNotOpen) {
    ContextFile context;
    EXPECT_EQ(text(readContext(path("missing"), context)),
              "eFileIOOpenError: No such file or directory");
    EXPECT_EQ(text(readContext(path(""), context)), "eFileIOOpenError: Is a directory");
    if (!std::filesystem::exists("/dev/zero")) GTEST_SKIP() << "there are no device files here";
    EXPECT_EQ(text(readContext(QStringLiteral("/dev/zero"), context)),
              "eFileIOOpenError: not a regular file");
}

TEST_F(InputFiles, ReportsThatAMachineContextIsTooLong) {
    ContextFile context;
    const QString name = file("long.mctx", "[header]\n");
    std::filesystem::resize_file(directory_ / "long.mctx", (std::uintmax_t{256} << 20) + 1);
    EXPECT_EQ(text(readContext(name, context)),
              "eFileIOOpenError: the file is longer than 256 MiB");
}

TEST_F(InputFiles, WritesAMachineContext) {
    ContextFile context;
    ASSERT_FALSE(readContext(file("a.mctx", testing::setupContext), context));
    EXPECT_FALSE(writeContext(path("b.mctx"), context.data));
    EXPECT_EQ(testing::textOf(directory_ / "b.mctx"), testing::setupContext);
}

TEST_F(InputFiles, ReportsWhyAMachineContextCannotBeReplaced) {
    std::filesystem::create_directories(directory_ / "a.mctx");
    file("a.mctx/in the way", "");
    const Problem problem = writeContext(path("a.mctx"), {});
    EXPECT_EQ(problem.status, eFileIOOpenError);
    EXPECT_NE(problem.reason, QString());
    EXPECT_NE(problem.reason, QStringLiteral("the record cannot be stored"));
    EXPECT_FALSE(std::filesystem::exists(directory_ / "a.mctx.messages.tmp"));
}

TEST_F(InputFiles, SeesAMachineContextThatCannotGrow) {
    if (!testing::can_fork) GTEST_SKIP() << "the limit is set in a child process";
    const QString name = file("a.mctx", "old");
    EXPECT_TRUE(testing::passesInChild([&] {
        ASSERT_TRUE(testing::limitFileSize(50));
        EXPECT_EQ(text(writeContext(name, {})), "eFileIOOpenError: File too large");
    }));
    EXPECT_EQ(testing::textOf(directory_ / "a.mctx"), "old");
}

TEST_F(InputFiles, ReportsWhyADirectoryCannotBeListed) {
    EXPECT_EQ(whyNotListed(path("")).toStdString(), "");
    EXPECT_EQ(whyNotListed(QStringLiteral(".")).toStdString(), "");
    EXPECT_EQ(whyNotListed(path("missing")).toStdString(), "No such file or directory");
    EXPECT_EQ(whyNotListed(QString()).toStdString(), "No such file or directory");
    EXPECT_EQ(whyNotListed(QString(QChar(0))).toStdString(), "No such file or directory");
    if (!testing::can_fork) GTEST_SKIP() << "rights are given up in a child process";
    EXPECT_EQ(whyNotListed(file("file", "")).toStdString(), "Not a directory");
    std::filesystem::create_directories(directory_ / "secret");
    std::filesystem::permissions(directory_.path(), std::filesystem::perms(0755));
    std::filesystem::permissions(directory_ / "secret", std::filesystem::perms::none);
    EXPECT_TRUE(testing::passesInChild([&] {
        ASSERT_TRUE(testing::becomeOrdinaryUser());
        EXPECT_EQ(whyNotListed(path("secret")).toStdString(), "Permission denied");
    }));
}

TEST_F(InputFiles, ResolvesNamesAsAFacadeDoes) {
    file("f", testing::identityAxis);
    AxisFile axis;
    FileKind kind = FileKind::unknown;
    EXPECT_FALSE(readAxis(path("missing/../f"), axis));
    EXPECT_FALSE(findKind(path("missing/../f"), kind));
    EXPECT_EQ(resolved(path("a//b/../c")), path("a/c"));
    EXPECT_EQ(resolved(QStringLiteral("x")).toStdString(),
              (std::filesystem::current_path() / "x").generic_string());
}

}  // namespace
}  // namespace trv::cli
