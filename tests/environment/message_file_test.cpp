#include <tests/common/channel_log.h>
#include <tests/common/death_test.h>
#include <tests/environment/installation.h>
#include <tests/environment/store_access.h>
#include <trvfiles/environment/message_file.h>
#include <trvfiles/environment/variables_internal.h>
#include <trvfiles/support/dynamic_storage.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>

namespace trv {
namespace {

using testing::backslashed;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::writeBytes;

std::string storageInUse() {
    char report[100];
    storage_report(report, sizeof report);
    return report;
}

std::string parameter(const message_store* store, const char* section, const char* name) {
    const char* value = find_parameter(store, find_section(store, section), name, true);
    return value != nullptr ? value : "<none>";
}

std::string originOf(const message_store* store, const char* text) {
    char origin[1000];
    describe_origin(origin, sizeof origin, store, text);
    return origin;
}

class MessageFile : public ::testing::Test {
protected:
    MessageFile() {
        earlier_ = loaded_stores.environment;
        loaded_stores.environment = create_store();
        add_section(loaded_stores.environment, "var");
    }
    ~MessageFile() override {
        destroy_store(loaded_stores.environment);
        loaded_stores.environment = earlier_;
    }

    std::string path(const std::string& name) const {
        return backslashed(directory_.text() + "/" + name);
    }

    std::string write(const std::string& name, std::string_view text) {
        writeBytes(directory_ / name, text);
        return path(name);
    }

    /// A new store loaded from a file of this text.
    message_store* load(std::string_view text, message_store* store = nullptr) {
        return load_message_file(store, write("a.msg", text).c_str());
    }

    std::string report(int line, const std::string& text) const {
        return "load_messages: file '" + path("a.msg") + "', line " + std::to_string(line) + " : " +
               text;
    }

    testing::TemporaryDirectory directory_;
    testing::ChannelLog log_;

private:
    message_store* earlier_;
};

TEST_F(MessageFile, LoadsEveryEntryOfANewStoreAsAMessage) {
    message_store* store = load("[var]\n  A = 1\nA = 2\n[text]\nhello\n[var]\nB = 3\n");
    ASSERT_NE(store, nullptr);
    EXPECT_EQ(section_count(store), 3);
    EXPECT_STREQ(section_name(store, 2), "var");
    EXPECT_EQ(message_count(store, 0), 2);
    EXPECT_STREQ(get_message(store, 0, 0), "  A = 1");
    EXPECT_STREQ(get_message(store, 0, 1), "A = 2");
    EXPECT_STREQ(get_message(store, 1, 0), "hello");
    EXPECT_EQ(parameter(store, "var", "A"), "1");
    EXPECT_EQ(parameter(store, "var", "B"), "<none>");
    destroy_store(store);
}

TEST_F(MessageFile, MergesIntoAnExistingStoreByName) {
    message_store* store = load("[var]\nA = 1\nA = 2\n");
    EXPECT_EQ(load("[new]\nN = 1\n[var]\n  A = 3\nB = 4\n[new]\nN = 2\n", store), store);
    EXPECT_EQ(section_count(store), 2);
    EXPECT_EQ(message_count(store, 0), 3);
    EXPECT_STREQ(get_message(store, 0, 0), "A = 3");
    EXPECT_STREQ(get_message(store, 0, 1), "A = 2");
    EXPECT_STREQ(get_message(store, 0, 2), "B = 4");
    EXPECT_EQ(parameter(store, "new", "N"), "2");
    destroy_store(store);
}

TEST_F(MessageFile, WarnsOfATextWithoutEqualsOnlyWhenMerging) {
    message_store* store = load("[text]\nhello\n");
    EXPECT_THAT(log_.errors(), IsEmpty());
    EXPECT_EQ(load("[text]\n\n hello\n", store), store);
    EXPECT_THAT(log_.errors(),
                ElementsAre("load_messages: [file '" + path("a.msg") +
                            "' line 3] Warning - incorrect format (missing '='): [text] hello\n"));
    EXPECT_EQ(message_count(store, 0), 1);
    destroy_store(store);
}

TEST_F(MessageFile, RegistersThePathAsGivenAndExpandsNothing) {
    std::filesystem::create_directory(directory_ / "$X");
    writeBytes(directory_ / "$X/a.msg", "\n\n[s]\nA = 1\n");
    const std::string given = directory_.text() + "/$X\\a.msg";
    message_store* store = load_message_file(nullptr, given.c_str());
    ASSERT_NE(store, nullptr);
    EXPECT_EQ(originOf(store, get_message(store, 0, 0)), "from '" + given + "' line 4");
    destroy_store(store);
}

TEST_F(MessageFile, ReadsLineEndsOfBothSystems) {
    message_store* store = load("[s]\r\nA = 1\r\n/if X\r\nB\r\n/endif\r\n");
    EXPECT_STREQ(get_message(store, 0, 0), "A = 1");
    EXPECT_EQ(message_count(store, 0), 1);
    destroy_store(store);
}

TEST_F(MessageFile, EndsALineAtAZeroByteAndKeepsTheNextOne) {
    using namespace std::string_view_literals;
    message_store* store = load("[s]\nab\0cd\nsecond\n\0\nthird\n"sv);
    ASSERT_EQ(message_count(store, 0), 3);
    EXPECT_STREQ(get_message(store, 0, 0), "ab");
    EXPECT_STREQ(get_message(store, 0, 1), "second");
    EXPECT_STREQ(get_message(store, 0, 2), "third");
    EXPECT_EQ(originOf(store, get_message(store, 0, 2)), "from '" + path("a.msg") + "' line 5");
    destroy_store(store);
}

TEST_F(MessageFile, WarnsOfLinesOf1023CharactersAndMoreWithOrWithoutNewline) {
    for (std::size_t length = 1020; length <= 1030; ++length) {
        for (const char* end : {"", "\n", "\nB\n"}) {
            SCOPED_TRACE(std::to_string(length) + end);
            log_.errors().clear();
            const std::string line(length, 'x');
            message_store* store = load("[s]\n" + line + end);
            EXPECT_EQ(get_message(store, 0, 0), line.substr(0, 1023));
            EXPECT_EQ(message_count(store, 0), std::string(end) == "\nB\n" ? 2 : 1);
            if (length < 1023) {
                EXPECT_THAT(log_.errors(), IsEmpty());
            } else {
                EXPECT_THAT(log_.errors(), ElementsAre(report(2, "Input line too long")));
            }
            destroy_store(store);
        }
    }
}

TEST_F(MessageFile, LeavesTheStoreAsItIsWhereThereIsNoFile) {
    message_store* store = load("[s]\nA = 1\n");
    EXPECT_EQ(load_message_file(store, path("missing").c_str()), store);
    EXPECT_EQ(load_message_file(store, path("missing/a.msg").c_str()), store);
    EXPECT_EQ(load_message_file(store, ""), store);
    EXPECT_EQ(load_message_file(store, nullptr), store);
    EXPECT_EQ(parameter(store, "s", "A"), "1");
    destroy_store(store);
    EXPECT_EQ(load_message_file(nullptr, path("missing").c_str()), nullptr);
    EXPECT_EQ(load_message_file(nullptr, nullptr), nullptr);
    EXPECT_THAT(log_.fatals(), IsEmpty());
    EXPECT_THAT(log_.errors(), IsEmpty());
}

TEST_F(MessageFile, ReportsAFileThatCannotBeRead) {
    // Its first page is no memory of any process.
    const char* const unreadable = "/proc/self/mem";
    if (!std::filesystem::exists(unreadable)) GTEST_SKIP() << "every file that opens can be read";
    const std::string before = storageInUse();
    const testing::ChannelLog log;
    EXPECT_EQ(load_message_file(nullptr, unreadable), nullptr);
    EXPECT_EQ(storageInUse(), before);
    const testing::Store store;
    EXPECT_EQ(load_message_file(store, unreadable), nullptr);
    EXPECT_EQ(section_count(store), 0);
    const std::string report = "load_messages: file '/proc/self/mem', line 0 : Error loading file.";
    EXPECT_THAT(log.fatals(), ElementsAre(report, report));
}

TEST_F(MessageFile, ReportsAFileThatExistsButCannotBeOpened) {
    std::filesystem::create_directory(directory_ / "a.msg");
    const std::string text = "Error opening file - " + std::generic_category().message(EISDIR);
    EXPECT_EQ(load_message_file(nullptr, path("a.msg").c_str()), nullptr);
    message_store* store = create_store();
    EXPECT_EQ(load_message_file(store, path("a.msg").c_str()), nullptr);
    EXPECT_EQ(section_count(store), 0);
    destroy_store(store);
    EXPECT_THAT(log_.fatals(), ElementsAre(report(0, text), report(0, text)));
}

TEST_F(MessageFile, GivesAnAbortedFileUp) {
    EXPECT_EQ(load("[s]\nA = 1\n/what\nB = 2\n"), nullptr);
    message_store* store = create_store();
    EXPECT_EQ(load("[s]\nA = 1\n/what\nB = 2\n", store), nullptr);
    EXPECT_EQ(parameter(store, "s", "A"), "1");
    EXPECT_EQ(parameter(store, "s", "B"), "<none>");
    destroy_store(store);
}

TEST_F(MessageFile, AbortsAtASectionNameOf100Characters) {
    const std::string name(99, 'n');
    message_store* store = load("[" + name + "]\nA = 1\n");
    ASSERT_NE(store, nullptr);
    EXPECT_EQ(parameter(store, name.c_str(), "A"), "1");
    EXPECT_EQ(load("[" + name + "n]\nA = 2\n", store), nullptr);
    EXPECT_EQ(section_count(store), 1);
    destroy_store(store);
    EXPECT_EQ(load("[" + name + "n]\nA = 2\n"), nullptr);
    EXPECT_THAT(log_.fatals(),
                ElementsAre(report(0, "Error loading file."), report(0, "Error loading file.")));
}

TEST_F(MessageFile, AbortsAtThe32768thEntry) {
    std::string text = "[s]\n";
    for (int i = 0; i < 32767; ++i)
        text += "A" + std::to_string(i) + " = 1\n";
    message_store* store = load(text);
    ASSERT_NE(store, nullptr);
    EXPECT_EQ(message_count(store, 0), 32767);
    EXPECT_EQ(load("[s]\nA0 = 2\nB = 3\n", store), nullptr);
    EXPECT_EQ(message_count(store, 0), 32767);
    EXPECT_EQ(parameter(store, "s", "A0"), "2");
    destroy_store(store);
    EXPECT_EQ(load(text + "B = 3\n"), nullptr);
    EXPECT_THAT(log_.fatals(),
                ElementsAre(report(0, "Error loading file."), report(0, "Error loading file.")));
}

TEST_F(MessageFile, AbortsAtThe32768thSection) {
    std::string text;
    for (int i = 0; i < 32767; ++i)
        text += "[s" + std::to_string(i) + "]\n";
    message_store* store = load(text);
    ASSERT_NE(store, nullptr);
    EXPECT_EQ(section_count(store), 32767);
    EXPECT_EQ(load("[s7]\nA = 1\n[more]\n", store), nullptr);
    EXPECT_EQ(section_count(store), 32767);
    EXPECT_EQ(parameter(store, "s7", "A"), "1");
    destroy_store(store);
    EXPECT_EQ(load(text + "[more]\n"), nullptr);
    EXPECT_EQ(log_.fatals().size(), 2U);
}

TEST_F(MessageFile, LeavesNothingBehindAfterDestroyStore) {
    const std::string before = storageInUse();
    destroy_store(load("[s]\nA = 1\n[t]\nB = +x\n"));
    EXPECT_EQ(load("[s]\nA = 1\n/what\n"), nullptr);
    EXPECT_EQ(load_message_file(nullptr, path("missing").c_str()), nullptr);
    EXPECT_EQ(storageInUse(), before);
}

TEST_F(MessageFile, DestroysANewStoreWhenAHandlerThrows) {
    const std::string before = storageInUse();
    set_fatal_handler([](const char* message) { throw std::runtime_error(message); });
    EXPECT_THROW(load("[s]\nA = 1\n/what\n"), std::runtime_error);
    EXPECT_EQ(storageInUse(), before);
    message_store* store = create_store();
    EXPECT_THROW(load("[s]\nA = 1\n/what\n", store), std::runtime_error);
    EXPECT_EQ(parameter(store, "s", "A"), "1");
    destroy_store(store);
}

TEST_F(MessageFile, LoadsTwentyThousandEntriesTwice) {
    std::string text = "[s]\n";
    for (int i = 0; i < 20000; ++i)
        text += "NAME_" + std::to_string(i) + " = value " + std::to_string(i) + "\n";
    message_store* store = load(text);
    EXPECT_EQ(load(text, store), store);
    EXPECT_EQ(message_count(store, 0), 20000);
    EXPECT_EQ(parameter(store, "s", "NAME_19999"), "value 19999");
    destroy_store(store);
}

// The default handlers

using MessageFileReport = testing::ChildProcessTest;

struct FatalText {
    const char* text;
    const char* report;
};

class FatalMessageFile : public testing::ChildProcessTest,
                         public ::testing::WithParamInterface<FatalText> {};

TEST_P(FatalMessageFile, EndsTheProcessWithItsTextOnStandardError) {
    const auto load = [] {
        static testing::Installation installation;
        installation.write("config/environ.cfg", "");
        std::filesystem::current_path(installation.root());
        installation.write("a.msg", GetParam().text);
        load_message_file(nullptr, "a.msg");
    };
    TRV_EXPECT_FATAL(load,
                     std::string("load_messages: file 'a.msg', line ") + GetParam().report + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    MessageFile, FatalMessageFile,
    ::testing::Values(
        FatalText{"[s]\n/what\n", "2 : Unknown keyword : '/what'"},
        FatalText{"\n/else\n", "2 : '/else' without '/if'"},
        FatalText{"/endif\n", "1 : '/endif' without '/if'"},
        FatalText{"/if TRVHOME\n/if TRVHOME\n/if TRVHOME\n/if TRVHOME\n/if TRVHOME\n/if TRVHOME\n"
                  "/if TRVHOME\n/if TRVHOME\n",
                  "8 : too many nested conditions: %s"},
        FatalText{"/if TRVHOME is 1\n/endif\n", "1 : invalid condition: /if TRVHOME is 1"},
        FatalText{"/if UNKNOWN\nA\n", "2 : '/if' without '/endif'"},
        FatalText{"/if TRVHOME\nA\n", "-1 : '/if' without '/endif' at end of file."},
        FatalText{"[1234567890123456789012345678901234567890123456789012345678901234567890123456789"
                  "012345678901234567890]\n",
                  "0 : Error loading file."}));

TEST_F(MessageFileReport, OfADirectoryEndsTheProcess) {
    const auto load = [] {
        static testing::Installation installation;
        installation.makeDirectory("a.msg");
        std::filesystem::current_path(installation.root());
        load_message_file(nullptr, "a.msg");
    };
    TRV_EXPECT_FATAL(load, "load_messages: file 'a.msg', line 0 : Error opening file - " +
                               std::generic_category().message(EISDIR) + "\n");
}

TEST_F(MessageFileReport, OfAWarningGoesToStandardErrorAndTheParseGoesOn) {
    const auto load = [] {
        const testing::Installation installation;
        installation.write("config/environ.cfg", "");
        std::filesystem::current_path(installation.root());
        installation.write(
            "a.msg", "[s]\n/if UNKNOWN == 1\n/endif\nA = " + std::string(1023, 'x') + "\nB = 1\n");
        message_store* store = load_message_file(nullptr, "a.msg");
        EXPECT_EQ(message_count(store, 0), 2);
        destroy_store(store);
        std::filesystem::current_path(installation.file("..").lexically_normal());
    };
    EXPECT_EXIT(
        testing::runAndLeave(load), ::testing::ExitedWithCode(0),
        ::testing::Eq(std::string("load_messages: file 'a.msg' line 2, unknown variable : "
                                  "'/if UNKNOWN == 1'\n\n"
                                  "load_messages: file 'a.msg', line 4 : Input line too long\n")));
}

TEST_F(MessageFileReport, AConditionInAnyFileLoadsTheEnvironment) {
    const auto load = [] {
        const testing::Installation installation;
        installation.write("config/environ.cfg", "[var]\nX = 1\n");
        installation.write("a.msg", "[s]\n/if X == 1\nA\n/endif\n");
        const std::string path = installation.path("a.msg");
        message_store* store = load_message_file(nullptr, path.c_str());
        EXPECT_EQ(message_count(store, 0), 1);
        destroy_store(store);
        EXPECT_NE(loaded_stores.environment, nullptr);
    };
    TRV_EXPECT_IN_CHILD(load);
}

TEST_F(MessageFileReport, AConditionInAnyFileIsFatalWithoutARoot) {
    const auto load = [] {
        static const testing::Installation installation;
        platform::set_environment("TRVHOME", nullptr);
        installation.write("a.msg", "/if X\n/endif\n");
        load_message_file(nullptr, installation.path("a.msg").c_str());
    };
    TRV_EXPECT_FATAL(load, "The environment variable 'TRVHOME' is not defined\n\n");
}

}  // namespace
}  // namespace trv
