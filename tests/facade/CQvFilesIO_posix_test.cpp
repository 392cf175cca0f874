// The facade with pipes, links and names with a colon on POSIX.

#include <tests/common/channel_log.h>
#include <tests/common/child_process.h>
#include <tests/common/current_directory.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/facade/CQvFilesIO.h>
#include <trvfiles/machine_context/CMachineContextData.h>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <QDir>
#include <QStringList>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>

namespace fs = std::filesystem;
using namespace std::string_literals;
using namespace trv::testing;

namespace {

const double identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

CTrvAssemblyData assembly(const std::string& name) {
    CTrvAssemblyData data;
    data.getRootComponent().setName(name);
    data.getRootComponent().setGeometryFileName("f.stl");
    return data;
}

/// In a child process, because a call that waits for a pipe may never return.
bool endsSoon(const std::function<void()>& work) {
    return passesInChild([&work] {
        constexpr unsigned seconds = 20;
        ::alarm(seconds);
        work();
    });
}

class FacadeOnPosix : public ::testing::Test {
protected:
    std::string path(const std::string& name) const { return directory_.text() + "/" + name; }

    // A context that cannot be saved must not end the process.
    ChannelLog log_;
    TemporaryDirectory directory_;
    CQvFilesIO files_{directory_.wide()};
};

}  // namespace

TEST_F(FacadeOnPosix, ReturnsAtOnceForAPipeWithoutAWriter) {
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    EXPECT_TRUE(endsSoon([this] {
        EXPECT_TRUE(files_.isfileExists("pipe"s));
        EXPECT_TRUE(files_.isfileExists(L"pipe"s));
    }));
}

TEST_F(FacadeOnPosix, DoesNotFindAPipeThatItMayNotRead) {
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0200), 0);
    fs::permissions(directory_.path(), fs::perms::all);
    EXPECT_TRUE(endsSoon([this] {
        ASSERT_TRUE(becomeOrdinaryUser());
        EXPECT_FALSE(files_.isfileExists("pipe"s));
        EXPECT_FALSE(files_.isfileExists(L"pipe"s));
    }));
}

// If the pipe were opened and closed, it would lose its only reader, and a signal would end its
// writer.
TEST_F(FacadeOnPosix, LeavesAPipeToItsReaderWhenAskedAboutIt) {
    ASSERT_EQ(files_.writeAxis(L"axis", identity, 4, 5, 6), eFileIOSuccess);
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    EXPECT_TRUE(endsSoon([this] {
        std::thread writer([this] { writeBytes(path("pipe"), bytesOf(path("axis"))); });
        for (int i = 0; i < 1000; ++i)
            EXPECT_TRUE(files_.isfileExists("pipe"s));
        double matrix[16];
        int tags[3] = {};
        EXPECT_EQ(files_.readAxis(L"pipe", matrix, tags[0], tags[1], tags[2]), eFileIOSuccess);
        EXPECT_EQ(tags[2], 6);
        writer.join();
    }));
}

TEST_F(FacadeOnPosix, ReadsEveryKindOfFileFromAPipe) {
    CMachineContextData record;
    record.setName("n");
    ASSERT_EQ(files_.writeMachineContext("context", record), eFileIOSuccess);
    ASSERT_EQ(files_.writeTrvAssembly("assembly", assembly("a")), eFileIOSuccess);
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    EXPECT_TRUE(endsSoon([this] {
        std::thread contextWriter([this] { writeBytes(path("pipe"), bytesOf(path("context"))); });
        CMachineContextData context;
        EXPECT_EQ(files_.readMachineContext("pipe", context), eFileIOSuccess);
        EXPECT_EQ(context.getName(), "n");
        contextWriter.join();
        std::thread assemblyWriter([this] { writeBytes(path("pipe"), bytesOf(path("assembly"))); });
        CTrvAssemblyData data;
        EXPECT_EQ(files_.readTrvAssembly(L"pipe"s, data), eFileIOSuccess);
        EXPECT_EQ(data, assembly("a"));
        assemblyWriter.join();
    }));
}

#ifdef F_SETLEASE
TEST_F(FacadeOnPosix, FindsAFileThatAnotherProcessHasALeaseOn) {
    writeBytes(path("leased"), "x");
    const int descriptor = ::open(path("leased").c_str(), O_RDWR);
    ASSERT_GE(descriptor, 0);
    // The system requests the lease with a signal that ends the process.
    const auto earlier = std::signal(SIGIO, SIG_IGN);
    const bool isLeased = ::fcntl(descriptor, F_SETLEASE, F_WRLCK) == 0;
    EXPECT_TRUE(!isLeased || endsSoon([this] { EXPECT_TRUE(files_.isfileExists("leased"s)); }));
    ::close(descriptor);
    std::signal(SIGIO, earlier);
    if (!isLeased) GTEST_SKIP() << "the file system has no leases";
}
#endif

TEST_F(FacadeOnPosix, FindsDevicesButNoSockets) {
    EXPECT_TRUE(files_.isfileExists("/dev/null"s));
    const int listener = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    const std::string name = path("socket");
    ASSERT_LT(name.size(), sizeof address.sun_path);
    name.copy(address.sun_path, name.size());
    ASSERT_EQ(::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_FALSE(files_.isfileExists("socket"s));
    ::close(listener);
}

TEST_F(FacadeOnPosix, FindsTheTargetOfALink) {
    writeBytes(path("file"), "x");
    fs::create_directory(path("directory"));
    fs::create_symlink("file", path("good"));
    fs::create_symlink("missing", path("dangling"));
    fs::create_symlink("loop", path("loop"));
    fs::create_directory_symlink("directory", path("toDirectory"));
    EXPECT_TRUE(files_.isfileExists("good"s));
    EXPECT_FALSE(files_.isfileExists("dangling"s));
    EXPECT_FALSE(files_.isfileExists("loop"s));
    EXPECT_FALSE(files_.isfileExists("toDirectory"s));
}

TEST_F(FacadeOnPosix, JoinsNamesThatBeginWithAColonToItsDirectory) {
    fs::create_directory(path(":a"));
    const TemporaryDirectory elsewhere;
    fs::create_directory(elsewhere / ":a");
    const CurrentDirectory current(elsewhere.path());
    for (const std::string& name : {":x.mctx"s, ":"s, ":a/b"s, "::"s, ":a\\c"s, ":.x"s, "C:x"s}) {
        SCOPED_TRACE(name);
        const std::wstring wide(name.begin(), name.end());
        std::string file = path(name);
        std::replace(file.begin(), file.end(), '\\', '/');
        EXPECT_EQ(files_.absoluteFileName(name), file);
        EXPECT_FALSE(files_.isfileExists(name));
        EXPECT_EQ(files_.writeAxis(wide, identity, 1, 2, 3), eFileIOSuccess);
        EXPECT_TRUE(files_.isfileExists(name));
        EXPECT_TRUE(files_.isfileExists(wide));
        double matrix[16];
        int tag = 0;
        EXPECT_EQ(files_.readAxis(wide, matrix, tag, tag, tag), eFileIOSuccess);
        EXPECT_TRUE(fs::remove(file));

        CMachineContextData context;
        EXPECT_EQ(files_.writeMachineContext(name.c_str(), context), eFileIOSuccess);
        EXPECT_EQ(files_.readMachineContext(wide, context), eFileIOSuccess);
        EXPECT_TRUE(fs::remove(file));

        CTrvAssemblyData data;
        EXPECT_EQ(files_.writeTrvAssembly(wide, assembly("a")), eFileIOSuccess);
        EXPECT_EQ(files_.readTrvAssembly(name.c_str(), data), eFileIOSuccess);
        EXPECT_TRUE(fs::remove(file));
    }
    EXPECT_TRUE(fs::is_empty(elsewhere / ":a"));
    fs::remove(elsewhere / ":a");
    EXPECT_TRUE(fs::is_empty(elsewhere.path()));
}

TEST_F(FacadeOnPosix, JoinsADirectoryThatBeginsWithAColonToTheCurrentOne) {
    fs::create_directories(path(":d"));
    const CurrentDirectory current(directory_.path());
    CQvFilesIO files(":d"s);
    EXPECT_EQ(files.absoluteFileName("f"s), path(":d/f"));
    EXPECT_EQ(files.writeAxis(L"f", identity, 1, 2, 3), eFileIOSuccess);
    EXPECT_TRUE(fs::exists(path(":d/f")));
    EXPECT_TRUE(files.isfileExists("f"s));
}

TEST_F(FacadeOnPosix, DoesNotTreatTheNameOfAResourceAsAFileOfTheCurrentDirectory) {
    fs::create_directory(path(":"));
    for (const char* name : {"axis", "context", "assembly"})
        writeBytes(path(":/"s + name), "old");
    const CurrentDirectory current(directory_.path());
    EXPECT_EQ(files_.absoluteFileName(":/axis"s), ":/axis");
    EXPECT_FALSE(files_.isfileExists(":/axis"s));
    EXPECT_FALSE(files_.isfileExists(L":\\axis"s));
    double matrix[16];
    int tag = 0;
    EXPECT_EQ(files_.readAxis(L":/axis", matrix, tag, tag, tag), eFileIOOpenError);
    EXPECT_EQ(files_.writeAxis(L":/axis", identity, 1, 2, 3), eFileIOOpenError);
    CMachineContextData context;
    EXPECT_EQ(files_.readMachineContext(":/context", context), eFileIOOpenError);
    EXPECT_EQ(files_.writeMachineContext(":/context", context), eFileIOOpenError);
    EXPECT_EQ(files_.writeMachineContext(L":/new"s, context), eFileIOOpenError);
    CTrvAssemblyData data;
    EXPECT_EQ(files_.readTrvAssembly(":/assembly", data), eFileIOOpenError);
    EXPECT_EQ(files_.writeTrvAssembly(":\\assembly", assembly("a")), eFileIOOpenError);
    for (const auto& entry : fs::directory_iterator(path(":")))
        EXPECT_EQ(bytesOf(entry.path()), "old") << entry.path();
}

TEST_F(FacadeOnPosix, UsesThePrefixesOfAHostsSearchPathsLiterally) {
    EXPECT_TRUE(passesInChild([this] {
        const TemporaryDirectory elsewhere;
        writeBytes(elsewhere / "f", "old");
        QDir::setSearchPaths(QStringLiteral("host"),
                             QStringList(QString::fromStdString(elsewhere.text())));
        EXPECT_EQ(files_.absoluteFileName("host:f"s), path("host:f"));
        EXPECT_FALSE(files_.isfileExists("host:f"s));
        CTrvAssemblyData data;
        EXPECT_EQ(files_.readTrvAssembly("host:f", data), eFileIOOpenError);
        EXPECT_EQ(files_.writeTrvAssembly("host:f", assembly("a")), eFileIOSuccess);
        EXPECT_TRUE(fs::exists(path("host:f")));
        const CurrentDirectory current(directory_.path());
        EXPECT_EQ(CQvFilesIO::sReadTrvAssembly(L"host:f", data), eFileIOSuccess);
        EXPECT_EQ(bytesOf(elsewhere / "f"), "old");
    }));
}

TEST_F(FacadeOnPosix, NamesNoFileIfTheCurrentDirectoryWasRemoved) {
    EXPECT_TRUE(passesInChild([this] {
        fs::create_directory(path("gone"));
        fs::current_path(path("gone"));
        fs::remove(path("gone"));
        CQvFilesIO files(""s);
        const std::string name = "trvfiles-test-gone-" + std::to_string(::getpid());
        const std::wstring wide(name.begin(), name.end());
        EXPECT_EQ(files.writeAxis(wide, identity, 1, 2, 3), eFileIOOpenError);
        EXPECT_FALSE(fs::exists("/" + name));
        EXPECT_FALSE(files.isfileExists(name));
        EXPECT_TRUE(files.isfileExists("/dev/null"s));
    }));
}
