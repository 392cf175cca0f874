// Processes that save one file and read it at the same time.

#include <tests/common/channel_log.h>
#include <tests/common/file_bytes.h>
#include <tests/common/spawned_test_windows.h>
#include <tests/common/temporary_directory.h>
#include <tests/environment/store_access.h>
#include <trvfiles/environment/store_writer.h>
#include <trvfiles/support/platform.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>

namespace trv {
namespace {

using ::testing::IsEmpty;
using testing::SpawnedTest;

namespace fs = std::filesystem;

// One text for each kind of saver, the second of more than one buffer of the standard streams.
std::string textOf(bool is_long) {
    std::string text = "[var]\r\n";
    for (int entry = 0; entry < (is_long ? 1000 : 10); ++entry)
        text += "Name" + std::to_string(entry) + " = a value\r\n";
    return text;
}

int save(const fs::path& directory, bool is_long) {
    const testing::Store store;
    add_section(store, "var");
    for (int entry = 0; entry < (is_long ? 1000 : 10); ++entry)
        set_variable(store, 0, ("Name" + std::to_string(entry) + " = a value").c_str());
    return store_parameters(store, (directory / "f").string().c_str());
}

void saveAgainAndAgain(bool is_long) {
    const fs::path directory = SpawnedTest::directory();
    if (directory.empty()) GTEST_SKIP() << "is run by another test";
    const testing::ChannelLog log;
    constexpr int times = 50;
    for (int time = 0; time < times; ++time)
        EXPECT_EQ(save(directory, is_long), 0);
    EXPECT_THAT(log.fatals(), IsEmpty());
}

TEST(SaverProcess, DISABLED_SavesALongText) {
    saveAgainAndAgain(true);
}

TEST(SaverProcess, DISABLED_SavesAShortText) {
    saveAgainAndAgain(false);
}

TEST(SaverProcess, DISABLED_SavesUntilItIsKilled) {
    const fs::path directory = SpawnedTest::directory();
    if (directory.empty()) GTEST_SKIP() << "is run by another test";
    for (bool is_long = true;; is_long = !is_long)
        save(directory, is_long);
}

TEST(ReaderProcess, DISABLED_ReadsWholeTexts) {
    const fs::path directory = SpawnedTest::directory();
    if (directory.empty()) GTEST_SKIP() << "is run by another test";
    const std::string texts[] = {textOf(false), textOf(true)};
    const std::string name = (directory / "f").string();
    int reads = 0;
    while (!fs::exists(directory / "end")) {
        std::string text(30000, '\0');
        const platform::file_handle file =
            platform::open_for_read(name, platform::file_mode::binary);
        ASSERT_NE(file, nullptr) << "after " << reads << " reads";
        text.resize(std::fread(text.data(), 1, text.size(), file.get()));
        ASSERT_TRUE(text == texts[0] || text == texts[1]) << text.size() << " bytes";
        ++reads;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_GT(reads, 10);
}

class SimultaneousSaves : public ::testing::Test {
protected:
    SimultaneousSaves() { EXPECT_EQ(save(directory_.path(), false), 0); }
    void endReaders() const { testing::writeBytes(directory_ / "end", ""); }
    void expectWholeFileAlone() const {
        const std::string text = testing::bytesOf(directory_ / "f");
        EXPECT_TRUE(text == textOf(false) || text == textOf(true)) << text.size() << " bytes";
        fs::remove(directory_ / "end");
        EXPECT_EQ(std::distance(fs::directory_iterator(directory_.path()), {}), 1);
    }

    testing::TemporaryDirectory directory_;
};

TEST_F(SimultaneousSaves, AllSucceedAndAreReadWhole) {
    SpawnedTest reader("ReaderProcess.*", directory_.path());
    SpawnedTest first("SaverProcess.DISABLED_SavesALongText", directory_.path());
    SpawnedTest second("SaverProcess.DISABLED_SavesAShortText", directory_.path());
    EXPECT_TRUE(first.hasPassed());
    EXPECT_TRUE(second.hasPassed());
    endReaders();
    EXPECT_TRUE(reader.hasPassed());
    expectWholeFileAlone();
}

TEST_F(SimultaneousSaves, GoOnAfterAProcessThatIsKilled) {
    for (const int moment : {300, 700, 1100}) {
        SpawnedTest killed("SaverProcess.DISABLED_SavesUntilItIsKilled", directory_.path());
        std::this_thread::sleep_for(std::chrono::milliseconds(moment));
        killed.kill();
        const std::string text = testing::bytesOf(directory_ / "f");
        EXPECT_TRUE(text == textOf(false) || text == textOf(true)) << text.size() << " bytes";
        EXPECT_EQ(save(directory_.path(), true), 0);
    }
    expectWholeFileAlone();
}

}  // namespace
}  // namespace trv
