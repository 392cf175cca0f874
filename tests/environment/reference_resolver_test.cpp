#include <tests/common/channel_log.h>
#include <tests/environment/store_access.h>
#include <trvfiles/environment/message_store.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <stdexcept>
#include <string>

namespace trv {
namespace {

using ::testing::AllOf;
using testing::byProgram;
using testing::ChannelLog;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::recordOf;
using ::testing::SizeIs;
using ::testing::StartsWith;
using testing::Store;
using testing::valueOf;

// In a store without file names the first text is at 0000000C, after its record of twelve bytes.
// Texts take a multiple of four bytes each: "A = 1" eight, so the next one is at 00000020.
class References : public ::testing::Test {
protected:
    References() { add_section(store, "var"); }

    void add(const std::string& text) { append_message(store, 0, text.c_str(), byProgram, 0); }
    void set(const std::string& text) { set_variable(store, 0, text.c_str()); }
    std::string value(const char* name) const { return valueOf(store, 0, name); }

    Store store;
};

TEST_F(References, GoThroughTheWholeHistory) {
    set("A = 1");
    set("A = +,2");
    set("A = +,3,+");
    EXPECT_EQ(value("A"), "1,2,3,1,2");
}

TEST_F(References, TakeTheValueWithoutItsLeadingBlanks) {
    set("A = \t one ");
    set("A = <+>");
    EXPECT_EQ(value("A"), "<one >");
}

TEST_F(References, TakeAllOfATextWithoutASign) {
    add("  one ");
    replace_message(store, 0, 0, "A = <+>", byProgram, 0);
    EXPECT_EQ(value("A"), "<one >");
}

TEST_F(References, TakeAnEmptyValue) {
    set("A =");
    set("A = <+>+");
    EXPECT_EQ(value("A"), "<>");
}

TEST_F(References, ReadDigitsOfEitherCase) {
    add("A = 1");
    add("B = +(0000000c)+(0000000C)");
    EXPECT_EQ(value("B"), "11");
}

TEST_F(References, ToOtherTextsOfTheStoreAreGoodToo) {
    add("A = 1");
    add("B = 2");
    add("C = +(0000000C)+(00000020)");
    EXPECT_EQ(value("C"), "12");
}

TEST_F(References, ThatAreNotWellFormedStay) {
    add("A = 1");
    for (const char* text : {"+", "+x", "+()", "+(0000000C", "+(000000C)", "+(00000000C)",
                             "+(0000000G)", "+(0x00000C)", "+(-000000C)", "+( 000000C)",
                             "+ (0000000C)", "+[0000000C]", "(0000000C)"}) {
        set(std::string("B") + text + " = " + text);
        EXPECT_EQ(value((std::string("B") + text).c_str()), text);
    }
}

TEST_F(References, ToTheirOwnTextAreBad) {
    add("A = +(0000000C)x");
    EXPECT_EQ(value("A"), "$(TRVNULL)(0000000C)x");
}

TEST_F(References, ToLaterTextsAreBadSoNoTwoTextsReferToEachOther) {
    add("A = +(00000028)");
    add("B = +(0000000C)");
    ASSERT_EQ(get_message(store, 0, 1) - get_message(store, 0, 0), 0x28 - 0x0C);
    EXPECT_EQ(value("A"), "$(TRVNULL)(00000028)");
    EXPECT_EQ(value("B"), "$(TRVNULL)(00000028)");
}

TEST_F(References, ToAnythingButTheStartOfATextAreBad) {
    ASSERT_EQ(register_file_name(store, "file.cfg"), 0);
    add("A = 1");
    add("B = +(00000018)");
    EXPECT_EQ(value("B"), "1");
    // The file name, the record, the middle and the end of A, offsets after it, and offsets outside
    // of the pool.
    for (const char* bad : {"00000000", "00000004", "0000000C", "00000017", "00000019", "0000001D",
                            "0000001E", "00010000", "7FFFFFFF", "80000000", "FFFFFFFF"}) {
        const std::string name = "at " + std::string(bad);
        add(name + " = x+(" + bad + ");y");
        EXPECT_EQ(value(name.c_str()), "x$(TRVNULL)(" + std::string(bad) + ");y");
    }
}

TEST_F(References, ThatAreBadAreKept) {
    add("A = x+(FFFFFFFF);y");
    EXPECT_EQ(value("A"), "x$(TRVNULL)(FFFFFFFF);y");
    add("B = +(FFFFFFFF)++(FFFFFFFF)+(FFFFFFFF)");
    EXPECT_EQ(value("B"), "$(TRVNULL)(FFFFFFFF)+(FFFFFFFF)$(TRVNULL)(FFFFFFFF)");
}

TEST_F(References, AreMeasuredByTheTextThatHoldsThem) {
    add("A = +(00000028)");  // bad: refers to what comes later
    add("B = 1+(0000000C)");
    add("C = +(00000028)");  // good
    EXPECT_EQ(value("C"), "1$(TRVNULL)(00000028)");
}

TEST_F(References, MayBeginWhereAnInsertedTextEnds) {
    add("A = 1");
    add("B = x+");
    add("C = +(00000020)(0000000C)");
    EXPECT_EQ(value("C"), "x1");
    add("D = +(00000020)+y");
    EXPECT_EQ(value("D"), "x+y");
    add("E = +(00000020)(00000034)");
    // The "+" is in B, which is before C.
    EXPECT_EQ(value("E"), "x$(TRVNULL)(00000034)");
}

TEST_F(References, StopWhenTheResultWouldPass1MiB) {
    set("A = " + std::string(1000, 'x'));
    for (int line = 0; line < 40; ++line)
        set("A = +;+");
    const std::string result = value("A");
    EXPECT_LE(result.size(), 1024U * 1024U);
    EXPECT_GT(result.size(), 1024U * 1024U - 2000U);
    EXPECT_EQ(result.compare(0, 1001, std::string(1000, 'x') + ";"), 0);
    EXPECT_THAT(result.substr(result.size() - 11), AllOf(StartsWith("+("), SizeIs(11)));
}

TEST_F(References, FillTheResultUpTo1MiBExactly) {
    const std::size_t limit = std::size_t{1024} * 1024;
    set("A = " + std::string(limit - 1, 'x'));
    set("A = +y");
    EXPECT_EQ(value("A"), std::string(limit - 1, 'x') + "y");
    set("B = " + std::string(limit - 1, 'x'));
    set("B = +yz");
    EXPECT_THAT(value("B"), AllOf(StartsWith("+("), SizeIs(11 + 2)));
    set("C = 1");
    set("C = ++,+");
    set("C = ++" + std::string(limit, 'x') + "++");
    EXPECT_EQ(value("C"), "+" + std::string(limit, 'x') + "+");
}

TEST_F(References, ThatAreBadFillTheResultUpTo1MiBExactly) {
    const std::size_t limit = std::size_t{1024} * 1024;
    const std::string rest = "(FFFFFFFF)";
    const std::string undefined = "$(TRVNULL)";
    const std::string most(limit - undefined.size() - rest.size(), 'x');
    add("A = " + most + "+" + rest);
    EXPECT_EQ(value("A"), most + undefined + rest);
    add("B = " + most + "x+" + rest);
    EXPECT_EQ(value("B"), most + "x+" + rest);
}

TEST_F(References, StopAfter10000Replacements) {
    add("A = 1");
    std::string line = "B = ";
    for (int reference = 0; reference < 10002; ++reference)
        line += "+(0000000C)";
    add(line + "++");
    EXPECT_EQ(value("B"), std::string(10000, '1') + "+(0000000C)+(0000000C)++");
}

TEST_F(References, ThatDoubleLineByLineEnd) {
    set("A = ");
    for (int line = 0; line < 1000; ++line)
        set("A = ++");
    set("B = 1");
    for (int line = 0; line < 1000; ++line)
        set("B = +,+");
    const std::string result = value("B");
    EXPECT_LE(result.size(), 1024U * 1024U);
    EXPECT_EQ(value("A"), "+");
}

TEST_F(References, GoAsDeepAsTheHistory) {
    set("A = 0");
    std::string expected = "0";
    for (int line = 1; line <= 9999; ++line) {
        set("A = +,");
        expected += ',';
    }
    EXPECT_EQ(value("A"), expected);
}

TEST_F(References, AreReportedToTheTraceChannel) {
    const std::int32_t file = register_file_name(store, "a.cfg");
    set_parameter(store, 0, "A = 1", file, 3);
    set("A = <+>");
    const ChannelLog log;
    value("A");
    EXPECT_THAT(log.traces(), ElementsAre("   - A = <+(00000014)> set by program",
                                          "   00000014 -> A = 1 from 'a.cfg' line 3", "<1>"));
}

TEST_F(References, ThatAreBadAreReportedToTheTraceChannel) {
    add("A = x+(FFFFFFFF);y");
    const ChannelLog log;
    value("A");
    EXPECT_THAT(log.traces(), ElementsAre("ref=[+(FFFFFFFF);y]\n", "x$(TRVNULL)(FFFFFFFF);y"));
}

TEST_F(References, AloneAreReportedToTheTraceChannel) {
    add("A = 1");
    add("B = a+b");
    const ChannelLog log;
    value("A");
    value("B");
    EXPECT_THAT(log.traces(), IsEmpty());
}

// Handlers reach the store under test through here.
message_store* traced = nullptr;

TEST_F(References, AreResolvedWhileTraceHandlersLookUpAndAdd) {
    set("A = " + std::string(100, 'a'));
    set("A = +,b");
    set("A = +,c");
    set("B = x");
    set("B = +(00000000)+");
    const std::string expected = value("A");
    traced = store;
    const message_handler before = set_trace_handler([](const char*) {
        const message_handler none = set_trace_handler([](const char*) {});
        find_parameter(traced, 0, "B", true);
        for (int number = 0; number < 100; ++number)
            append_message(traced, 0, std::string(500, 'z').c_str(), byProgram, 0);
        set_trace_handler(none);
    });
    const text_record* record = nullptr;
    const std::string resolved = find_parameter(store, 0, "A", true, &record);
    set_trace_handler(before);
    EXPECT_EQ(resolved, expected);
    EXPECT_EQ(record, &recordOf(get_message(store, 0, 0)));
}

TEST_F(References, AreUnharmedByATraceHandlerThatThrows) {
    set("A = 1");
    set("A = +,2");
    const message_handler before =
        set_trace_handler([](const char*) { throw std::runtime_error("from the handler"); });
    EXPECT_THROW(find_parameter(store, 0, "A", true), std::runtime_error);
    set_trace_handler(before);
    EXPECT_EQ(value("A"), "1,2");
}

}  // namespace
}  // namespace trv
