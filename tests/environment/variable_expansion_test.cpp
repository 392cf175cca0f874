#include <tests/common/channel_log.h>
#include <tests/common/scoped_variable.h>
#include <tests/environment/configured_store.h>
#include <trvfiles/environment/variable_expansion.h>
#include <trvfiles/environment/variables.h>
#include <trvfiles/environment/work_zone.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace trv {
namespace {

using testing::ChannelLog;
using testing::ConfiguredStore;
using ::testing::Contains;
using ::testing::ElementsAre;
using testing::ScopedVariable;

struct Outcome {
    int code;
    std::string text;
    bool operator==(const Outcome& other) const { return code == other.code && text == other.text; }
};

std::ostream& operator<<(std::ostream& stream, const Outcome& outcome) {
    return stream << outcome.code << " \"" << outcome.text << '"';
}

Outcome expanded(const std::string& source) {
    std::string text = "left over";
    const int code = expand_variables(source, &text);
    return {code, text};
}

Outcome expandedPath(const std::string& source) {
    std::string text = "left over";
    const int code = expand_path(source, &text);
    return {code, text};
}

class VariableExpansion : public ::testing::Test {
protected:
    ScopedVariable noNullText_{"TRVNULL", nullptr};
    ConfiguredStore store_;
};

TEST_F(VariableExpansion, CopiesTextWithoutMarkers) {
    EXPECT_EQ((Outcome{0, "a/b\\c d{}()"}), expanded("a/b\\c d{}()"));
    EXPECT_EQ((Outcome{0, ""}), expanded(""));
}

TEST_F(VariableExpansion, ReplacesAReferenceByItsValue) {
    store_.variable("A = x y");
    store_.path("L = d;e");
    EXPECT_EQ((Outcome{0, "<x y>"}), expanded("<$A>"));
    EXPECT_EQ((Outcome{0, "<d;e>"}), expanded("<?L>"));
}

TEST_F(VariableExpansion, TakesADoubledMarkerForOneCharacter) {
    store_.variable("HOME = wrong");
    EXPECT_EQ((Outcome{0, "$HOME"}), expanded("$$HOME"));
    EXPECT_EQ((Outcome{0, "?"}), expanded("??"));
    EXPECT_EQ((Outcome{0, "$$"}), expanded("$$$$"));
    EXPECT_EQ((Outcome{0, "a?.b"}), expanded("a??.b"));
}

TEST_F(VariableExpansion, TakesTwoDifferentMarkersForTwoReferences) {
    ScopedVariable path("PATH", "search");
    store_.variable("= empty");
    store_.variable("A = a");
    store_.path("L = l");
    EXPECT_EQ((Outcome{0, "emptyl"}), expanded("$?L"));
    EXPECT_EQ((Outcome{0, "searcha"}), expanded("?$A"));
}

TEST_F(VariableExpansion, LooksUpTheEmptyNameForALoneMarker) {
    EXPECT_EQ((Outcome{-43, "a"}), expanded("a$"));
    EXPECT_EQ((Outcome{-43, "a b"}), expanded("a$ b"));
    EXPECT_EQ((Outcome{-43, "ab"}), expanded("a$()b"));
    store_.variable("= empty");
    EXPECT_EQ((Outcome{0, "aempty"}), expanded("a$"));
    EXPECT_EQ((Outcome{0, "aemptyb"}), expanded("a${}b"));
}

TEST_F(VariableExpansion, PutsTheSearchPathOfTheProcessForALoneQuestionMark) {
    ScopedVariable path("PATH", "/bin:$A");
    store_.variable("A = x");
    EXPECT_EQ((Outcome{0, "what/bin:x"}), expanded("what?"));
}

TEST_F(VariableExpansion, EndsANameAtTheFirstOtherCharacter) {
    const ScopedVariable home("HOME", "h");
    store_.variable("A_z09 = n");
    EXPECT_EQ((Outcome{0, "h/bin"}), expanded("$HOME/bin"));
    EXPECT_EQ((Outcome{0, "n-"}), expanded("$A_z09-"));
    EXPECT_EQ((Outcome{0, "h\xC3\xA9"}), expanded("$HOME\xC3\xA9"));
    EXPECT_EQ((Outcome{0, "hh"}), expanded("$HOME$HOME"));
}

TEST_F(VariableExpansion, ReadsABracketedNameToTheFirstCloser) {
    store_.variable("MY VAR = v");
    store_.variable("A(B = one");
    store_.variable("A$B = two");
    store_.variable("A{B = three");
    EXPECT_EQ((Outcome{0, "vx"}), expanded("$(MY VAR)x"));
    EXPECT_EQ((Outcome{0, "one"}), expanded("${A(B}"));
    EXPECT_EQ((Outcome{0, "two"}), expanded("$(A$B)"));
    EXPECT_EQ((Outcome{0, "three)"}), expanded("$(A{B))"));
}

TEST_F(VariableExpansion, RefusesABracketedNameWithoutItsCloser) {
    store_.variable("HOME = h");
    EXPECT_EQ((Outcome{-31, ""}), expanded("$(HOME"));
    EXPECT_EQ((Outcome{-31, ""}), expanded("a${HOME)b"));
    EXPECT_EQ((Outcome{-31, ""}), expanded("$HOME$(HOME}"));
    EXPECT_EQ((Outcome{-31, ""}), expanded("?("));
    store_.variable("BAD = $(HOME");
    EXPECT_EQ((Outcome{-31, ""}), expanded("$HOME $BAD"));
}

TEST_F(VariableExpansion, AsksTheProcessFirstAndThenTheConfiguration) {
    store_.variable("TRV_TEST_A = configured");
    EXPECT_EQ((Outcome{0, "configured"}), expanded("$TRV_TEST_A"));
    EXPECT_EQ((Outcome{0, "configured"}), expanded("$trv_test_a"));
    ScopedVariable a("TRV_TEST_A", "process");
    EXPECT_EQ((Outcome{0, "process"}), expanded("$TRV_TEST_A"));
}

TEST_F(VariableExpansion, FindsAPathVariableUnderItsNameAndPath) {
    store_.path("TRV_TEST_L = configured");
    store_.variable("ONLYVAR = x");
    EXPECT_EQ((Outcome{0, "configured"}), expanded("?TRV_TEST_L"));
    EXPECT_EQ((Outcome{-43, ""}), expanded("?ONLYVAR"));
    ScopedVariable list("TRV_TEST_LPATH", "process");
    EXPECT_EQ((Outcome{0, "process"}), expanded("?TRV_TEST_L"));
}

TEST_F(VariableExpansion, ExpandsAValueThatHoldsAMarker) {
    store_.variable("OTHER = o");
    store_.variable("A = <$(OTHER)>");
    store_.variable("B = 1$$2");
    store_.variable("C = $A$A");
    EXPECT_EQ((Outcome{0, "<o>"}), expanded("$A"));
    EXPECT_EQ((Outcome{0, "1$2"}), expanded("$B"));
    EXPECT_EQ((Outcome{0, "<o><o>"}), expanded("$C"));
    ScopedVariable path("PATH", "p");
    store_.variable("D = why?");
    EXPECT_EQ((Outcome{0, "whyp"}), expanded("$D"));
}

TEST_F(VariableExpansion, ReadsNoNameAcrossTheEndOfAValue) {
    store_.variable("HALF = a$");
    store_.variable("B = wrong");
    store_.variable("OPEN = $(");
    EXPECT_EQ((Outcome{-43, "aB"}), expanded("$(HALF)B"));
    EXPECT_EQ((Outcome{-31, ""}), expanded("$(OPEN)B)"));
    store_.variable("DOLLAR = $$");
    EXPECT_EQ((Outcome{0, "$B"}), expanded("$(DOLLAR)B"));
}

TEST_F(VariableExpansion, ReplacesAnUndefinedReferenceByNothingWithoutANullText) {
    EXPECT_EQ((Outcome{-43, "ab"}), expanded("a$(UNDEFINED_X)b"));
    EXPECT_EQ((Outcome{-43, "ab"}), expanded("a?(UNDEFINED_X)b"));
}

TEST_F(VariableExpansion, PutsTheNameIntoTheNullText) {
    store_.variable("TRVNULL = <$>");
    EXPECT_EQ((Outcome{-43, "a<X Y>b"}), expanded("a$(X Y)b"));
    EXPECT_EQ((Outcome{-43, "<L>"}), expanded("?L"));
}

TEST_F(VariableExpansion, TakesANullTextWithoutADollarAsItStands) {
    store_.variable("TRVNULL = none");
    EXPECT_EQ((Outcome{-43, "none"}), expanded("$X_UNDEFINED"));
}

TEST_F(VariableExpansion, PatchesTheNullTextAndNeverExpandsIt) {
    store_.variable("A = wrong");
    store_.variable("TRVNULL = $-$A");
    EXPECT_EQ((Outcome{-43, "Y-$A"}), expanded("$Y"));
    store_.variable("TRVNULL = $TRVNULL");
    EXPECT_EQ((Outcome{-43, "YTRVNULL"}), expanded("$Y"));
}

TEST_F(VariableExpansion, ExpandsTheNullTextWhereItIsReferredTo) {
    store_.variable("TRVNULL = <$>");
    EXPECT_EQ((Outcome{-43, "<<>>"}), expanded("$TRVNULL"));
    store_.variable("TRVNULL = $TRVNULL");
    EXPECT_EQ((Outcome{-42, ""}), expanded("$TRVNULL"));
}

TEST_F(VariableExpansion, StaysUndefinedWhateverFollows) {
    store_.variable("A = a");
    store_.variable("INNER = $UNDEFINED_X$A");
    EXPECT_EQ((Outcome{-43, "a"}), expanded("$UNDEFINED_X$A"));
    EXPECT_EQ((Outcome{-43, "aa"}), expanded("$INNER$A"));
}

TEST_F(VariableExpansion, EndsAtAReferenceInsideItsOwnValue) {
    store_.variable("A = $A;x");
    store_.variable("B = $C");
    store_.variable("C = y$B");
    EXPECT_EQ((Outcome{-42, ""}), expanded("a$A"));
    EXPECT_EQ((Outcome{-42, ""}), expanded("$B"));
    EXPECT_EQ((Outcome{-42, ""}), expanded("$C"));
    store_.path("P = x?P");
    EXPECT_EQ((Outcome{-42, ""}), expanded("?P"));
}

TEST_F(VariableExpansion, TellsAReferenceByItsMarkerAndItsName) {
    store_.variable("A = v?A");
    store_.path("A = p");
    EXPECT_EQ((Outcome{0, "vp"}), expanded("$A"));
    store_.variable("B = $b");
    EXPECT_EQ((Outcome{-42, ""}), expanded("$B"));
}

TEST_F(VariableExpansion, ExpandsTenThousandVariablesInsideEachOther) {
    for (int i = 0; i < 10000; ++i) {
        store_.variable("V" + std::to_string(i) + " = $V" + std::to_string(i + 1));
    }
    store_.variable("V10000 = end");
    EXPECT_EQ((Outcome{0, "<end>"}), expanded("<$V0>"));
}

TEST_F(VariableExpansion, EndsWhenReferencesDouble) {
    for (int i = 0; i < 60; ++i) {
        const std::string next = "$D" + std::to_string(i + 1);
        store_.variable("D" + std::to_string(i) + " = " + next + next);
    }
    EXPECT_EQ((Outcome{-42, ""}), expanded("$D0"));
    store_.variable("D60 = text");
    EXPECT_EQ((Outcome{-42, ""}), expanded("$D0"));
}

TEST_F(VariableExpansion, ReplacesAMillionReferencesAndNoMore) {
    store_.variable("A = x");
    std::string source;
    for (int i = 0; i < 1000000; ++i)
        source += "$A";
    EXPECT_EQ((Outcome{0, std::string(1000000, 'x')}), expanded(source));
    EXPECT_EQ((Outcome{-42, ""}), expanded(source + "$A"));
    EXPECT_EQ(0, expanded(source + "$$").code);
}

TEST_F(VariableExpansion, GivesAResultOfSixteenMebibytesAndNoMore) {
    std::string longest((std::size_t{16} << 20) - 1, 'x');
    store_.variable("A = y");
    EXPECT_EQ(0, expanded(longest + "$A").code);
    EXPECT_EQ((Outcome{-42, ""}), expanded(longest + "$A$A"));
    EXPECT_EQ((Outcome{-42, ""}), expanded(longest + "$A "));
}

// Whatever the room that a result has grown out of when a reference or the end comes.
TEST_F(VariableExpansion, PutsTogetherResultsOfAnyLength) {
    store_.variable("A = xy");
    store_.variable("B = <$A>");
    for (std::size_t length = 0; length < 600; ++length) {
        const std::string text(length, 't');
        store_.variable("LONG = " + text + "$A");
        EXPECT_EQ((Outcome{0, text}), expanded(text));
        EXPECT_EQ((Outcome{0, text + "xy"}), expanded(text + "$A"));
        EXPECT_EQ((Outcome{0, "xy" + text + "<xy>" + text}),
                  expanded("${A}" + text + "${B}" + text));
        EXPECT_EQ((Outcome{0, text + "$" + text + "xy" + text}),
                  expanded(text + "$$${LONG}" + text));
        EXPECT_EQ((Outcome{EXP_UNDEFINED, text + text}), expanded(text + "${NONE}" + text));
    }
}

TEST_F(VariableExpansion, HoldsSixteenMebibytesOfOpenValuesAndNoMore) {
    const std::string behind((std::size_t{1} << 20) - std::string_view("$V10").size(), '-');
    for (int i = 10; i < 26; ++i)
        store_.variable("V" + std::to_string(i) + " = $V" + std::to_string(i + 1) + behind);
    store_.variable("V26 = y");
    EXPECT_EQ(1 + 16 * behind.size(), expanded("$V10").text.size());
    store_.variable("V26 = $V27");
    store_.variable("V27 = y");
    EXPECT_EQ((Outcome{-42, ""}), expanded("$V10"));
    store_.variable("V26 = y");
    store_.variable("V25 = $V26" + behind + "-");
    EXPECT_EQ((Outcome{-42, ""}), expanded("$V10"));
    store_.variable("V10 = $V11" + behind.substr(1));
    EXPECT_EQ(1 + 16 * behind.size(), expanded("$V10").text.size());
}

TEST_F(VariableExpansion, EndsANameBeforeAnyOtherCharacter) {
    store_.variable("A = a");
    for (const std::string next :
         {"{", "|", "}", "~", "@", "[", "`", "/", ":", "-", "\x01", "\x7F"})
        EXPECT_EQ((Outcome{0, "a" + next + "b"}), expanded("$A" + next + "b")) << next;
}

TEST_F(VariableExpansion, CountsNoValueThatIsDoneAgainstTheLimit) {
    store_.variable("LONG = $(" + std::string(std::size_t{1} << 20, 'x') + ")");
    std::string source;
    for (int i = 0; i < 20; ++i)
        source += "$LONG";
    EXPECT_EQ((Outcome{-43, ""}), expanded(source));
}

TEST_F(VariableExpansion, RefusesWhatIsMissing) {
    std::string text = "left over";
    EXPECT_EQ(-44, expand_variables(static_cast<const char*>(nullptr), &text));
    EXPECT_EQ("", text);
    text = "left over";
    EXPECT_EQ(-44, expand_path(static_cast<const char*>(nullptr), &text));
    EXPECT_EQ("", text);
    EXPECT_EQ(-44, expand_variables("a", nullptr));
    EXPECT_EQ(-44, expand_path("a", nullptr));
    EXPECT_EQ(-44, expand_variables(static_cast<const char*>(nullptr), nullptr));
}

TEST_F(VariableExpansion, MayWriteOverItsSource) {
    store_.variable("A = a long value, longer than a short string");
    std::string text = "$A, $A";
    EXPECT_EQ(0, expand_variables(text.c_str(), &text));
    EXPECT_EQ("a long value, longer than a short string, a long value, longer than a short string",
              text);
    text = "$A/x";
    EXPECT_EQ(0, expand_path(text, &text));
    EXPECT_EQ("a long value, longer than a short string\\x", text);
}

TEST_F(VariableExpansion, EndsAStringAtItsFirstZeroByte) {
    EXPECT_EQ((Outcome{0, "ab"}), expanded(std::string("ab\0$(cd", 7)));
}

TEST_F(VariableExpansion, JoinsAListWithSemicolons) {
    store_.variable("A = a/b");
    std::string text;
    EXPECT_EQ(0, expand_variables(std::vector<std::string>{"$A", "", "c"}, &text));
    EXPECT_EQ("a/b;;c", text);
    EXPECT_EQ(0, expand_path(std::vector<std::string>{"$A", "c"}, &text));
    EXPECT_EQ("a\\b;c", text);
    EXPECT_EQ(0, expand_variables(std::vector<std::string>{"one"}, &text));
    EXPECT_EQ("one", text);
    EXPECT_EQ(0, expand_variables(std::vector<std::string>{}, &text));
    EXPECT_EQ("", text);
}

TEST_F(VariableExpansion, ReportsNoErrorThroughItsStringForms) {
    ChannelLog log;
    std::string text;
    EXPECT_EQ(-31, expand_variables("$(A", &text));
    EXPECT_EQ(-31, expand_path("$(A", &text));
    EXPECT_EQ(-44, expand_path(static_cast<const char*>(nullptr), &text));
    EXPECT_THAT(log.errors(), ElementsAre());
}

TEST_F(VariableExpansion, TracesEachLookupWithItsOrigin) {
    ScopedVariable process("TRV_TEST_E", "v");
    ScopedVariable list("TRV_TEST_PPATH", "d;e");
    store_.variable("F = v", "f", 3);
    store_.variable("S = v");
    store_.path("L = l", "g", 4);
    ChannelLog log;
    expanded("$TRV_TEST_E $F $S ?TRV_TEST_P ?L $UNDEFINED_X ?UNDEFINED_X");
    EXPECT_THAT(log.traces(),
                ElementsAre("TRV_TEST_E = 'v' from environment", "F = 'v' from 'f' line 3",
                            "S = 'v' set by program",
                            "TRV_TEST_P = 'd;e' from environment 'TRV_TEST_PPATH'",
                            "L = 'l' from 'g' line 4", "UNDEFINED_X = <undefined variable>",
                            "UNDEFINED_X = <undefined path>"));
}

TEST_F(VariableExpansion, TracesTheRawValueBeforeWhatIsInIt) {
    store_.variable("A = <$B>", "f", 1);
    store_.variable("B = b", "f", 2);
    ChannelLog log;
    expanded("$A");
    EXPECT_THAT(log.traces(), ElementsAre("A = '<$B>' from 'f' line 1", "B = 'b' from 'f' line 2"));
}

TEST_F(VariableExpansion, TracesNothingForTheNullText) {
    store_.variable("TRVNULL = <$>");
    ChannelLog log;
    expanded("$X_UNDEFINED");
    EXPECT_THAT(log.traces(), ElementsAre("X_UNDEFINED = <undefined variable>"));
}

TEST_F(VariableExpansion, TracesNoOriginOfAValueThatIsPutTogether) {
    store_.variable("A = 1", "f", 1);
    store_.variable("A = +;x", "g", 2);
    ChannelLog log;
    EXPECT_EQ((Outcome{0, "1;x"}), expanded("$A"));
    EXPECT_THAT(log.traces(), Contains("A = '1;x' "));
}

TEST_F(VariableExpansion, TracesOriginsWithLongFileNamesInFull) {
    const std::string file(3000, 'f');
    store_.variable("A = v", file.c_str(), 7);
    ChannelLog log;
    expanded("$A");
    EXPECT_THAT(log.traces(), ElementsAre("A = 'v' from '" + file + "' line 7"));
}

TEST_F(VariableExpansion, TracesFromTheLookupInWhichTheZoneHookSetsAHandler) {
    static std::vector<std::string> lines;
    lines.clear();
    const ScopedVariable zone("TRVZONE", "late");
    store_.variable("A = a");
    const zone_hook earlier = set_zone_hook(
        [] { set_trace_handler([](const char* message) { lines.emplace_back(message); }); });
    EXPECT_EQ((Outcome{0, "alatea"}), expanded("$A$TRVZONE$A"));
    set_zone_hook(earlier);
    set_trace_handler(nullptr);
    EXPECT_THAT(lines, ElementsAre("TRVZONE = 'late' from environment", "A = 'a' set by program"));
}

TEST_F(VariableExpansion, TracesFromTheLookupInWhichTheZoneHookSwitchesVerboseModeOn) {
    const ScopedVariable quiet("TRV_TRVFILES_VERBOSE", nullptr);
    const ScopedVariable zone("TRVZONE", "late");
    store_.variable("A = a");
    const zone_hook earlier =
        set_zone_hook([] { platform::set_environment("TRV_TRVFILES_VERBOSE", "1"); });
    ::testing::internal::CaptureStdout();
    EXPECT_EQ((Outcome{0, "alatea"}), expanded("$A$TRVZONE$A"));
    set_zone_hook(earlier);
    EXPECT_EQ("TRVZONE = 'late' from environment\nA = 'a' set by program\n",
              ::testing::internal::GetCapturedStdout());
}

TEST_F(VariableExpansion, KeepsItsValueWhileATraceHandlerLooksUp) {
    store_.variable("A = 1");
    store_.variable("A = +;x");
    store_.variable("B = 2");
    store_.variable("B = +;y");
    const message_handler earlier = set_trace_handler([](const char* message) {
        if (std::string(message).rfind("A = ", 0) == 0) get_variable("B");
    });
    EXPECT_EQ((Outcome{0, "1;x"}), expanded("$A"));
    set_trace_handler(earlier);
}

TEST_F(VariableExpansion, MayExpandInsideATraceHandler) {
    store_.variable("A = $B");
    store_.variable("B = b");
    static std::string seen;
    const message_handler earlier = set_trace_handler([](const char* message) {
        if (std::string(message).rfind("A = ", 0) == 0 && seen.empty()) {
            seen = "running";
            expand_variables("<$A>", &seen);
        }
    });
    EXPECT_EQ((Outcome{0, "b"}), expanded("$A"));
    set_trace_handler(earlier);
    EXPECT_EQ("<b>", seen);
}

TEST_F(VariableExpansion, LetsATraceHandlerThrow) {
    store_.variable("A = $B");
    store_.variable("B = b");
    const message_handler earlier =
        set_trace_handler([](const char*) { throw std::runtime_error("stop"); });
    std::string text;
    EXPECT_THROW(expand_variables("$A", &text), std::runtime_error);
    set_trace_handler(earlier);
    EXPECT_EQ((Outcome{0, "b"}), expanded("$A"));
}

TEST_F(VariableExpansion, CallsEveryCodeButTwoAnError) {
    EXPECT_FALSE(is_expand_error(0));
    EXPECT_FALSE(is_expand_error(-43));
    for (const int code : {-21, -31, -32, -41, -42, -44, 1, -1})
        EXPECT_TRUE(is_expand_error(code)) << code;
}

TEST_F(VariableExpansion, NormalizesTheResultOfAPath) {
    store_.variable("D = /a//");
    EXPECT_EQ((Outcome{0, "c:\\a\\b\\"}), expandedPath("c:/a//./b/"));
    EXPECT_EQ((Outcome{0, "\\a\\b"}), expandedPath("$D/b"));
    EXPECT_EQ((Outcome{-43, "a\\b"}), expandedPath("a/$UNDEFINED_X/b"));
    EXPECT_EQ((Outcome{-31, ""}), expandedPath("a/$(UNDEFINED_X/b"));
}

TEST(SeparatorNormalization, TurnsEachRunIntoOneBackslash) {
    EXPECT_EQ("a\\b", normalize_separators("a//b"));
    EXPECT_EQ("a\\b", normalize_separators("a/\\/b"));
    EXPECT_EQ("\\srv\\x", normalize_separators("\\\\srv\\x"));
    EXPECT_EQ("c:\\a\\b\\", normalize_separators("c:/a//./b/"));
}

TEST(SeparatorNormalization, DropsADotBetweenSeparators) {
    EXPECT_EQ("a\\b", normalize_separators("a/./b"));
    EXPECT_EQ("a\\b", normalize_separators("a\\.\\.\\b"));
    EXPECT_EQ("\\a", normalize_separators("/./a"));
    EXPECT_EQ("a\\", normalize_separators("a/./"));
    EXPECT_EQ("a\\b", normalize_separators("a/././/.//b"));
}

TEST(SeparatorNormalization, KeepsEveryOtherDot) {
    EXPECT_EQ("a\\.b", normalize_separators("a/.b"));
    EXPECT_EQ("a\\..\\b", normalize_separators("a/../b"));
    EXPECT_EQ("a\\.", normalize_separators("a/."));
    EXPECT_EQ("a.\\b", normalize_separators("a./b"));
    EXPECT_EQ("..\\b", normalize_separators("../b"));
    EXPECT_EQ(".\\a", normalize_separators("./a"));
    EXPECT_EQ(".\\a", normalize_separators("././a"));
    EXPECT_EQ("a\\..", normalize_separators("a/./.."));
}

TEST(SeparatorNormalization, ChangesNothingElse) {
    EXPECT_EQ("", normalize_separators(""));
    EXPECT_EQ(".", normalize_separators("."));
    EXPECT_EQ("..", normalize_separators(".."));
    EXPECT_EQ("C:aB c", normalize_separators("C:aB c"));
    EXPECT_EQ("\\", normalize_separators("/"));
}

}  // namespace
}  // namespace trv
