#include <cli/input_files.h>
#include <cli/loaded_file.h>
#include <tests/cli/samples.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/support/platform.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>

namespace trv::cli {
namespace {

class LoadedFiles : public ::testing::Test {
protected:
    LoadedFile loaded(std::string_view bytes) const {
        testing::writeBytes(directory_ / "file", bytes);
        LoadedFile file;
        EXPECT_FALSE(load(QString::fromStdString((directory_ / "file").generic_string()), file));
        return file;
    }

    testing::TemporaryDirectory directory_;
};

TEST_F(LoadedFiles, HoldAShortFileWhole) {
    const LoadedFile file = loaded("two\nlines");
    EXPECT_TRUE(file.isWhole);
    EXPECT_EQ(file.beginning, "two\nlines");
    EXPECT_EQ(file.name, file.path);
    EXPECT_TRUE(loaded("").isWhole);
}

TEST_F(LoadedFiles, HoldXmlOfLessThanABlockWhole) {
    constexpr std::size_t block = 65536;
    EXPECT_TRUE(loaded('<' + std::string(block - 2, 'x')).isWhole);
    const LoadedFile longer = loaded('<' + std::string(block - 1, 'x'));
    EXPECT_FALSE(longer.isWhole);
    EXPECT_EQ(longer.beginning.size(), block);
    EXPECT_EQ(longer.kind(), FileKind::assembly);
}

TEST_F(LoadedFiles, HoldOtherFilesUpToTheExaminedLength) {
    EXPECT_TRUE(loaded(std::string((1 << 20) - 1, 'x')).isWhole);
    const LoadedFile longer = loaded(std::string((1 << 20) + 1, 'x'));
    EXPECT_FALSE(longer.isWhole);
    EXPECT_EQ(longer.beginning.size(), std::size_t{1} << 20);
}

TEST_F(LoadedFiles, KnowAContextByASectionInTheExaminedLength) {
    const std::string header = "\n[machine]";
    const std::string before((1 << 20) - header.size(), 'x');
    EXPECT_EQ(loaded(before + header + "\n").kind(), FileKind::machineContext);
    EXPECT_EQ(loaded(before + 'x' + header + "\n").kind(), FileKind::unknown);
}

// Text mode may change these bytes, so the readers open the file.
TEST_F(LoadedFiles, LeaveTextWithACarriageReturnOrASubstituteToTheReaders) {
    EXPECT_TRUE(loaded("a\nb\n").isWholeText());
    EXPECT_FALSE(loaded("a\r\nb\n").isWholeText());
    EXPECT_FALSE(loaded("a\n\x1A").isWholeText());
    EXPECT_FALSE(loaded(std::string(1 << 20, 'x')).isWholeText());
}

TEST_F(LoadedFiles, ReadTheSameFromBytesAndFromTheFile) {
    AxisFile fromBytes;
    AxisFile fromFile;
    LoadedFile file = loaded(testing::turnedAxis);
    EXPECT_FALSE(readAxis(file, fromBytes));
    file.isWhole = false;
    EXPECT_FALSE(readAxis(file, fromFile));
    EXPECT_EQ(fromBytes.matrix, fromFile.matrix);
    EXPECT_EQ(fromBytes.tags, fromFile.tags);

    // A reader of bytes does not look at the file.
    LoadedFile gone = loaded(testing::turnedAxis);
    gone.path += QStringLiteral(".gone");
    EXPECT_FALSE(readAxis(gone, fromBytes));
    gone.isWhole = false;
    EXPECT_EQ(readAxis(gone, fromFile).status, eFileIOOpenError);
}

TEST_F(LoadedFiles, ReportAReadThatFails) {
    const QString memory = QStringLiteral("/proc/self/mem");
    if (platform::backslash_separates() || !std::filesystem::exists("/proc/self/mem")) {
        GTEST_SKIP() << "no file here fails when it is read";
    }
    LoadedFile file;
    EXPECT_FALSE(load(memory, file));
    EXPECT_FALSE(file.isWhole);
    EXPECT_EQ(file.kind(), FileKind::unknown);
    EXPECT_EQ(problemText(whyKindIsUnknown(file)).toStdString(),
              "eFileIOContentError: Input/output error");
}

}  // namespace
}  // namespace trv::cli
