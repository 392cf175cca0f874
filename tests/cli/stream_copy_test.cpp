#include <cli/stream_copy.h>
#include <tests/cli/process.h>
#include <tests/cli/samples.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/support/platform.h>

#include <QFile>
#include <gtest/gtest.h>

#include <filesystem>

namespace trv::testing {
namespace {

class StreamCopies : public ::testing::Test {
protected:
    QString path(const char* name) const {
        return QString::fromStdString((directory_ / name).generic_string());
    }

    // What copyStream() returns for a file of that content.
    std::string copy(const std::string& bytes, qint64 maxBytes) const {
        writeBytes(directory_ / "from", bytes);
        const platform::file_handle from =
            platform::open_for_read((directory_ / "from").string(), platform::file_mode::binary);
        QFile to(path("to"));
        EXPECT_TRUE(to.open(QIODevice::WriteOnly));
        return cli::copyStream(from.get(), to, maxBytes).toStdString();
    }

    // The output and the messages of a line of a shell, in which T is the command.
    std::string shell(const char* line) {
        const QString call = QStringLiteral("T() { \"$0\" \"$@\"; }; { ") +
                             QString::fromUtf8(line) + QStringLiteral("; } 2>&1; echo $?");
        EXPECT_EQ(process_.start(QStringLiteral("/bin/sh"),
                                 {QStringLiteral("-c"), call, QStringLiteral(TRV_COMMAND)}),
                  0);
        return process_.out();
    }

    static bool hasShell() {
        return !platform::backslash_separates() && std::filesystem::exists("/bin/sh");
    }

    TemporaryDirectory directory_;
    Process process_{directory_.path()};
};

TEST_F(StreamCopies, HaveTheBytesOfTheStream) {
    const std::string bytes = std::string(200000, 'a') + std::string("\0\r\nb", 4);
    EXPECT_EQ(copy(bytes, 1000000), "");
    EXPECT_TRUE(bytesOf(directory_ / "to") == bytes);
    EXPECT_EQ(copy("", 0), "");
    EXPECT_EQ(textOf(directory_ / "to"), "");
}

TEST_F(StreamCopies, HaveAMaxSize) {
    EXPECT_EQ(copy("12345", 5), "");
    EXPECT_EQ(copy("123456", 5), "the input is longer than 5 bytes");
}

TEST_F(StreamCopies, ReportAFullDisk) {
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "there is no full device here";
    writeBytes(directory_ / "from", "a");
    const platform::file_handle from =
        platform::open_for_read((directory_ / "from").string(), platform::file_mode::binary);
    QFile full(QStringLiteral("/dev/full"));
    ASSERT_TRUE(full.open(QIODevice::WriteOnly));
    EXPECT_EQ(cli::copyStream(from.get(), full, 100).toStdString(), "No space left on device");
}

TEST_F(StreamCopies, AreOfStandardInputForItsName) {
    EXPECT_TRUE(cli::isStandardInput(QStringLiteral("-")));
    EXPECT_FALSE(cli::isStandardInput(QStringLiteral("./-")));
    EXPECT_FALSE(cli::isStandardInput(QString()));
}

TEST_F(StreamCopies, AreReadByEveryCommand) {
    if (!hasShell()) GTEST_SKIP() << "a shell makes the pipes";
    writeBytes(directory_ / "a.xml", setupXml);
    writeBytes(directory_ / "a.ref", identityAxis);
    writeBytes(directory_ / "a.mctx", setupContext);
    writeBytes(directory_ / "a.msg", "[one]\ntext\n");
    EXPECT_EQ(shell("cat a.xml | T show - | head -n 1"), "Assembly file standard input\n0\n");
    EXPECT_EQ(shell("T show - <a.ref | head -n 1"), "Axis file standard input\n0\n");
    EXPECT_EQ(shell("cat a.mctx | T show - | head -n 1"),
              "Machine context file standard input\n0\n");
    EXPECT_EQ(shell("cat a.ref | T axis show --json - | head -c 13"), "{\"file\":\"-\",\"0\n");
    EXPECT_EQ(shell("cat a.xml | T assembly list --csv - | tail -n 1"),
              "\"vise, small.stl\",10,5,0.1,1,0,0,0,1,0,0,0,1,standard input,Setup/Vise[0]\r\n0\n");
    EXPECT_EQ(shell("cat a.xml | T assembly tree --depth 0 -"), "Setup, at 10 0 0\n0\n");
    EXPECT_EQ(shell("cat a.xml | T assembly diff - a.xml"), "The assemblies are equal\n0\n");
    EXPECT_EQ(shell("cat a.xml | T check -").substr(0, 19), "standard input: ok ");
    EXPECT_EQ(shell("cat a.msg | T env messages -"), "[one]\n  line 2  0  text\n0\n");
    EXPECT_EQ(shell("cat a.msg | T env check -"), "standard input: ok (1 section, 1 entry)\n0\n");
    EXPECT_EQ(shell("cat a.ref | T axis invert - b.ref"), "0\n");
}

TEST_F(StreamCopies, AreOfNamedPipesToo) {
    if (!hasShell()) GTEST_SKIP() << "the file system of Windows has no named pipes";
    writeBytes(directory_ / "a.xml", setupXml);
    EXPECT_EQ(shell("mkfifo pipe; cat a.xml >pipe & T show pipe | head -n 1"),
              "Assembly file pipe\n0\n");
}

TEST_F(StreamCopies, KeepTheNameOfTheStreamInMessages) {
    if (!hasShell()) GTEST_SKIP() << "a shell makes the pipes";
    EXPECT_EQ(shell("echo '<a/>' | T assembly tree -"),
              "trvfiles: standard input: eFileIOStructureError: line 1, column 3: the root element "
              "is <a>, not <ComponentInfo>\n2\n");
    EXPECT_EQ(shell("T show - </dev/null"),
              "trvfiles: standard input: eFileIOContentError: the file is empty\n2\n");
    // The reason depends on what has taken the number of the closed stream.
    const std::string closed = shell("T axis show - <&-");
    EXPECT_EQ(closed.substr(0, 43), "trvfiles: standard input: eFileIOOpenError:");
    EXPECT_EQ(closed.substr(closed.size() - 3), "\n2\n");
    EXPECT_EQ(shell("T axis show - <."),
              "trvfiles: standard input: eFileIOOpenError: Is a directory\n2\n");
    EXPECT_EQ(shell("printf '[one]\\n/frob\\n' | T env check -"),
              "standard input: line 2: Unknown keyword : '/frob'\n"
              "standard input: Error loading file.\n1\n");
}

TEST_F(StreamCopies, LeaveNothingInTheTemporaryDirectory) {
    if (!hasShell()) GTEST_SKIP() << "a shell makes the pipe";
    writeBytes(directory_ / "a.ref", identityAxis);
    EXPECT_EQ(shell("mkdir tmp; cat a.ref | TMPDIR=tmp T axis show - | head -n 1; ls tmp"),
              "Axis file standard input\n0\n");
}

TEST_F(StreamCopies, AreNotWritten) {
    if (!hasShell()) GTEST_SKIP() << "a shell redirects standard input";
    EXPECT_EQ(shell("T axis write - </dev/null"),
              "trvfiles: standard input: eFileIOOpenError: standard input cannot be written\n2\n");
    EXPECT_FALSE(std::filesystem::exists(directory_ / "-"));
    writeBytes(directory_ / "a.ref", identityAxis);
    EXPECT_EQ(shell("T axis invert a.ref - </dev/null"),
              "trvfiles: standard input: eFileIOOpenError: standard input cannot be written\n2\n");
    writeBytes(directory_ / "a.mctx", setupContext);
    EXPECT_EQ(shell("T context set - header.name=x <a.mctx"),
              "trvfiles: standard input: eFileIOOpenError: standard input cannot be written\n2\n");
}

}  // namespace
}  // namespace trv::testing
