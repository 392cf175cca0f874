// The machine contexts of the sample project: the library has written them, and they are complete
// pairs.

#include <cli/input_files.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>

#include <gtest/gtest.h>

#include <filesystem>

namespace trv::cli {
namespace {

std::vector<std::filesystem::path> sampleContexts() {
    std::vector<std::filesystem::path> found;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(TRV_SAMPLE_PROJECT)) {
        if (entry.path().extension() == ".mctx") found.push_back(entry.path());
    }
    return found;
}

TEST(SampleContexts, AreWhatTheLibraryWrites) {
    const testing::TemporaryDirectory directory;
    const auto contexts = sampleContexts();
    EXPECT_EQ(contexts.size(), 5U);
    for (const auto& path : contexts) {
        ContextFile context;
        ASSERT_FALSE(readContext(QString::fromStdString(path.generic_u8string()), context)) << path;
        ASSERT_FALSE(
            writeContext(QString::fromStdString(directory.text() + "/a.mctx"), context.data));
        EXPECT_EQ(testing::textOf(directory / "a.mctx"), testing::textOf(path)) << path;
    }
}

TEST(SampleContexts, NameTheirReferenceAxes) {
    for (const auto& path : sampleContexts()) {
        ContextFile context;
        ASSERT_FALSE(readContext(QString::fromStdString(path.generic_u8string()), context)) << path;
        EXPECT_EQ(context.data.getName(), path.stem().string());
        for (const std::string& axisFile :
             {context.data.getMachinePosition(), context.data.getReferenceAxisForOriginProgram()}) {
            AxisFile axis;
            const auto beside = path.parent_path() / axisFile;
            EXPECT_FALSE(readAxis(QString::fromStdString(beside.generic_u8string()), axis))
                << beside;
        }
    }
}

}  // namespace
}  // namespace trv::cli
