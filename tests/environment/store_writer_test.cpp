#include <tests/common/channel_log.h>
#include <tests/common/child_process.h>
#include <tests/common/death_test.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <tests/environment/store_access.h>
#include <trvfiles/environment/message_store.h>
#include <trvfiles/environment/store_writer.h>
#include <trvfiles/environment/store_writer_internal.h>
#include <trvfiles/support/dynamic_storage.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string>
#include <vector>

namespace trv {
namespace {

using testing::byProgram;
using testing::ChannelLog;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::loadPlainly;
using testing::messagesOf;
using testing::originOf;
using testing::recordOf;
using testing::Store;
using testing::TemporaryDirectory;
using testing::textOf;
using testing::valueOf;
using testing::writeBytes;

namespace fs = std::filesystem;

class StoreWriter : public ::testing::Test {
protected:
    StoreWriter() { add_section(store, "var"); }

    std::string pathOf(const std::string& name) const { return (directory / name).string(); }
    std::int32_t registered(const std::string& name) {
        return register_file_name(store, pathOf(name).c_str());
    }
    void set(const std::string& text, std::int32_t file, int line) {
        ASSERT_EQ(set_parameter(store, 0, text.c_str(), file, line), 0);
    }
    int saveParameters(const std::string& name) {
        return store_parameters(store, pathOf(name).c_str());
    }
    int saveMessages(const std::string& name) {
        return store_messages(store, pathOf(name).c_str());
    }
    std::string saved(const std::string& name) const { return textOf(directory / name); }
    std::string origin(int section, int number) const {
        return originOf(store, get_message(store, section, number));
    }
    std::vector<std::string> files() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(directory.path()))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

    // Until what is left of the pool's block cannot take a file name either.
    void fillUp() {
        const ChannelLog refusals;
        int result = 0;
        while (result == 0)
            result = append_message(store, 0, "", byProgram, 0);
    }

    TemporaryDirectory directory;
    Store store;
};

TEST_F(StoreWriter, WritesWhatIsSetByProgram) {
    set_variable(store, 0, "A=1");
    set_variable(store, 0, "  B = two  ");
    EXPECT_EQ(saveParameters("new.cfg"), 0);
    EXPECT_EQ(saved("new.cfg"), "[var]\nA=1\nB = two  \n");
    EXPECT_THAT(files(), ElementsAre("new.cfg"));
}

TEST_F(StoreWriter, WritesOnlyWhatCameFromTheFile) {
    const std::int32_t a = registered("a.cfg");
    const std::int32_t b = registered("b.cfg");
    set("A = 1", a, 2);
    set("B = 2", b, 2);
    set("C = 3", a, 4);
    EXPECT_EQ(saveParameters("a.cfg"), 0);
    EXPECT_EQ(saveParameters("b.cfg"), 0);
    EXPECT_EQ(saved("a.cfg"), "[var]\nA = 1\nC = 3\n");
    EXPECT_EQ(saved("b.cfg"), "[var]\nB = 2\n");
}

TEST_F(StoreWriter, WritesTheVersionOfTheFile) {
    const std::int32_t a = registered("a.cfg");
    const std::int32_t b = registered("b.cfg");
    set("A = 1", a, 1);
    set("A = 2", a, 2);
    set("A = 3", b, 1);
    EXPECT_EQ(saveParameters("a.cfg"), 0);
    EXPECT_EQ(saved("a.cfg"), "[var]\nA = 2\n");
    EXPECT_EQ(saveParameters("b.cfg"), 0);
    EXPECT_EQ(saved("b.cfg"), "[var]\nA = 3\n");
}

TEST_F(StoreWriter, PrefersWhatIsSetByProgramInEveryFile) {
    const std::int32_t a = registered("a.cfg");
    set("A = 1", a, 1);
    set_variable(store, 0, "A = +;2");
    EXPECT_EQ(saveParameters("other.cfg"), 0);
    EXPECT_EQ(saved("other.cfg"), "[var]\nA = +;2\n");
    EXPECT_EQ(saveParameters("a.cfg"), 0);
    EXPECT_EQ(saved("a.cfg"), "[var]\nA = 1\n");
}

TEST_F(StoreWriter, LeavesOutWhatIsNotPersistentAndGivesTheFilesOwnVersionForIt) {
    const std::int32_t a = registered("a.cfg");
    set("WINDOWS = 0", a, 1);
    const bool flag = set_record_flag(false);
    set_variable(store, 0, "WINDOWS = 1");
    set_variable(store, 0, "PC = 1");
    set_record_flag(flag);
    EXPECT_EQ(saveParameters("a.cfg"), 0);
    EXPECT_EQ(saved("a.cfg"), "[var]\nWINDOWS = 0\n");
    EXPECT_EQ(valueOf(store, 0, "WINDOWS"), "1");
}

TEST_F(StoreWriter, WritesTextsOfTheFileThatWereNotPersistentWhenTheyWereMade) {
    const bool flag = set_record_flag(false);
    set("A = 1", registered("a.cfg"), 1);
    set_record_flag(flag);
    EXPECT_EQ(saveParameters("a.cfg"), 0);
    EXPECT_EQ(saved("a.cfg"), "[var]\nA = 1\n");
}

TEST_F(StoreWriter, LeavesOutWhatIsRemoved) {
    const std::int32_t a = registered("a.cfg");
    set("A = 1", a, 1);
    set_variable(store, 0, "A = 2");
    set_variable(store, 0, "B = 3");
    set("C = 4", a, 2);
    remove_parameter(store, 0, "A");
    remove_parameter(store, 0, "B");
    EXPECT_EQ(saveParameters("a.cfg"), 0);
    EXPECT_EQ(saved("a.cfg"), "[var]\nC = 4\n");
}

TEST_F(StoreWriter, WritesNothingOfARemovedEntryThatAnotherFileSetAgain) {
    const std::int32_t a = registered("a.cfg");
    set("A = 1", a, 1);
    remove_parameter(store, 0, "A");
    set("A = +,2", registered("b.cfg"), 1);
    EXPECT_EQ(saveParameters("a.cfg"), 0);
    EXPECT_EQ(saved("a.cfg"), "");
    EXPECT_EQ(saveParameters("b.cfg"), 0);
    EXPECT_EQ(saved("b.cfg"), "[var]\nA = +,2\n");
}

TEST_F(StoreWriter, LeavesOutSectionsWithoutAnEntryAndCountsLines) {
    add_section(store, "empty");
    add_section(store, "path");
    const std::int32_t a = registered("a.cfg");
    set("A = 1", a, 10);
    set("B = 2", a, 20);
    set_parameter(store, 2, "C = 3", a, 30);
    EXPECT_EQ(saveParameters("a.cfg"), 0);
    EXPECT_EQ(saved("a.cfg"), "[var]\nA = 1\nB = 2\n[path]\nC = 3\n");
    EXPECT_EQ(origin(0, 0), "from '" + pathOf("a.cfg") + "' line 2");
    EXPECT_EQ(origin(0, 1), "from '" + pathOf("a.cfg") + "' line 3");
    EXPECT_EQ(origin(2, 0), "from '" + pathOf("a.cfg") + "' line 5");
}

TEST_F(StoreWriter, CountsOneLineForATextThatHoldsNewlines) {
    set_variable(store, 0, "A = one\\ntwo");
    set_variable(store, 0, "B = 3");
    convert_newlines(store);
    EXPECT_EQ(saveParameters("a.cfg"), 0);
    EXPECT_EQ(saved("a.cfg"), "[var]\nA = one\ntwo\nB = 3\n");
    EXPECT_EQ(origin(0, 1), "from '" + pathOf("a.cfg") + "' line 3");
}

TEST_F(StoreWriter, GivesWhatItWroteToTheFile) {
    set_variable(store, 0, "A = 1");
    EXPECT_EQ(saveParameters("a.cfg"), 0);
    EXPECT_EQ(origin(0, 0), "from '" + pathOf("a.cfg") + "' line 2");
    EXPECT_EQ(saveParameters("b.cfg"), 0);
    EXPECT_EQ(saved("b.cfg"), "");
    EXPECT_EQ(saveParameters("a.cfg"), 0);
    EXPECT_EQ(saved("a.cfg"), "[var]\nA = 1\n");
}

TEST_F(StoreWriter, WritesAnEmptyStoreAsAnEmptyFile) {
    EXPECT_EQ(saveParameters("a.cfg"), 0);
    EXPECT_TRUE(fs::is_regular_file(directory / "a.cfg"));
    EXPECT_EQ(saved("a.cfg"), "");
}

TEST_F(StoreWriter, ComparesFileNamesWithSlashAndBackslashAlikeButNothingElse) {
    fs::create_directory(directory / "sub");
    const std::string path = pathOf("sub/a.cfg");
    std::string turned = path;
    std::replace(turned.begin(), turned.end(), '/', '\\');
    set_parameter(store, 0, "A = 1", register_file_name(store, turned.c_str()), 1);
    EXPECT_EQ(store_parameters(store, path.c_str()), 0);
    EXPECT_EQ(saved("sub/a.cfg"), "[var]\nA = 1\n");

    set_parameter(store, 0, "B = 1", register_file_name(store, pathOf("sub/./b.cfg").c_str()), 1);
    EXPECT_EQ(store_parameters(store, pathOf("sub/b.cfg").c_str()), 0);
    EXPECT_EQ(saved("sub/b.cfg"), "");
}

TEST_F(StoreWriter, WritesReferencesAsTheyWereSet) {
    const std::int32_t a = registered("a.cfg");
    const std::int32_t b = registered("b.cfg");
    set("A = 1", a, 1);
    set("A+B = 2", a, 2);
    set("C = 3", a, 3);
    set("A = +;x", b, 1);
    set("A+B = y;+", b, 2);
    set("C = ++,+++,+", b, 3);
    EXPECT_EQ(saveParameters("b.cfg"), 0);
    EXPECT_EQ(saved("b.cfg"), "[var]\nA = +;x\nA+B = y;+\nC = ++,+++,+\n");
    EXPECT_EQ(valueOf(store, 0, "A"), "1;x");
}

TEST_F(StoreWriter, TakesWhatFollowsASinglePlusInBracketsForAReference) {
    for (const char* text : {"A=a+B(1)", "B=a+++B(1)C", "C=A+(1)+(2)", "D=a+b", "E=a+", "F=a++B(1)",
                             "G=a+b(c+d", "H+(1)=a+b(1)+c(", "J=++++(x)y"}) {
        set_variable(store, 0, text);
    }
    EXPECT_EQ(saveParameters("a.cfg"), 0);
    EXPECT_EQ(saved("a.cfg"),
              "[var]\nA=a+\nB=a+++C\nC=A++\nD=a+b\nE=a+\nF=a++B(1)\nG=a+b(c+d\nH+(1)=a++c(\n"
              "J=++++(x)y\n");
}

TEST_F(StoreWriter, ReplacesTheTarget) {
    writeBytes(directory / "a.cfg", "# what stood here\n[var]\nOLD = 1\n");
    set_variable(store, 0, "A = 1");
    EXPECT_EQ(saveParameters("a.cfg"), 0);
    EXPECT_EQ(saved("a.cfg"), "[var]\nA = 1\n");
}

TEST_F(StoreWriter, SavesAndLoadsTwentyThousandEntries) {
    for (int entry = 0; entry < 20000; ++entry) {
        set("Name" + std::to_string(entry) + " = " + std::to_string(entry), registered("a.cfg"),
            entry + 2);
    }
    EXPECT_EQ(saveParameters("a.cfg"), 0);
    const Store loaded;
    loadPlainly(loaded, pathOf("a.cfg"), true);
    EXPECT_EQ(messagesOf(loaded, 0), messagesOf(store, 0));
}

TEST_F(StoreWriter, WritesAllMessagesOfAllSections) {
    add_section(store, "empty");
    add_section(store, "texts");
    const std::int32_t a = registered("a.cfg");
    set("A = 1", a, 5);
    set("A = +,2", registered("b.cfg"), 6);
    set_variable(store, 0, "GONE = 3");
    remove_parameter(store, 0, "GONE");
    set_message(store, 2, 1, "a text");
    EXPECT_EQ(saveMessages("all.cfg"), 0);
    EXPECT_EQ(saved("all.cfg"),
              "[var]\nA = +,2\nGONE = 3\n[empty]\n[texts]\nundefined message\na text\n");
    EXPECT_THAT(files(), ElementsAre("all.cfg"));
}

TEST_F(StoreWriter, LeavesMessagesTheirFilesAndGivesThemTheirNewLines) {
    set("A = 1", registered("a.cfg"), 70);
    set_variable(store, 0, "B = 2");
    EXPECT_EQ(saveMessages("all.cfg"), 0);
    EXPECT_EQ(origin(0, 0), "from '" + pathOf("a.cfg") + "' line 2");
    EXPECT_EQ(origin(0, 1), "set by program");
    EXPECT_EQ(recordOf(get_message(store, 0, 1)).line, 3);
}

TEST_F(StoreWriter, PutsTheTemporaryFileOfAllMessagesBesideTheTarget) {
    const ChannelLog log;
    fs::create_directory(directory / "sub");
    for (const char* target : {"sub/a.cfg", "sub\\a.cfg"}) {
        const std::string base = directory.text() + "/";
        fs::create_directory(directory / "sub/messages.tmp");
        EXPECT_EQ(store_messages(store, (base + target).c_str()), -1);
        fs::remove(directory / "sub/messages.tmp");
        EXPECT_EQ(store_messages(store, (base + target).c_str()), 0);
        EXPECT_EQ(saved("sub/a.cfg"), "[var]\n");
    }
    const std::string base = directory.text() + "/";
    EXPECT_THAT(log.fatals(),
                ElementsAre("Store messages : error opening file '" + base + "sub/messages.tmp'",
                            "Store messages : error opening file '" + base + "sub\\messages.tmp'"));
}

TEST_F(StoreWriter, PutsTheTemporaryFileOfABareNameInTheCurrentDirectory) {
    const ChannelLog log;
    const fs::path before = fs::current_path();
    fs::current_path(directory.path());
    fs::create_directory("messages.tmp");
    EXPECT_EQ(store_messages(store, "bare.cfg"), -1);
    fs::remove("messages.tmp");
    EXPECT_EQ(store_messages(store, "bare.cfg"), 0);
    fs::current_path(before);
    EXPECT_THAT(log.fatals(), ElementsAre("Store messages : error opening file 'messages.tmp'"));
    EXPECT_EQ(saved("bare.cfg"), "[var]\n");
}

TEST_F(StoreWriter, ReportsATemporaryFileThatCannotBeOpened) {
    const ChannelLog log;
    writeBytes(directory / "a.cfg", "old");
    fs::create_directory(directory / "a.cfg.messages.tmp");
    set_variable(store, 0, "A = 1");
    EXPECT_EQ(saveParameters("a.cfg"), -1);
    EXPECT_EQ(saveParameters("missing/a.cfg"), -1);
    EXPECT_THAT(log.fatals(), ElementsAre("Store messages : error opening file '" +
                                              pathOf("a.cfg") + ".messages.tmp'",
                                          "Store messages : error opening file '" +
                                              pathOf("missing/a.cfg") + ".messages.tmp'"));
    EXPECT_EQ(saved("a.cfg"), "old");
    EXPECT_EQ(origin(0, 0), "set by program");
}

TEST_F(StoreWriter, ReportsAHeldFileThatCannotBeOpened) {
    const ChannelLog log;
    set_variable(store, 0, "A = 1");
    file_replacement held(pathOf("missing/a.cfg"));
    EXPECT_THAT(log.fatals(), IsEmpty());
    EXPECT_EQ(store_parameters(store, pathOf("missing/a.cfg").c_str(), held), -1);
    EXPECT_THAT(log.fatals(), ElementsAre("Store messages : error opening file '" +
                                          pathOf("missing/a.cfg") + ".messages.tmp'"));
}

TEST_F(StoreWriter, WritesAFileThatTheCallerHolds) {
    set_variable(store, 0, "A = 1");
    {
        file_replacement held(pathOf("a.cfg"));
        EXPECT_EQ(store_parameters(store, pathOf("a.cfg").c_str(), held), 0);
    }
    EXPECT_EQ(saved("a.cfg"), "[var]\nA = 1\n");
    EXPECT_EQ(origin(0, 0), "from '" + pathOf("a.cfg") + "' line 2");
    EXPECT_THAT(files(), ElementsAre("a.cfg"));
}

TEST_F(StoreWriter, GivesTheReasonWhyAHeldFileMayNotReplaceAnother) {
    set_variable(store, 0, "A = 1");
    file_replacement held(pathOf("a.cfg"), own_temporary_name, file_replacement::existing::refused);
    writeBytes(directory / "a.cfg", "of another program");
    EXPECT_EQ(store_parameters(store, pathOf("a.cfg").c_str(), held), -EEXIST);
    EXPECT_EQ(saved("a.cfg"), "of another program");
    EXPECT_EQ(origin(0, 0), "set by program");
}

TEST_F(StoreWriter, KeepsAFileWithTheNameOfTheTemporaryFileUntilTheNewOneIsComplete) {
    writeBytes(directory / "messages.tmp", "old");
    if (testing::can_fork) {
        EXPECT_TRUE(testing::passesInChild([&] {
            ASSERT_TRUE(testing::limitFileSize(2));
            EXPECT_EQ(saveMessages("messages.tmp"), -EFBIG);
        }));
        EXPECT_EQ(saved("messages.tmp"), "old");
    }
    EXPECT_EQ(saveMessages("messages.tmp"), 0);
    EXPECT_EQ(saved("messages.tmp"), "[var]\n");
    EXPECT_EQ(saveParameters("messages.tmp"), 0);
    EXPECT_EQ(saved("messages.tmp"), "");
    EXPECT_THAT(files(), ElementsAre("messages.tmp"));
}

TEST_F(StoreWriter, EndsTheProcessByDefaultWhereTheTemporaryFileCannotBeOpened) {
    const auto save = [&] { store_parameters(store, "no/such/directory/a.cfg"); };
    TRV_EXPECT_FATAL(save,
                     "Store messages : error opening file "
                     "'no/such/directory/a.cfg.messages.tmp'\n");
}

TEST_F(StoreWriter, ReportsANameThatCannotBeRegistered) {
    writeBytes(directory / "a.cfg", "old");
    set_variable(store, 0, "A = 1");
    set_storage_maximum(0);
    fillUp();
    const ChannelLog log;
    EXPECT_EQ(saveParameters("a.cfg"), -1);
    EXPECT_EQ(saveMessages("a.cfg"), -1);
    set_storage_maximum(4294967295U);
    const std::string report = "Store messages : error saving file name '" + pathOf("a.cfg") + "'";
    ASSERT_FALSE(log.errors().empty());
    EXPECT_EQ(std::count(log.errors().begin(), log.errors().end(), report), 2);
    EXPECT_EQ(log.errors().back(), report);
    EXPECT_TRUE(log.fatals().empty());
    EXPECT_EQ(saved("a.cfg"), "old");
    EXPECT_THAT(files(), ElementsAre("a.cfg"));
}

TEST_F(StoreWriter, TouchesNothingWithoutAStoreOrAName) {
    const ChannelLog log;
    EXPECT_EQ(store_parameters(nullptr, pathOf("a.cfg").c_str()), -1);
    EXPECT_EQ(store_messages(nullptr, pathOf("a.cfg").c_str()), -1);
    EXPECT_EQ(store_parameters(store, nullptr), -1);
    EXPECT_EQ(store_messages(store, nullptr), -1);
    EXPECT_TRUE(files().empty());
    EXPECT_TRUE(log.fatals().empty());
}

TEST_F(StoreWriter, RefusesADirectoryAsTarget) {
    fs::create_directory(directory / "target");
    writeBytes(directory / "target/inside", "kept");
    set_variable(store, 0, "A = 1");
    EXPECT_LT(saveParameters("target"), 0);
    EXPECT_LT(saveMessages("target"), 0);
    EXPECT_THAT(files(), ElementsAre("target"));
    EXPECT_EQ(saved("target/inside"), "kept");
    EXPECT_EQ(origin(0, 0), "set by program");
}

TEST_F(StoreWriter, LosesNothingByAFailedSaveUnderAnotherName) {
    fs::create_directory(directory / "target");
    const std::int32_t a = registered("a.cfg");
    set("A = 1", a, 40);
    set_variable(store, 0, "B = 2");
    EXPECT_LT(saveParameters("target"), 0);
    EXPECT_EQ(origin(0, 0), "from '" + pathOf("a.cfg") + "' line 40");
    EXPECT_EQ(saveParameters("a.cfg"), 0);
    EXPECT_EQ(saved("a.cfg"), "[var]\nA = 1\nB = 2\n");
}

}  // namespace
}  // namespace trv
