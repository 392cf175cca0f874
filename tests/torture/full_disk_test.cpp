// Writers without space: at each byte of a small file, and on the full device.

#include <tests/assembly/sample_components.h>
#include <tests/common/channel_log.h>
#include <tests/common/child_process.h>
#include <tests/common/file_bytes.h>
#include <tests/common/small_disk.h>
#include <tests/common/temporary_directory.h>
#include <tests/torture/saves.h>

#include <sys/resource.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <string>

namespace trv::testing {
namespace {

namespace fs = std::filesystem;

constexpr char oldText[] = "what stood here before\n";

/// Limits the size of files of this process until the object is destroyed.
class SpaceFor {
public:
    explicit SpaceFor(rlim_t bytes) {
        std::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &earlier_);
        const rlimit limit = {bytes, earlier_.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    ~SpaceFor() { ::setrlimit(RLIMIT_FSIZE, &earlier_); }
    SpaceFor(const SpaceFor&) = delete;
    SpaceFor& operator=(const SpaceFor&) = delete;

private:
    rlimit earlier_ = {};
};

/// A writer, with its results if there is space and if there is none.
struct Writer {
    const char* name;
    std::function<int(const fs::path& target)> run;
    int success;
    int onFullDisk;
    int onFullDevice;
    /// Whether the target is written in place. Then it contains the bytes that fitted.
    bool isInPlace;
    /// What the target contains before.
    const char* old = oldText;
};

void PrintTo(const Writer& writer, std::ostream* stream) {
    *stream << writer.name;
}

int writeAssembly(const fs::path& target) {
    const CTrvAssemblyData data = assemblyOf(leaf("a", "a.stl"));
    return CQvFilesIO::sWriteTrvAssembly(target.wstring(), data);
}

int writeAxis(const fs::path& target) {
    const double matrix[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 7, 8, 9, 1};
    return CQvFilesIO("").writeAxis(target.wstring(), matrix, 1, 2, 3);
}

// The source is beside the target. If the target is a device, the source is in the current
// directory.
int copyFile(const fs::path& target) {
    CQvFilesIO files("");
    return files.copyFile(fs::path("source").string(), target.string()) ? 1 : 0;
}

int saveSmallContext(const fs::path& target) {
    return saveContext(target, true);
}

int saveSmallParameters(const fs::path& target) {
    return saveParameters(target, false);
}

int saveSmallMessages(const fs::path& target) {
    return saveMessages(target, false);
}

int writeAxisByCommand(const fs::path& target) {
    return commandAxis(target, true);
}

constexpr char oldAssembly[] =
    "<ComponentInfo version=\"1\"><Attributs/><Component name=\"S\"><Data><File name=\"f\"/></Data>"
    "</Component></ComponentInfo>";

int editAssemblyByCommand(const fs::path& target) {
    return commandEdit(target, true);
}

class FullDiskUnder : public ::testing::TestWithParam<Writer> {
protected:
    fs::path target() const { return directory_ / "target"; }
    int run() const { return GetParam().run(target()); }
    void prepare() const {
        fs::current_path(directory_.path());
        writeBytes("source", std::string(500, 's') + "\n");
        fs::remove(target());
    }

    TemporaryDirectory directory_;
};

TEST_P(FullDiskUnder, AtEachByteGivesTheDocumentedStatus) {
    EXPECT_TRUE(passesInChild([&] {
        const ChannelLog log;
        prepare();
        ASSERT_EQ(run(), GetParam().success);
        const std::string text = bytesOf(target());
        ASSERT_GT(text.size(), 50U);
        for (std::size_t space = 0; space < text.size(); ++space) {
            SCOPED_TRACE(space);
            fs::remove(target());
            writeBytes(target(), GetParam().old);
            int status = 0;
            {
                const SpaceFor bytes(space);
                status = run();
            }
            EXPECT_EQ(status, GetParam().onFullDisk);
            EXPECT_EQ(bytesOf(target()),
                      GetParam().isInPlace ? text.substr(0, space) : GetParam().old);
            // Only the source and the target exist.
            EXPECT_EQ(std::distance(fs::directory_iterator(directory_.path()), {}), 2);
            ASSERT_FALSE(HasFailure());
        }
        const SpaceFor bytes(text.size());
        EXPECT_EQ(run(), GetParam().success);
        EXPECT_EQ(bytesOf(target()), text);
    }));
}

TEST_P(FullDiskUnder, OnTheFullDeviceGivesTheDocumentedStatus) {
    if (!fs::exists("/dev/full")) GTEST_SKIP() << "there is no full device here";
    EXPECT_TRUE(passesInChild([&] {
        const ChannelLog log;
        prepare();
        if (GetParam().isInPlace) {
            EXPECT_EQ(GetParam().run("/dev/full"), GetParam().onFullDevice);
            return;
        }
        if (!canMountSmallDisks()) GTEST_SKIP() << "file systems cannot be mounted here";
        constexpr std::size_t roomForTheOldFile = 4096;
        ASSERT_TRUE(mountSmallDisk(directory_.path(), roomForTheOldFile));
        writeBytes(target(), GetParam().old);
        EXPECT_EQ(run(), GetParam().onFullDevice);
        EXPECT_EQ(bytesOf(target()), GetParam().old);
        EXPECT_EQ(std::distance(fs::directory_iterator(directory_.path()), {}), 1);
    }));
}

std::string nameOfWriter(const ::testing::TestParamInfo<Writer>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(
    Torture, FullDiskUnder,
    ::testing::Values(Writer{"AnAssembly", writeAssembly, 1, 3, 3, true},
                      Writer{"AnAxis", writeAxis, 1, 1, 1, true},
                      Writer{"ACopy", copyFile, 1, 1, 1, true},
                      Writer{"AnAxisOfTheCommand", writeAxisByCommand, 0, 2, 2, false},
                      Writer{"AnEditedAssembly", editAssemblyByCommand, 0, 2, 2, false,
                             oldAssembly},
                      Writer{"AMachineContext", saveSmallContext, 1, 2, 2, false},
                      Writer{"Parameters", saveSmallParameters, 0, -EFBIG, -ENOSPC, false},
                      Writer{"Messages", saveSmallMessages, 0, -EFBIG, -ENOSPC, false}),
    nameOfWriter);

}  // namespace
}  // namespace trv::testing
