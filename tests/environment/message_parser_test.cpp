#include <tests/common/channel_log.h>
#include <trvfiles/environment/message_file.h>
#include <trvfiles/environment/variables_internal.h>
#include <trvfiles/support/line_source.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

// All texts here are parsed with the environment already loaded: its section `var` defines X = 1.

namespace trv {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// The lines of a text, each with its newline.
class TextLines : public VCL8BLineSource {
public:
    explicit TextLines(std::string text) : text_(std::move(text)) {}

    std::uint64_t lineNumber() const override { return position_ < text_.size() ? line_ : 0; }

    std::uint64_t readLine(char* buffer, std::int32_t size) override {
        ++line_;
        const std::size_t start = position_;
        const std::size_t newline = text_.find('\n', start);
        position_ = newline == std::string::npos ? text_.size() : newline + 1;
        const std::size_t length = position_ - start;
        const std::size_t kept = std::min(length, static_cast<std::size_t>(size) - 1);
        buffer[text_.copy(buffer, kept, start)] = '\0';
        return length;
    }

    bool untouched() const { return position_ == 0; }

private:
    std::string text_;
    std::size_t position_ = 0;
    std::uint64_t line_ = 1;
};

std::vector<std::string> taken;

int takeHeader(message_store*, const char* name) {
    taken.push_back("[" + std::string(name) + "]");
    return static_cast<int>(taken.size());
}

int takeEntry(message_store*, int, const char* line, std::int32_t, int number) {
    taken.push_back(std::to_string(number) + ":" + line);
    return 0;
}

class MessageParser : public ::testing::Test {
protected:
    MessageParser() {
        taken.clear();
        earlier_ = loaded_stores.environment;
        loaded_stores.environment = create_store();
        var_ = add_section(loaded_stores.environment, "var");
        define("X = 1");
    }
    ~MessageParser() override {
        destroy_store(loaded_stores.environment);
        loaded_stores.environment = earlier_;
        destroy_store(store_);
    }

    void define(const char* entry) { set_variable(loaded_stores.environment, var_, entry); }

    int parse(const std::string& text, section_callback section = takeHeader,
              entry_callback entry = takeEntry) {
        TextLines lines(text);
        return load_messages(store_, lines, "a.cfg", section, entry);
    }

    /// The entries of a text. A section header is added as line 1.
    std::vector<std::string> entries(const std::string& text) {
        taken.clear();
        EXPECT_EQ(parse("[s]\n" + text), 0);
        EXPECT_EQ(taken.front(), "[s]");
        return {taken.begin() + 1, taken.end()};
    }

    static std::string report(int line, const std::string& text) {
        return "load_messages: file 'a.cfg', line " + std::to_string(line) + " : " + text;
    }

    message_store* store_ = create_store();
    testing::ChannelLog log_;

private:
    message_store* earlier_;
    int var_;
};

TEST_F(MessageParser, HandsHeadersAndEntriesOverInOrderWithTheirLines) {
    EXPECT_EQ(parse("[var]\nA = 1\n\nB = 2\n[path]\nC = 3\n"), 0);
    EXPECT_THAT(taken, ElementsAre("[var]", "2:A = 1", "4:B = 2", "[path]", "6:C = 3"));
}

TEST_F(MessageParser, HandsTheSectionAndTheRegistrationOfTheFileOver) {
    static message_store* seenStore;
    static int seenSection;
    static std::int32_t seenFile;
    parse(
        "[s]\nA = 1\n", [](message_store*, const char*) { return 42; },
        [](message_store* store, int section, const char*, std::int32_t file, int) {
            seenStore = store;
            seenSection = section;
            seenFile = file;
            return 0;
        });
    EXPECT_EQ(seenStore, store_);
    EXPECT_EQ(seenSection, 42);
    EXPECT_EQ(seenFile, register_file_name(store_, "a.cfg"));
}

TEST_F(MessageParser, IgnoresEntriesBeforeTheFirstHeader) {
    EXPECT_EQ(parse("A = 1\nB = 2\n[s]\nC = 3"), 0);
    EXPECT_THAT(taken, ElementsAre("[s]", "4:C = 3"));
    EXPECT_THAT(log_.errors(), IsEmpty());
}

TEST_F(MessageParser, ReadsAnEmptySource) {
    EXPECT_EQ(parse(""), 0);
    EXPECT_THAT(taken, IsEmpty());
    EXPECT_THAT(log_.fatals(), IsEmpty());
}

TEST_F(MessageParser, TakesALastLineWithoutNewline) {
    EXPECT_THAT(entries("A = 1"), ElementsAre("2:A = 1"));
}

TEST_F(MessageParser, KeepsLeadingBlanksOfAnEntryAndCutsTrailingOnes) {
    EXPECT_THAT(entries("  \tA = 1 \t\r\n"), ElementsAre("2:  \tA = 1"));
}

TEST_F(MessageParser, TreatsOnlyCodes1To32AsBlanks) {
    EXPECT_THAT(entries("\x01\x1f\x20[t]\x01\nA\x01\x1f\nB\xa0\n\x85\x80\n\x01\x02\n"),
                ElementsAre("[t]", "3:A", "4:B\xa0", "5:\x85\x80"));
}

TEST_F(MessageParser, CutsTheCommentAfterTheTrailingBlanks) {
    EXPECT_THAT(entries("A = 1 ##x # comment\n"), ElementsAre("2:A = 1 #x "));
    EXPECT_THAT(entries("A#\n"), ElementsAre("2:A"));
    EXPECT_THAT(entries("A = 1   # c  \n"), ElementsAre("2:A = 1   "));
}

TEST_F(MessageParser, TreatsADoubledHashAsOne) {
    EXPECT_THAT(entries("###\n"), ElementsAre("2:#"));
    EXPECT_THAT(entries("####\n"), ElementsAre("2:##"));
    EXPECT_THAT(entries("##a##b###c\n"), ElementsAre("2:#a#b#"));
}

TEST_F(MessageParser, SkipsWhatIsEmptyAfterTheComment) {
    EXPECT_THAT(entries("# c\n  # c\n#\n   \nA\n"), ElementsAre("6:A"));
}

TEST_F(MessageParser, TakesTheNameOfAHeaderUnchanged) {
    parse("[ var ]\n[a\n[]\n[var # x]\n[a]b]\n[s] tail\n  [t]\n[#]\n[x##y]\n");
    EXPECT_THAT(taken,
                ElementsAre("[ var ]", "[a]", "[]", "[var ]", "[a]", "[s]", "[t]", "[]", "[x#y]"));
}

TEST_F(MessageParser, TreatsALineWithTwoSlashesAsAnEntry) {
    EXPECT_THAT(entries("//x\n//if X\n"), ElementsAre("2://x", "3://if X"));
    EXPECT_THAT(log_.fatals(), IsEmpty());
}

TEST_F(MessageParser, IdentifiesKeywordsByTheirFirstLetters) {
    EXPECT_THAT(entries("/ifdef\nA\n/elseif X\nB\n/endif foo\nC\n"), ElementsAre("5:B", "7:C"));
    EXPECT_THAT(log_.errors(), IsEmpty());
    EXPECT_THAT(log_.fatals(), IsEmpty());
}

TEST_F(MessageParser, TakesADirectiveAfterBlanksAndBeforeAComment) {
    EXPECT_THAT(entries("  /if X # c\nA\n\t/else # c\nB\n /endif # c\n"), ElementsAre("3:A"));
    EXPECT_THAT(log_.fatals(), IsEmpty());
}

class UnknownKeyword : public MessageParser, public ::testing::WithParamInterface<std::string> {};

TEST_P(UnknownKeyword, IsReportedAThousandTimesAndEndsTheParse) {
    EXPECT_THAT(entries(GetParam() + "\nA = 1\n"), IsEmpty());
    ASSERT_EQ(log_.fatals().size(), 1001U);
    EXPECT_EQ(log_.fatals()[0], report(2, "Unknown keyword : '" + GetParam() + "'"));
    EXPECT_EQ(log_.fatals()[999], log_.fatals()[0]);
    EXPECT_EQ(log_.fatals()[1000], report(0, "Error loading file."));
}

INSTANTIATE_TEST_SUITE_P(MessageParser, UnknownKeyword,
                         ::testing::Values("/", "/IF X", "/ if X", "/define A b", "/%s%n", "/i X",
                                           "/els", "/endi"));

TEST_F(MessageParser, EndsTheParseWithAHandlerThatThrows) {
    set_fatal_handler([](const char* message) { throw std::runtime_error(message); });
    EXPECT_THROW(parse("[s]\n/what\n"), std::runtime_error);
}

// Conditional blocks

TEST_F(MessageParser, TakesTheTrueBranchOnly) {
    EXPECT_THAT(entries("/if X\nA\n/else\nB\n/endif\nC\n"), ElementsAre("3:A", "7:C"));
    EXPECT_THAT(entries("/if Y\nA\n/else\nB\n/endif\nC\n"), ElementsAre("5:B", "7:C"));
    EXPECT_THAT(log_.errors(), IsEmpty());
}

TEST_F(MessageParser, SkipsHeadersOfAFalseBranch) {
    EXPECT_THAT(entries("/if Y\n[t]\nA\n/endif\nB\n"), ElementsAre("6:B"));
}

TEST_F(MessageParser, TurnsTheConditionAtEachElse) {
    EXPECT_THAT(entries("/if Y\nA\n/else\nB\n/else\nC\n/else\nD\n/else\nE\n/endif\nF\n"),
                ElementsAre("5:B", "9:D", "13:F"));
}

TEST_F(MessageParser, SkipsInnerBlocksWithoutLookingAtThem) {
    EXPECT_THAT(
        entries("/if Y\n/if Z == 1\n/else\nA\n/what\n/if\n/endif\n/endif\n/else\nB\n/endif\n"
                "C\n"),
        ElementsAre("11:B", "13:C"));
    EXPECT_THAT(log_.errors(), IsEmpty());
    EXPECT_THAT(log_.fatals(), IsEmpty());
}

TEST_F(MessageParser, StartsToCountInnerBlocksAnewAtEachSkip) {
    EXPECT_THAT(
        entries("/if Y\n/if a\n/endif\n/else\n/if X\nA\n/else\nB\n/endif\n/else\nC\n/endif\n"
                "D\n"),
        ElementsAre("7:A", "14:D"));
}

TEST_F(MessageParser, TestsSkippedLinesByTheirFirstCharacters) {
    EXPECT_THAT(entries("/if Y\n//if\n# /endif\n#/else\nA # /endif\n   /endif # x\nB\n"),
                ElementsAre("8:B"));
    EXPECT_THAT(entries("/if Y\n\t/elseif X\nB\n/endif\n"), ElementsAre("4:B"));
    EXPECT_THAT(entries("/if Y\n/ifdef\n/endiffoo\n/endif\nB\n"), ElementsAre("6:B"));
    EXPECT_THAT(log_.fatals(), IsEmpty());
}

TEST_F(MessageParser, TakesSevenOpenConditions) {
    std::string text;
    for (int i = 0; i < 7; ++i)
        text += "/if X\n";
    text += "A\n";
    for (int i = 0; i < 7; ++i)
        text += "/endif\n";
    EXPECT_THAT(entries(text), ElementsAre("9:A"));
    EXPECT_THAT(log_.fatals(), IsEmpty());
}

TEST_F(MessageParser, RefusesTheEighthOpenConditionWithItsTextUnchanged) {
    std::string text;
    for (int i = 0; i < 8; ++i)
        text += "/if X\n";
    EXPECT_THAT(entries(text + "A\n"), IsEmpty());
    EXPECT_THAT(log_.fatals(), ElementsAre(report(9, "too many nested conditions: %s"),
                                           report(-1, "'/if' without '/endif' at end of file."),
                                           report(0, "Error loading file.")));
}

TEST_F(MessageParser, RefusesAHundredOpenConditionsAtTheEighth) {
    std::string text;
    for (int i = 0; i < 100; ++i)
        text += "/if X\n";
    EXPECT_THAT(entries(text), IsEmpty());
    EXPECT_EQ(log_.fatals().size(), 3U);
}

TEST_F(MessageParser, CountsAHundredInnerBlocksOfASkippedOne) {
    std::string text = "/if Y\n";
    for (int i = 0; i < 100; ++i)
        text += "/if X\n";
    for (int i = 0; i < 100; ++i)
        text += "/endif\n";
    EXPECT_THAT(entries(text + "A\n/endif\nB\n"), ElementsAre("205:B"));
    EXPECT_THAT(log_.fatals(), IsEmpty());
}

TEST_F(MessageParser, GoesOnAfterAStrayElseOrEndif) {
    EXPECT_THAT(entries("/else\nA\n/endif\nB\n"), ElementsAre("3:A", "5:B"));
    EXPECT_THAT(log_.fatals(), ElementsAre(report(2, "'/else' without '/if'"),
                                           report(4, "'/endif' without '/if'")));
}

TEST_F(MessageParser, ReportsASkippedBlockThatIsNotClosedTwice) {
    EXPECT_THAT(entries("/if Y\nA\n\n"), IsEmpty());
    EXPECT_THAT(log_.fatals(), ElementsAre(report(4, "'/if' without '/endif'"),
                                           report(-1, "'/if' without '/endif' at end of file.")));
}

TEST_F(MessageParser, ReportsATrueBlockThatIsNotClosedOnce) {
    EXPECT_THAT(entries("/if X\nA\n"), ElementsAre("3:A"));
    EXPECT_THAT(log_.fatals(), ElementsAre(report(-1, "'/if' without '/endif' at end of file.")));
}

TEST_F(MessageParser, WarnsOfAnUndefinedVariableThatIsCompared) {
    EXPECT_THAT(entries("/if Y\nA\n/endif\n"), IsEmpty());
    EXPECT_THAT(log_.errors(), IsEmpty());
    EXPECT_THAT(entries("  /if (Y != 1)  # c\nA\n/endif\n"), IsEmpty());
    EXPECT_THAT(log_.errors(), ElementsAre("load_messages: file 'a.cfg' line 2, unknown variable : "
                                           "'/if (Y != 1)  '\n"));
    EXPECT_THAT(log_.fatals(), IsEmpty());
}

TEST_F(MessageParser, TreatsAnInvalidConditionAsFalse) {
    EXPECT_THAT(entries("/if (X = 1)\nA\n/else\nB\n/endif\n"), ElementsAre("5:B"));
    EXPECT_THAT(log_.fatals(), ElementsAre(report(2, "invalid condition: /if (X = 1)")));
}

// Lines and their lengths

TEST_F(MessageParser, CountsEveryLine) {
    EXPECT_THAT(entries("\n# c\n/if Y\nA\n\n/endif\n" + std::string(2000, 'x') + "\nB\n"),
                ElementsAre("8:" + std::string(1023, 'x'), "9:B"));
}

TEST_F(MessageParser, WarnsOfLinesOf1023CharactersAndMore) {
    for (std::size_t length = 1020; length <= 1030; ++length) {
        SCOPED_TRACE(length);
        log_.errors().clear();
        const std::string line(length, 'x');
        EXPECT_THAT(entries(line + "\nB\n"), ElementsAre("2:" + line.substr(0, 1023), "3:B"));
        if (length < 1023) {
            EXPECT_THAT(log_.errors(), IsEmpty());
        } else {
            EXPECT_THAT(log_.errors(), ElementsAre(report(2, "Input line too long")));
        }
    }
    EXPECT_THAT(log_.fatals(), IsEmpty());
}

TEST_F(MessageParser, WarnsOfLongLinesInASkippedBlockToo) {
    EXPECT_THAT(entries("/if Y\n" + std::string(3000, ' ') + "\n/endif\nB\n"), ElementsAre("5:B"));
    EXPECT_THAT(log_.errors(), ElementsAre(report(3, "Input line too long")));
}

TEST_F(MessageParser, CutsALongCommentWithoutLosingTheNextLine) {
    EXPECT_THAT(entries("A #" + std::string(5000, 'c') + "\nB\n"), ElementsAre("2:A ", "3:B"));
}

// Aborting

TEST_F(MessageParser, EndsIfTheSectionCallbackRefuses) {
    EXPECT_EQ(parse("[s]\nA\n", [](message_store*, const char*) { return -1; }), 0);
    EXPECT_THAT(taken, IsEmpty());
    EXPECT_THAT(log_.fatals(), ElementsAre(report(0, "Error loading file.")));
}

TEST_F(MessageParser, EndsIfTheEntryCallbackRefuses) {
    static int calls;
    calls = 0;
    EXPECT_EQ(parse("[s]\nA\nB\n", takeHeader,
                    [](message_store*, int, const char*, std::int32_t, int) { return ++calls; }),
              0);
    EXPECT_EQ(calls, 1);
    EXPECT_THAT(log_.fatals(), ElementsAre(report(0, "Error loading file.")));
}

TEST_F(MessageParser, ReportsTheOpenBlockFirstIfItIsAbortedInOne) {
    parse("/if X\n[s]\n", [](message_store*, const char*) { return -1; });
    EXPECT_THAT(log_.fatals(), ElementsAre(report(-1, "'/if' without '/endif' at end of file."),
                                           report(0, "Error loading file.")));
}

TEST_F(MessageParser, LetsCallbacksThrow) {
    EXPECT_THROW(
        parse("[s]\n", [](message_store*, const char*) -> int { throw std::runtime_error("no"); }),
        std::runtime_error);
    EXPECT_THAT(log_.fatals(), IsEmpty());
}

int appendHeader(message_store*, const char* name, void* context) {
    static_cast<std::vector<std::string>*>(context)->push_back(name);
    return 3;
}

int appendEntry(message_store*, int section, const char* line, std::int32_t, int number,
                void* context) {
    static_cast<std::vector<std::string>*>(context)->push_back(std::to_string(section) + ':' +
                                                               std::to_string(number) + ':' + line);
    return 0;
}

TEST_F(MessageParser, PassesTheContextToBothCallbacks) {
    std::vector<std::string> seen;
    TextLines lines("[a]\nb = c\n");
    EXPECT_EQ(load_messages(store_, lines, "a.cfg", appendHeader, appendEntry, &seen), 0);
    EXPECT_THAT(seen, ElementsAre("a", "3:2:b = c"));
}

TEST_F(MessageParser, NeedsBothCallbacksWithAContext) {
    std::vector<std::string> seen;
    TextLines lines("[a]\nb = c\n");
    EXPECT_EQ(load_messages(store_, lines, "a.cfg", nullptr, appendEntry, &seen), -1);
    EXPECT_EQ(load_messages(store_, lines, "a.cfg", appendHeader, nullptr, &seen), -1);
    EXPECT_TRUE(lines.untouched());
    EXPECT_THAT(seen, IsEmpty());
}

TEST_F(MessageParser, ReadsNothingWithoutAStoreOrACallback) {
    TextLines lines("[s]\nA\n");
    EXPECT_EQ(load_messages(nullptr, lines, "a.cfg", takeHeader, takeEntry), -1);
    EXPECT_EQ(load_messages(store_, lines, "a.cfg", nullptr, takeEntry), -1);
    EXPECT_EQ(load_messages(store_, lines, "a.cfg", takeHeader, nullptr), -1);
    EXPECT_TRUE(lines.untouched());
    EXPECT_THAT(log_.fatals(), IsEmpty());
}

TEST_F(MessageParser, TreatsAMissingFileNameAsAnEmptyOne) {
    TextLines lines("/endif\n[s]\n");
    EXPECT_EQ(load_messages(store_, lines, nullptr, takeHeader, takeEntry), 0);
    EXPECT_THAT(log_.fatals(),
                ElementsAre("load_messages: file '', line 1 : '/endif' without '/if'"));
    EXPECT_THAT(taken, ElementsAre("[s]"));
}

TEST_F(MessageParser, LetsACallbackParseAnotherText) {
    parse("[a]\n[b]\n", [](message_store* store, const char* name) {
        TextLines inner("[x]\nA = 1\n");
        taken.push_back(name);
        return load_messages(store, inner, "inner.cfg", takeHeader, takeEntry);
    });
    EXPECT_THAT(taken, ElementsAre("a", "[x]", "2:A = 1", "b", "[x]", "2:A = 1"));
}

TEST_F(MessageParser, TreatsWhatFollowsTheKeywordDirectlyAsTheCondition) {
    EXPECT_THAT(entries("/ifX\nA\n/endif\nB\n"), ElementsAre("3:A", "5:B"));
    EXPECT_THAT(entries("/if(X)\nA\n/endif\nB\n"), ElementsAre("3:A", "5:B"));
    EXPECT_THAT(entries("/ifXX\nA\n/endif\nB\n"), ElementsAre("5:B"));
    EXPECT_THAT(log_.fatals(), IsEmpty());
}

TEST_F(MessageParser, TreatsTheBeginningOfAKeywordAsNothingInASkippedBlock) {
    EXPECT_THAT(entries("/if Y\n/i X\n/els\nA\n/endi\nB\n/endif\nC\n"), ElementsAre("9:C"));
    EXPECT_THAT(log_.fatals(), IsEmpty());
}

}  // namespace
}  // namespace trv
