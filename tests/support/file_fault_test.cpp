#include <trvfiles/support/file_fault.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <string>

namespace {

CFileFault usedFault() {
    CFileFault fault;
    fault.reason = "old";
    fault.line = 7;
    fault.column = 8;
    fault.systemError = 9;
    fault.notes.resize(1);
    return fault;
}

TEST(FileFault, IsNoFailureToBeginWith) {
    const CFileFault fault;
    EXPECT_EQ(fault.reason, "");
    EXPECT_EQ(fault.line, 0);
    EXPECT_EQ(fault.column, 0);
    EXPECT_EQ(fault.systemError, 0);
    EXPECT_TRUE(fault.notes.empty());
}

TEST(FileFault, LosesEverythingWhenItIsCleared) {
    CFileFault fault = usedFault();
    trv::clear_fault(&fault);
    EXPECT_EQ(fault.reason, "");
    EXPECT_EQ(fault.line, 0);
    EXPECT_EQ(fault.column, 0);
    EXPECT_EQ(fault.systemError, 0);
    EXPECT_TRUE(fault.notes.empty());
}

TEST(FileFault, TakesAReasonWithItsPlaceAndKeepsItsNotes) {
    CFileFault fault = usedFault();
    trv::set_fault(&fault, CFileFault::Cause::wrongRoot, "why", 2, 3, "a");
    EXPECT_EQ(fault.cause, CFileFault::Cause::wrongRoot);
    EXPECT_EQ(fault.subject, "a");
    EXPECT_EQ(fault.reason, "why");
    EXPECT_EQ(fault.line, 2);
    EXPECT_EQ(fault.column, 3);
    EXPECT_EQ(fault.systemError, 0);
    EXPECT_EQ(fault.notes.size(), 1u);
}

TEST(FileFault, TakesANumberOfTheSystemWithItsWords) {
    CFileFault fault = usedFault();
    trv::set_system_fault(&fault, ENOENT);
    EXPECT_EQ(fault.reason, "No such file or directory");
    EXPECT_EQ(fault.line, 0);
    EXPECT_EQ(fault.column, 0);
    EXPECT_EQ(fault.systemError, ENOENT);
    EXPECT_EQ(fault.cause, CFileFault::Cause::system);
}

TEST(FileFault, MayBeAbsent) {
    trv::clear_fault(nullptr);
    trv::set_fault(nullptr, CFileFault::Cause::wrongRoot, "why", 2, 3);
    trv::set_system_fault(nullptr, ENOENT);
}

TEST(FileFault, QuotesTheBeginningOfALongText) {
    EXPECT_EQ(trv::quoted_beginning(""), "\"\"");
    EXPECT_EQ(trv::quoted_beginning("a\nb"), "\"a\nb\"");
    const std::string forty(40, 'x');
    EXPECT_EQ(trv::quoted_beginning(forty), '"' + forty + '"');
    EXPECT_EQ(trv::quoted_beginning(forty + "y"), '"' + forty + "...\"");
    // No character is cut in two.
    EXPECT_EQ(trv::quoted_beginning(std::string(39, 'x') + "\xE2\x82\xAC"),
              '"' + std::string(39, 'x') + "...\"");
}

TEST(FileFault, CutsOffALongText) {
    EXPECT_EQ(trv::beginning_of("a"), "a");
    EXPECT_EQ(trv::beginning_of(std::string(41, 'x')), std::string(40, 'x') + "...");
}

TEST(FileFault, NamesADecimalComma) {
    EXPECT_EQ(trv::quoted_number("1,5"), "\"1,5\" has a decimal comma, not a point");
    EXPECT_EQ(trv::quoted_number("1,5 0 0"), "\"1,5 0 0\" has a decimal comma, not a point");
    for (const char* other : {"", ",", "1,", ",5", "a,5", "1,b", "1,2,3", "-14O"})
        EXPECT_EQ(trv::quoted_number(other), '"' + std::string(other) + '"');
}

}  // namespace
