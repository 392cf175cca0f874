#include <tests/common/breakpoint.h>
#include <tests/common/channel_log.h>
#include <tests/common/death_test.h>
#include <tests/common/scoped_variable.h>
#include <tests/environment/configured_store.h>
#include <trvfiles/environment/variable_expansion.h>
#include <trvfiles/environment/variables.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <string>

namespace trv {
namespace {

using testing::ChannelLog;
using testing::ConfiguredStore;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::ScopedVariable;

class ExpansionBuffers : public ::testing::Test {
protected:
    ScopedVariable noNullText_{"TRVNULL", nullptr};
    ScopedVariable noWatch_{"TRV_EXPAND_MIN_BUFFER_SIZE", nullptr};
    ScopedVariable noCrash_{"TRV_BUFFER_TOO_SMALL_OPTION", nullptr};
    ConfiguredStore store_;
    ChannelLog log_;
};

TEST_F(ExpansionBuffers, TakeANormalizedPath) {
    store_.variable("A = a/b");
    char buffer[32];
    EXPECT_EQ(0, _Expand("$A//c", buffer, sizeof buffer));
    EXPECT_STREQ("a\\b\\c", buffer);
    EXPECT_THAT(log_.errors(), IsEmpty());
}

TEST_F(ExpansionBuffers, NeedOneByteMoreThanTheResult) {
    char buffer[12] = "untouched";
    EXPECT_EQ(-32, _Expand("0123456789", buffer, 10));
    EXPECT_STREQ("untouched", buffer);
    EXPECT_EQ(0, _Expand("0123456789", buffer, 11));
    EXPECT_STREQ("0123456789", buffer);
    EXPECT_EQ(0, _Expand("", buffer, 1));
    EXPECT_STREQ("", buffer);
}

TEST_F(ExpansionBuffers, OfNoSizeTakeNothing) {
    char buffer[8] = "same";
    EXPECT_EQ(-32, _Expand("", buffer, 0));
    EXPECT_EQ(-32, _Expand("abc", buffer, -1));
    EXPECT_EQ(-32, _Expand("abc", buffer, std::numeric_limits<std::int32_t>::min()));
    std::int32_t code = 1;
    _ExpandFixed("abc", 3, buffer, 0, &code);
    EXPECT_EQ(-32, code);
    _ExpandTextFixed("abc", 3, buffer, -5, &code);
    EXPECT_EQ(-32, code);
    _ExpandFixed("   ", 3, buffer, -1, &code);
    EXPECT_EQ(-32, code);
    _ExpandTextFixed("", 0, buffer, std::numeric_limits<std::int32_t>::min(), &code);
    EXPECT_EQ(-32, code);
    EXPECT_STREQ("same", buffer);
    EXPECT_THAT(log_.errors(),
                ElementsAre("_Expand(\"\") = error -32 - buffer size 0 too small",
                            "_Expand(\"abc\") = error -32 - buffer size -1 too small",
                            "_Expand(\"abc\") = error -32 - buffer size -2147483648 too small",
                            "_Expand(\"abc\") = error -32 - buffer size 0 too small",
                            "_Expand(\"abc\") = error -32 - buffer size -5 too small",
                            "_Expand(\"\") = error -32 - buffer size -1 too small",
                            "_Expand(\"\") = error -32 - buffer size -2147483648 too small"));
}

TEST_F(ExpansionBuffers, TakeAnEmptyResultInAFieldOfNoWidth) {
    char field[5] = "same";
    std::int32_t code = 1;
    _ExpandFixed("   ", 3, field, 0, &code);
    EXPECT_EQ(0, code);
    code = 1;
    _ExpandTextFixed("   ", 3, field, 0, &code);
    EXPECT_EQ(0, code);
    code = 1;
    _ExpandFixed(field, 0, &code);
    EXPECT_EQ(0, code);
    code = 1;
    _ExpandTextFixed(field, 0, &code);
    EXPECT_EQ(0, code);
    _ExpandFixed("$UNDEFINED_X", 12, field, 0, &code);
    EXPECT_EQ(-43, code);
    _ExpandTextFixed("   ", 3, nullptr, 0, &code);
    EXPECT_EQ(-44, code);
    EXPECT_STREQ("same", field);
    EXPECT_THAT(log_.errors(), ElementsAre("_Expand(\"\") = error -44 - invalid argument"));
}

TEST_F(ExpansionBuffers, TakeAResultWithUndefinedReferencesWithoutAReport) {
    char buffer[8] = "left";
    EXPECT_EQ(-43, _Expand("a$UNDEFINED_X/b", buffer, sizeof buffer));
    EXPECT_STREQ("a\\b", buffer);
    std::int32_t code = 0;
    _ExpandFixed("a$UNDEFINED_X/b", 15, buffer, 5, &code);
    EXPECT_EQ(-43, code);
    EXPECT_EQ("a\\b  ", std::string(buffer, 5));
    EXPECT_EQ(-32, _Expand("abc$UNDEFINED_X", buffer, 3));
    EXPECT_THAT(log_.errors(),
                ElementsAre("_Expand(\"abc$UNDEFINED_X\") = error -32 - buffer size 3 too small"));
}

TEST_F(ExpansionBuffers, ReportEachErrorWithItsSource) {
    store_.variable("A = $A");
    char buffer[64] = "untouched";
    EXPECT_EQ(-31, _Expand("$(A", buffer, sizeof buffer));
    EXPECT_EQ(-32, _Expand("abc", buffer, 3));
    EXPECT_EQ(-42, _Expand("$A", buffer, sizeof buffer));
    EXPECT_EQ(-44, _Expand(nullptr, buffer, sizeof buffer));
    EXPECT_EQ(-44, _Expand("abc", nullptr, 64));
    EXPECT_EQ(-44, _ExpandInPlace(nullptr, 64));
    EXPECT_EQ(-44, _ExpandText(nullptr, 64));
    EXPECT_STREQ("untouched", buffer);
    EXPECT_THAT(log_.errors(), ElementsAre("_Expand(\"$(A\") = error -31 - syntax error",
                                           "_Expand(\"abc\") = error -32 - buffer size 3 too small",
                                           "_Expand(\"$A\") = error -42",
                                           "_Expand(<nullptr>) = error -44 - invalid argument",
                                           "_Expand(\"abc\") = error -44 - invalid argument",
                                           "_Expand(<nullptr>) = error -44 - invalid argument",
                                           "_Expand(<nullptr>) = error -44 - invalid argument"));
}

TEST_F(ExpansionBuffers, ReportTheTrimmedSourceOfAField) {
    char field[8] = {'u', 'n', 't', 'o', 'u', 'c', 'h', 'd'};
    std::int32_t code = 0;
    _ExpandFixed("$(A   ", 6, field, 8, &code);
    EXPECT_EQ(-31, code);
    _ExpandTextFixed("abc \t ", 6, field, 2, &code);
    EXPECT_EQ(-32, code);
    _ExpandFixed(nullptr, 6, field, 8, &code);
    EXPECT_EQ(-44, code);
    _ExpandFixed("abc ", 4, nullptr, 8, &code);
    EXPECT_EQ(-44, code);
    EXPECT_EQ("untouchd", std::string(field, 8));
    EXPECT_THAT(log_.errors(), ElementsAre("_Expand(\"$(A\") = error -31 - syntax error",
                                           "_Expand(\"abc\") = error -32 - buffer size 2 too small",
                                           "_Expand(<nullptr>) = error -44 - invalid argument",
                                           "_Expand(\"abc\") = error -44 - invalid argument"));
}

TEST_F(ExpansionBuffers, NeverTakePercentSignsForAFormat) {
    char buffer[8];
    _Expand("$(%s%n", buffer, sizeof buffer);
    EXPECT_THAT(log_.errors(), ElementsAre("_Expand(\"$(%s%n\") = error -31 - syntax error"));
}

TEST_F(ExpansionBuffers, MayBeSourceAndDestination) {
    store_.variable("A = a/b/c/d");
    char buffer[32] = "$A/$A";
    EXPECT_EQ(0, _ExpandInPlace(buffer, sizeof buffer));
    EXPECT_STREQ("a\\b\\c\\d\\a\\b\\c\\d", buffer);
    char small[5] = "$A";
    EXPECT_EQ(-32, _ExpandInPlace(small, sizeof small));
    EXPECT_STREQ("$A", small);
}

TEST_F(ExpansionBuffers, MayOverlap) {
    char buffer[32] = "x0123456789";
    EXPECT_EQ(0, _Expand(buffer + 1, buffer, sizeof buffer));
    EXPECT_STREQ("0123456789", buffer);
    EXPECT_EQ(0, _Expand(buffer, buffer + 1, sizeof buffer - 1));
    EXPECT_STREQ("00123456789", buffer);
}

TEST_F(ExpansionBuffers, KeepSeparatorsInTextForms) {
    store_.variable("A = a/b");
    char buffer[16] = "$A//./c";
    EXPECT_EQ(0, _ExpandText(buffer, sizeof buffer));
    EXPECT_STREQ("a/b//./c", buffer);
    std::int32_t code = 1;
    char field[12];
    _ExpandTextFixed("$A//c  ", 7, field, 12, &code);
    EXPECT_EQ(0, code);
    EXPECT_EQ("a/b//c      ", std::string(field, 12));
    std::memcpy(field, "$A//$A      ", 12);
    _ExpandTextFixed(field, 12, &code);
    EXPECT_EQ(0, code);
    EXPECT_EQ("a/b//a/b    ", std::string(field, 12));
}

TEST_F(ExpansionBuffers, FillAFieldWithBlanksAndNoTerminator) {
    store_.variable("A = a/b");
    std::int32_t code = 1;
    char field[9] = {'#', '#', '#', '#', '#', '#', '#', '#', '#'};
    _ExpandFixed("$A/c   ", 7, field, 8, &code);
    EXPECT_EQ(0, code);
    EXPECT_EQ("a\\b\\c   #", std::string(field, 9));
    _ExpandFixed(field, 8, &code);
    EXPECT_EQ(0, code);
    EXPECT_EQ("a\\b\\c   #", std::string(field, 9));
}

TEST_F(ExpansionBuffers, TakeAResultThatFillsAField) {
    std::int32_t code = 1;
    char field[11];
    field[10] = '#';
    _ExpandFixed("0123456789", 10, field, 10, &code);
    EXPECT_EQ(0, code);
    EXPECT_EQ("0123456789#", std::string(field, 11));
    _ExpandFixed("0123456789", 10, field, 9, &code);
    EXPECT_EQ(-32, code);
    EXPECT_EQ("0123456789#", std::string(field, 11));
}

TEST_F(ExpansionBuffers, TakeAnAllBlankFieldForEmptyText) {
    std::int32_t code = 1;
    char field[4] = {'x', 'x', 'x', 'x'};
    _ExpandFixed(" \t  ", 4, field, 4, &code);
    EXPECT_EQ(0, code);
    EXPECT_EQ("    ", std::string(field, 4));
}

TEST_F(ExpansionBuffers, DoWithoutAPlaceForTheCode) {
    char field[4] = {'a', '/', 'b', ' '};
    _ExpandFixed(field, 4, nullptr);
    EXPECT_EQ("a\\b ", std::string(field, 4));
    _ExpandTextFixed("$(", 2, field, 4, nullptr);
    EXPECT_EQ("a\\b ", std::string(field, 4));
}

TEST_F(ExpansionBuffers, ReportASourceThatItsOwnLookupsOverwrite) {
    store_.variable("A = 1");
    store_.variable("A = +;$B");
    store_.variable("B = 2");
    store_.variable("B = +;y");
    char buffer[4];
    EXPECT_EQ(-32, _Expand(get_variable("A"), buffer, sizeof buffer));
    EXPECT_THAT(log_.errors(),
                ElementsAre("_Expand(\"1;$B\") = error -32 - buffer size 4 too small"));
}

class TooSmallBuffer : public testing::ChildProcessTest {
protected:
    static int expandWithOption(const char* option) {
        const ScopedVariable set("TRV_BUFFER_TOO_SMALL_OPTION", option);
        const ScopedVariable noWatch("TRV_EXPAND_MIN_BUFFER_SIZE", nullptr);
        char buffer[4] = "";
        return _Expand("abcdef", buffer, sizeof buffer);
    }
};

TEST_F(TooSmallBuffer, TrapsAfterItsReportIfTheOptionIsCrash) {
    EXPECT_EXIT(expandWithOption("crash"), testing::endedAtBreakpoint,
                "^_Expand\\(\"abcdef\"\\) = error -32 - buffer size 4 too small\n$");
}

TEST_F(TooSmallBuffer, ReturnsForAnyOtherOption) {
    ChannelLog log;
    EXPECT_EQ(-32, expandWithOption("CRASH"));
    EXPECT_EQ(-32, expandWithOption("crash "));
    EXPECT_EQ(-32, expandWithOption(nullptr));
}

TEST_F(TooSmallBuffer, AloneTraps) {
    ChannelLog log;
    const ScopedVariable set("TRV_BUFFER_TOO_SMALL_OPTION", "crash");
    char buffer[4] = "";
    EXPECT_EQ(-31, _Expand("$(", buffer, sizeof buffer));
    EXPECT_EQ(-44, _Expand(nullptr, buffer, sizeof buffer));
}

TEST_F(ExpansionBuffers, OfNoSizeHideNoOtherError) {
    char buffer[8] = "same";
    EXPECT_EQ(-31, _Expand("$(A", buffer, 0));
    EXPECT_EQ(-44, _Expand(nullptr, buffer, 0));
    EXPECT_EQ(-44, _Expand("abc", nullptr, 0));
    EXPECT_STREQ("same", buffer);
    EXPECT_THAT(log_.errors(), ElementsAre("_Expand(\"$(A\") = error -31 - syntax error",
                                           "_Expand(<nullptr>) = error -44 - invalid argument",
                                           "_Expand(\"abc\") = error -44 - invalid argument"));
}

TEST_F(ExpansionBuffers, AreWrittenUpToTheTerminatorAlone) {
    char buffer[9] = "########";
    EXPECT_EQ(0, _Expand("abc", buffer, 8));
    EXPECT_EQ(std::string("abc\0####", 8), std::string(buffer, 8));
}

}  // namespace
}  // namespace trv
