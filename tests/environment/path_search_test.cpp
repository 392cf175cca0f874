#include <tests/common/channel_log.h>
#include <tests/common/file_bytes.h>
#include <tests/common/scoped_variable.h>
#include <tests/common/temporary_directory.h>
#include <tests/environment/configured_store.h>
#include <tests/environment/installation.h>
#include <trvfiles/environment/path_search.h>
#include <trvfiles/environment/variables.h>
#include <trvfiles/support/dynamic_storage.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace trv {
namespace {

using testing::backslashed;
using testing::ChannelLog;
using testing::ConfiguredStore;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::ScopedVariable;
using testing::TemporaryDirectory;
using testing::writeBytes;

struct Outcome {
    int code;
    std::string text;
    bool operator==(const Outcome& other) const { return code == other.code && text == other.text; }
};

std::ostream& operator<<(std::ostream& stream, const Outcome& outcome) {
    return stream << outcome.code << " \"" << outcome.text << '"';
}

Outcome resolved(const std::string& source, std::int32_t size = 512) {
    std::vector<char> text(1024, '#');
    std::memcpy(text.data(), source.c_str(), source.size() + 1);
    const int code = resolve_path(text.data(), size);
    return {code, text.data()};
}

Outcome resolvedField(const std::string& source, std::int32_t width = 512) {
    std::string field(static_cast<std::size_t>(width) + 1, '#');
    std::int32_t code = 1;
    resolve_path_fixed(source.data(), static_cast<std::int32_t>(source.size()), field.data(), width,
                       &code);
    EXPECT_EQ('#', field.back());
    field.pop_back();
    return {code, field};
}

Outcome searched(const std::string& list, std::string name, std::int32_t width) {
    name.resize(static_cast<std::size_t>(width), ' ');
    name += '#';
    std::int32_t code = 1;
    search_list(list.data(), name.data(), &code, static_cast<std::int32_t>(list.size()), width);
    EXPECT_EQ('#', name.back());
    name.pop_back();
    return {code, name};
}

std::string padded(std::string text, std::size_t width) {
    text.resize(width, ' ');
    return text;
}

int existing(const std::string& field) {
    std::int32_t code = 1;
    const std::string copy = field;
    expand_existing(copy.data(), static_cast<std::int32_t>(copy.size()), &code);
    EXPECT_EQ(field, copy);
    return code;
}

// Two directories, a and b, in the list CFG; b alone holds x.t and sub/y.t.
class PathSearch : public ::testing::Test {
protected:
    PathSearch() {
        std::filesystem::create_directories(directory_ / "a");
        std::filesystem::create_directories(directory_ / "b/sub");
        writeBytes(directory_ / "b/x.t", "");
        writeBytes(directory_ / "b/sub/y.t", "");
        store_.path("CFG = " + root() + "/a;" + root() + "/b");
        store_.variable("DIR = " + root() + "/b");
    }

    std::string root() const { return directory_.text(); }
    std::string path(const std::string& name) const { return backslashed(root() + "/" + name); }

    ScopedVariable noNullText_{"TRVNULL", nullptr};
    ScopedVariable noCfg_{"CFGPATH", nullptr};
    TemporaryDirectory directory_;
    ConfiguredStore store_;
};

TEST_F(PathSearch, FindsANameInTheDirectoriesOfAList) {
    EXPECT_EQ((Outcome{0, path("b/x.t")}), resolved("?CFG\\x.t"));
    EXPECT_EQ((Outcome{0, path("b/x.t")}), resolved("?CFG/x.t"));
    EXPECT_EQ((Outcome{0, path("b/sub/y.t")}), resolved("?CFG\\sub\\y.t"));
}

TEST_F(PathSearch, TakesTheFirstDirectoryThatHasTheName) {
    writeBytes(directory_ / "a/x.t", "");
    EXPECT_EQ((Outcome{0, path("a/x.t")}), resolved("?CFG\\x.t"));
}

TEST_F(PathSearch, TracesTheListAndEachNameThatItTries) {
    ChannelLog log;
    const std::filesystem::path current = std::filesystem::current_path();
    std::filesystem::current_path(directory_.path());
    EXPECT_EQ((Outcome{0, padded("b\\x.t", 20)}), searched("a;b", "x.t", 20));
    std::filesystem::current_path(current);
    EXPECT_THAT(log.traces(), ElementsAre("SEARCHING for 'x.t' in 'a;b'",
                                          "  - 'a\\x.t' -> Not found", "  - 'b\\x.t' -> Found"));
}

TEST_F(PathSearch, MarksALongListInItsTraceLine) {
    ChannelLog log;
    const std::string shorter(80, 'd');
    searched(shorter, "n", 200);
    const std::string longer(81, 'd');
    searched(longer, "n", 200);
    EXPECT_THAT(log.traces(), ElementsAre("SEARCHING for 'n' in '" + shorter + "'",
                                          "  - '" + shorter + "\\n' -> Not found",
                                          "SEARCHING for 'n' in '" + longer + "...'",
                                          "  - '" + longer + "\\n' -> Not found"));
}

TEST_F(PathSearch, GivesTheFirstNameTriedIfThereIsNone) {
    EXPECT_EQ((Outcome{-21, path("a/none.t")}), resolved("?CFG\\none.t"));
    EXPECT_EQ((Outcome{-21, padded(path("a/none.t"), 300)}), searched("?CFG", "none.t", 300));
}

TEST_F(PathSearch, GivesNothingIfTheListIsEmpty) {
    store_.path("NONE =");
    EXPECT_EQ((Outcome{-21, ""}), resolved("?NONE\\x.t"));
    EXPECT_EQ((Outcome{-21, padded("", 20)}), searched(" ;, ;", "x.t", 20));
    EXPECT_EQ((Outcome{-21, padded("", 20)}), searched("", "x.t", 20));
}

TEST_F(PathSearch, TrimsElementsAndSkipsEmptyOnes) {
    ChannelLog log;
    EXPECT_EQ((Outcome{-21, padded("a\\n", 20)}), searched(";, \ta \x01,; ;\tb c;", "n", 20));
    EXPECT_THAT(log.traces(), ElementsAre("SEARCHING for 'n' in ';, \ta \x01,; ;\tb c;'",
                                          "  - 'a\\n' -> Not found", "  - 'b c\\n' -> Not found"));
}

TEST_F(PathSearch, PutsOneSeparatorBetweenAnElementAndTheName) {
    EXPECT_EQ((Outcome{-21, padded("a\\n", 20)}), searched("a\\", "n", 20));
    EXPECT_EQ((Outcome{-21, padded("a\\n", 20)}), searched("a/", "n", 20));
    EXPECT_EQ((Outcome{-21, padded("\"a\"\\n", 20)}), searched("\"a\"", "n", 20));
}

TEST_F(PathSearch, TreatsTheLastComponentWithAQuestionMarkAsTheList) {
    ChannelLog log;
    store_.path("L = p");
    EXPECT_EQ((Outcome{-21, "a\\p\\f"}), resolved("a\\?L\\f"));
    EXPECT_EQ((Outcome{-21, "p\\q\\p\\f"}), resolved("?L\\q/?L/f"));
    EXPECT_EQ((Outcome{-21, "p\\\\f"}), resolved("?L\\\\f"));
    EXPECT_THAT(log.traces(), ::testing::Contains("SEARCHING for '\\f' in 'p'"));
}

TEST_F(PathSearch, ExpandsTheNameToo) {
    store_.variable("N = sub/y.t");
    EXPECT_EQ((Outcome{0, path("b/sub/y.t")}), resolved("?CFG\\$N"));
}

TEST_F(PathSearch, NeedsANameAfterTheList) {
    EXPECT_EQ((Outcome{-44, "?CFG"}), resolved("?CFG"));
    EXPECT_EQ(-44, resolved("?CFG\\").code);
    EXPECT_EQ(-44, resolved("?CFG/").code);
    EXPECT_EQ((Outcome{-44, "?CFG\\a?b"}), resolved("?CFG\\a?b"));
    EXPECT_EQ((Outcome{-44, "a??b"}), resolved("a??b"));
    EXPECT_EQ(-44, resolvedField("?CFG").code);
    EXPECT_EQ(-44, resolvedField("?CFG\\  ").code);
}

TEST_F(PathSearch, ExpandsATextWithoutAListAndTestsTheFile) {
    EXPECT_EQ((Outcome{0, path("b/x.t")}), resolved("$DIR//x.t"));
    EXPECT_EQ((Outcome{0, path("b")}), resolved("$DIR"));
    EXPECT_EQ((Outcome{-21, path("b/none.t")}), resolved("$DIR/none.t"));
    EXPECT_EQ((Outcome{0, path("b/*.t")}), resolved("$DIR/*.t"));
    EXPECT_EQ((Outcome{-21, ""}), resolved(""));
}

TEST_F(PathSearch, ReturnsWhatTheExpansionGaveWithoutATest) {
    ChannelLog log;
    EXPECT_EQ((Outcome{-43, path("b/x.t")}), resolved("$DIR/x.t$UNDEFINED_X"));
    EXPECT_EQ((Outcome{-31, "$(DIR"}), resolved("$(DIR"));
    EXPECT_EQ((Outcome{-32, "0123456789"}), resolved("0123456789", 10));
}

TEST_F(PathSearch, EndsIfTheNameOrTheListDoesNotExpand) {
    ChannelLog log;
    EXPECT_EQ(-43, resolved("?CFG\\x.t$UNDEFINED_X").code);
    EXPECT_EQ(-43, resolved("?UNDEFINED_X\\x.t").code);
    EXPECT_EQ(-43, resolved("$UNDEFINED_X;?CFG\\x.t").code);
    EXPECT_EQ(-31, resolved("?CFG\\$(x.t").code);
    EXPECT_EQ(-31, resolved("$(;?CFG\\x.t").code);
    store_.variable("LOOP = $LOOP");
    EXPECT_EQ(-42, resolved("$LOOP?CFG\\x.t").code);
    EXPECT_EQ(-43, resolvedField("?UNDEFINED_X\\x.t").code);
    for (const std::string& trace : log.traces())
        EXPECT_THAT(trace, ::testing::Not(::testing::HasSubstr("SEARCHING"))) << trace;
}

TEST_F(PathSearch, TakesATextBelow510Characters) {
    EXPECT_EQ((Outcome{-21, std::string(509, 'x')}), resolved(std::string(509, 'x')));
    EXPECT_EQ((Outcome{-42, std::string(510, 'x')}), resolved(std::string(510, 'x'), 1024));
}

TEST_F(PathSearch, RefusesANullTextAndABufferOfNoSize) {
    EXPECT_EQ(-44, resolve_path(nullptr, 512));
    EXPECT_EQ((Outcome{-32, "?CFG\\x.t"}), resolved("?CFG\\x.t", 0));
    EXPECT_EQ((Outcome{-32, "?CFG\\x.t"}), resolved("?CFG\\x.t", -1));
}

TEST_F(PathSearch, NeedsABufferLargerThanTheName) {
    ChannelLog log;
    store_.path("D = d");
    EXPECT_EQ((Outcome{-32, "?D\\abc"}), resolved("?D\\abc", 3));
    EXPECT_EQ((Outcome{-21, "d\\a"}), resolved("?D\\abc", 4));
    EXPECT_THAT(log.errors(), IsEmpty());
}

TEST_F(PathSearch, CutsTheFirstNameTriedToTheBuffer) {
    store_.path("D = directory");
    EXPECT_EQ((Outcome{-21, "directo"}), resolved("?D\\name", 8));
    EXPECT_EQ((Outcome{-21, "director"}), resolvedField("?D\\name", 8));
    EXPECT_EQ((Outcome{-21, "director"}), searched("?D", "name", 8));
}

TEST_F(PathSearch, NeedsAFieldLongerThanTheFileFound) {
    const std::string found = path("b/x.t");
    const auto length = static_cast<std::int32_t>(found.size());
    EXPECT_EQ((Outcome{-32, ""}), resolved("?CFG\\x.t", length));
    EXPECT_EQ((Outcome{0, found}), resolved("?CFG\\x.t", length + 1));
    EXPECT_EQ((Outcome{-32, padded("", found.size())}), resolvedField("?CFG\\x.t", length));
    EXPECT_EQ((Outcome{0, found + " "}), resolvedField("?CFG\\x.t", length + 1));
    EXPECT_EQ((Outcome{-32, padded("", found.size())}), searched("?CFG", "x.t", length));
    EXPECT_EQ((Outcome{0, found + " "}), searched("?CFG", "x.t", length + 1));
}

TEST_F(PathSearch, TakesAListBelow513Characters) {
    EXPECT_EQ(-21, searched(std::string(512, 'd'), "n", 20).code);
    EXPECT_EQ((Outcome{-42, padded("n", 20)}), searched(std::string(513, 'd'), "n", 20));
    EXPECT_EQ(-21, searched(padded(std::string(512, 'd'), 600), "n", 20).code);
}

TEST_F(PathSearch, ExpandsAListToUpTo8192Characters) {
    ChannelLog log;
    store_.path("FULL = " + std::string(8192, 'd'));
    EXPECT_EQ(-21, searched("?FULL", "n", 20).code);
    EXPECT_THAT(log.errors(), IsEmpty());
    store_.path("MORE = " + std::string(8193, 'd'));
    EXPECT_EQ(-32, searched("?MORE", "n", 20).code);
    EXPECT_THAT(log.errors(),
                ElementsAre("_Expand(\"?MORE\") = error -32 - buffer size 8192 too small"));
}

TEST_F(PathSearch, RefusesMissingFields) {
    std::int32_t code = 1;
    char field[4] = {'x', 'x', 'x', 'x'};
    search_list(nullptr, field, &code, 4, 4);
    EXPECT_EQ(-44, code);
    search_list("a", nullptr, &code, 1, 4);
    EXPECT_EQ(-44, code);
    search_list("a", field, &code, 1, 0);
    EXPECT_EQ(-32, code);
    search_list("a", field, &code, 1, -1);
    EXPECT_EQ(-32, code);
    search_list("a", nullptr, nullptr, 1, 4);
    resolve_path_fixed(nullptr, 4, field, 4, &code);
    EXPECT_EQ(-44, code);
    resolve_path_fixed("a", 1, nullptr, 4, &code);
    EXPECT_EQ(-44, code);
    resolve_path_fixed("a", 1, field, 0, &code);
    EXPECT_EQ(-32, code);
    resolve_path_fixed("a", 1, nullptr, 4, nullptr);
    EXPECT_EQ("xxxx", std::string(field, 4));
}

TEST_F(PathSearch, TakesAListThatExpandingTheNameOverwrites) {
    store_.variable("LIST = dir");
    store_.variable("LIST = +_a");
    store_.variable("N = name");
    store_.variable("N = +_b");
    std::string name = padded("$N", 30);
    std::int32_t code = 1;
    search_list(get_variable("LIST"), name.data(), &code, 5, 30);
    EXPECT_EQ(-21, code);
    EXPECT_EQ(padded("dir_a\\name_b", 30), name);
}

TEST_F(PathSearch, FreesItsStorage) {
    char before[64];
    storage_report(before, sizeof before);
    resolved("?CFG\\x.t");
    resolved("?CFG\\none.t");
    char after[64];
    storage_report(after, sizeof after);
    EXPECT_STREQ(before, after);
}

TEST_F(PathSearch, LeavesATerminatedTextWhenATraceHandlerThrows) {
    const message_handler earlier = set_trace_handler([](const char* message) {
        if (std::string(message).rfind("SEARCHING", 0) == 0) throw std::runtime_error("stop");
    });
    std::vector<char> text(16, '#');
    std::memcpy(text.data(), "?CFG\\x.t", 9);
    EXPECT_THROW(resolve_path(text.data(), 16), std::runtime_error);
    set_trace_handler(earlier);
    EXPECT_NE(nullptr, std::memchr(text.data(), '\0', text.size()));
}

TEST_F(PathSearch, ResolvesFieldsOfFixedLength) {
    EXPECT_EQ((Outcome{0, padded(path("b/x.t"), 300)}), resolvedField("?CFG\\x.t \t ", 300));
    EXPECT_EQ((Outcome{0, padded(path("b/x.t"), 300)}), resolvedField("$DIR/x.t   ", 300));
    EXPECT_EQ((Outcome{-21, padded(path("b/none.t"), 300)}), resolvedField("$DIR/none.t", 300));
    EXPECT_EQ((Outcome{-21, padded(path("a/none.t"), 300)}), resolvedField("?CFG/none.t", 300));
    EXPECT_EQ((Outcome{-43, padded(path("b/x.t"), 300)}),
              resolvedField("$DIR/x.t$UNDEFINED_X", 300));
}

TEST_F(PathSearch, ResolvesInOneField) {
    std::string field = padded("?CFG\\x.t", 300);
    std::int32_t code = 1;
    resolve_path_fixed(field.data(), 300, field.data(), 300, &code);
    EXPECT_EQ(0, code);
    EXPECT_EQ(padded(path("b/x.t"), 300), field);
}

TEST_F(PathSearch, TakesAFieldOf511Characters) {
    const std::string longest(511, 'x');
    EXPECT_EQ((Outcome{-21, padded(longest, 520)}), resolvedField(longest + "   ", 520));
    EXPECT_EQ((Outcome{-42, std::string(520, '#')}), resolvedField(longest + "x", 520));
}

TEST_F(PathSearch, NeedsAFieldWiderThanTheName) {
    ChannelLog log;
    store_.path("D = d");
    EXPECT_EQ((Outcome{-32, "###"}), resolvedField("?D\\abc", 3));
    EXPECT_EQ((Outcome{-21, "d\\ab"}), resolvedField("?D\\abc", 4));
    EXPECT_EQ((Outcome{-32, "###"}), resolvedField("abcd", 3));
}

TEST_F(PathSearch, TestsWhatAFieldNamesAndLeavesItAlone) {
    ChannelLog log;
    EXPECT_EQ(0, existing("$DIR/x.t   "));
    EXPECT_EQ(0, existing("$DIR/*.t"));
    EXPECT_EQ(-21, existing("$DIR/none.t"));
    EXPECT_EQ(-21, existing("   "));
    EXPECT_EQ(-43, existing("$DIR/x.t$UNDEFINED_X"));
    EXPECT_EQ(-31, existing("$(DIR"));
    std::int32_t code = 1;
    expand_existing(nullptr, 3, &code);
    EXPECT_EQ(-44, code);
    expand_existing("a", 1, nullptr);
}

TEST_F(PathSearch, TestsAFieldBelow512Characters) {
    ChannelLog log;
    EXPECT_EQ(-21, existing(std::string(511, 'x') + " \t"));
    EXPECT_EQ(-32, existing(std::string(512, 'x')));
    EXPECT_THAT(log.errors(), IsEmpty());
    EXPECT_EQ(-32, existing(std::string(510, 'x') + "$DIR"));
    store_.variable("FILL = " + std::string(513, 'x'));
    EXPECT_EQ(-32, existing("$FILL"));
    EXPECT_THAT(log.errors(),
                ElementsAre("_Expand(\"$FILL\") = error -32 - buffer size 512 too small"));
}

TEST_F(PathSearch, GivesTheFirstDirectoryThatExists) {
    EXPECT_STREQ((root() + "/a").c_str(), config_directory());
    store_.path("CFG = .;./,.\\;" + root() + "/none," + root() + "/b;" + root() + "/a");
    EXPECT_STREQ((root() + "/b").c_str(), config_directory());
    EXPECT_STREQ((root() + "/b/x.t").c_str(), first_existing_directory("$DIR/x.t;$DIR"));
}

TEST_F(PathSearch, TakesDirectoriesUnchanged) {
    EXPECT_EQ(nullptr, first_existing_directory((" " + root()).c_str()));
    EXPECT_EQ(nullptr, first_existing_directory("?(NONE)"));
    EXPECT_STREQ("..", first_existing_directory(".;.."));
    EXPECT_EQ(nullptr, first_existing_directory("$DIR/*.t"));
    EXPECT_STREQ((root() + "//b").c_str(), first_existing_directory((root() + "//b").c_str()));
}

TEST_F(PathSearch, GivesNoDirectoryIfNothingQualifies) {
    ChannelLog log;
    EXPECT_EQ(nullptr, first_existing_directory("none;,.;"));
    EXPECT_EQ(nullptr, first_existing_directory(""));
    EXPECT_EQ(nullptr, first_existing_directory(nullptr));
    EXPECT_EQ(nullptr, first_existing_directory("$(DIR"));
    EXPECT_EQ(nullptr, first_existing_directory("$UNDEFINED_X;none"));
}

TEST_F(PathSearch, ReadsAnUndefinedPartOfADirectoryListAsItsNullValue) {
    ChannelLog log;
    EXPECT_STREQ((root() + "/b").c_str(), first_existing_directory("$UNDEFINED_X;$DIR"));
    EXPECT_STREQ((root() + "/b").c_str(), first_existing_directory("?UNDEFINED_X,$DIR"));
    EXPECT_STREQ((root() + "/a").c_str(),
                 first_existing_directory((root() + "/a$UNDEFINED_X;$DIR").c_str()));
    store_.path("CFG = $UNDEFINED_X;$DIR");
    EXPECT_STREQ((root() + "/b").c_str(), config_directory());
    store_.path("CFG = $UNDEFINED_X");
    EXPECT_EQ(nullptr, config_directory());
    store_.variable("TRVNULL = " + root() + "/a");
    EXPECT_STREQ((root() + "/a").c_str(), config_directory());
    EXPECT_STREQ((root() + "/a").c_str(), first_existing_directory("$UNDEFINED_X;$DIR"));
    EXPECT_THAT(log.errors(), IsEmpty());
}

TEST_F(PathSearch, TakesADirectoryListOf1535Characters) {
    ChannelLog log;
    std::string list = root() + "/b";
    list.resize(1535, ';');
    EXPECT_STREQ((root() + "/b").c_str(), first_existing_directory(list.c_str()));
    list += ';';
    EXPECT_EQ(nullptr, first_existing_directory(list.c_str()));
    store_.path("LONG = " + list);
    EXPECT_EQ(nullptr, first_existing_directory("?LONG"));
}

TEST_F(PathSearch, MayBeGivenItsOwnLastDirectory) {
    const char* directory = config_directory();
    EXPECT_STREQ((root() + "/a").c_str(), first_existing_directory(directory));
}

TEST_F(PathSearch, LoadsTheMessageFileThatItFinds) {
    message_store* const earlier = loaded_stores.catalogue;
    loaded_stores.catalogue = nullptr;
    writeBytes(directory_ / "b/text.msg", "[texts]\nfirst\nN = 1\n");
    EXPECT_EQ(-1, load_found_messages("none.msg", "?CFG"));
    EXPECT_EQ(nullptr, catalogue_store());
    EXPECT_EQ(0, load_found_messages("text.msg", "?CFG"));
    EXPECT_STREQ("first", get_catalogue_message("texts", 0));
    EXPECT_STREQ("1", get_catalogue_parameter("texts", "n"));
    EXPECT_EQ(-1, load_found_messages("text.msg", "$UNDEFINED_X;?CFG"));
    EXPECT_EQ(-1, load_found_messages(nullptr, "?CFG"));
    EXPECT_EQ(-1, load_found_messages("text.msg", nullptr));
    destroy_store(loaded_stores.catalogue);
    loaded_stores.catalogue = earlier;
}

TEST_F(PathSearch, LoadsNoMessagesByANameThatIsTooLong) {
    ChannelLog log;
    // With the directory and the separator between them these are 509 and 510 characters.
    const std::string longest(504, 'x');
    EXPECT_EQ(-1, load_found_messages(longest.c_str(), "?CFG"));
    EXPECT_THAT(log.traces(), ::testing::Contains(::testing::StartsWith("SEARCHING")));
    log.traces().clear();
    EXPECT_EQ(-1, load_found_messages((longest + 'x').c_str(), "?CFG"));
    EXPECT_EQ(-1, load_found_messages(std::string(100000, 'x').c_str(), "?CFG"));
    EXPECT_THAT(log.traces(), IsEmpty());
}

}  // namespace
}  // namespace trv
