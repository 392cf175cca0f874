// Stores, configuration and lookups with the files and the environment of Windows.

#include <tests/common/channel_log.h>
#include <tests/common/death_test.h>
#include <tests/common/file_bytes.h>
#include <tests/common/held_file_windows.h>
#include <tests/environment/installation.h>
#include <tests/environment/start_up.h>
#include <tests/environment/store_access.h>
#include <trvfiles/environment/message_file.h>
#include <trvfiles/environment/store_writer.h>
#include <trvfiles/environment/variables.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <string>

namespace trv {
namespace {

using testing::bytesOf;
using testing::ChannelLog;
using ::testing::ElementsAre;
using testing::HeldFile;
using testing::homeText;
using testing::Installation;
using testing::messagesOf;
using testing::Store;
using testing::TemporaryDirectory;
using testing::writeBytes;

class StoreOnWindows : public testing::ChildProcessTest {
protected:
    StoreOnWindows() {
        add_section(store_, "var");
        set_variable(store_, 0, "A = 1");
    }
    std::filesystem::path target() const { return directory_ / "a.cfg"; }
    std::string name() const { return target().string(); }

    TemporaryDirectory directory_;
    Store store_;
};

TEST_F(StoreOnWindows, IsSavedWithCrLf) {
    EXPECT_EQ(store_parameters(store_, name().c_str()), 0);
    EXPECT_EQ(bytesOf(target()), "[var]\r\nA = 1\r\n");
    EXPECT_EQ(store_parameters(store_, name().c_str()), 0);
    EXPECT_EQ(bytesOf(target()), "[var]\r\nA = 1\r\n");
    EXPECT_EQ(store_messages(store_, name().c_str()), 0);
    EXPECT_EQ(bytesOf(target()), "[var]\r\nA = 1\r\n");
}

TEST_F(StoreOnWindows, LeavesAFileWholeThatIsKeptOpen) {
    for (const auto save : {store_parameters, store_messages}) {
        writeBytes(target(), "old\r\n");
        {
            const HeldFile held(target(), FILE_SHARE_READ | FILE_SHARE_WRITE);
            ASSERT_TRUE(held.isOpen());
            EXPECT_EQ(save(store_, name().c_str()), -EACCES);
        }
        EXPECT_EQ(bytesOf(target()), "old\r\n");
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(directory_.path()), {}), 1);
        EXPECT_EQ(save(store_, name().c_str()), 0);
        EXPECT_EQ(bytesOf(target()), "[var]\r\nA = 1\r\n");
    }
}

TEST_F(StoreOnWindows, LeavesAReadOnlyFileWhole) {
    writeBytes(target(), "old\r\n");
    ::SetFileAttributesW(target().c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(store_parameters(store_, name().c_str()), -EACCES);
    EXPECT_EQ(bytesOf(target()), "old\r\n");
    ::SetFileAttributesW(target().c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(StoreOnWindows, EndsAMessageFileAtCtrlZ) {
    const auto load = [this] {
        const Installation installation;
        installation.write("config/environ.cfg", "[var]\r\n");
        writeBytes(target(), "[one]\r\nA = 1\r\n\x1A[two]\r\nB = 2\r\n");
        message_store* read = load_message_file(nullptr, name().c_str());
        ASSERT_NE(read, nullptr);
        EXPECT_EQ(section_count(read), 1);
        EXPECT_THAT(messagesOf(read, 0), ElementsAre("A = 1"));
        destroy_store(read);
    };
    TRV_EXPECT_IN_CHILD(load);
}

TEST_F(StoreOnWindows, LooksUpVariablesOfTheProcessInAnyCase) {
    const auto lookUp = [] {
        const Installation installation;
        installation.write("config/environ.cfg", "[var]\nShop = file\n[path]\nBin = listed\n");
        EXPECT_STREQ(get_variable("SHOP"), "file");
        platform::set_environment("sHOP", "process");
        EXPECT_STREQ(get_variable("Shop"), "process");
        EXPECT_STREQ(get_path_variable("bin"), "listed");
        platform::set_environment("binpath", "process");
        EXPECT_STREQ(get_path_variable("BIN"), "process");
    };
    TRV_EXPECT_IN_CHILD(lookUp);
}

TEST_F(StoreOnWindows, FindsItsRootInTrvhomeOfAnyCase) {
    const auto lookUp = [] {
        const Installation installation;
        installation.write("config/environ.cfg", "[var]\nA = 1\n");
        platform::set_environment("TRVHOME", nullptr);
        platform::set_environment("trvhome", installation.root().c_str());
        EXPECT_STREQ(get_variable("A"), "1");
    };
    TRV_EXPECT_IN_CHILD(lookUp);
}

TEST_F(StoreOnWindows, TreatsAHomeFileOfAnotherSpellingAsASecondFile) {
    const auto start = [] {
        const Installation installation;
        installation.write("config/environ.cfg", homeText("$TRVHOME/config"));
        std::string root = installation.root();
        std::replace(root.begin(), root.end(), '\\', '/');
        platform::set_environment("TRVHOME", root.c_str());
        const ChannelLog log;
        EXPECT_EQ(testing::valueOf("N"), "home");
        EXPECT_THAT(testing::progress(log),
                    ElementsAre(testing::opening, testing::loading(root + "\\config\\environ.cfg"),
                                testing::loading(installation.path("config/environ.cfg")),
                                testing::closingAfterTwoFiles));
    };
    TRV_EXPECT_IN_CHILD(start);
}

}  // namespace
}  // namespace trv
