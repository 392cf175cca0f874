#include <cli/file_kind.h>
#include <tests/cli/samples.h>

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace trv::cli {
namespace {

using namespace std::string_view_literals;

TEST(FileKind, KnowsAnAssemblyByItsXml) {
    EXPECT_EQ(kindOf(testing::setupXml), FileKind::assembly);
    EXPECT_EQ(kindOf("<?xml version=\"1.0\"?><a/>"), FileKind::assembly);
    EXPECT_EQ(kindOf(" \t\r\n <a/>"), FileKind::assembly);
    EXPECT_EQ(kindOf("<"), FileKind::assembly);
}

TEST(FileKind, KnowsAnAssemblyInEveryEncoding) {
    EXPECT_EQ(kindOf("\xEF\xBB\xBF<a/>"), FileKind::assembly);
    EXPECT_EQ(kindOf("\xFF\xFE<\0a\0/\0>\0"sv), FileKind::assembly);
    EXPECT_EQ(kindOf("\xFE\xFF\0<\0a\0/\0>"sv), FileKind::assembly);
    EXPECT_EQ(kindOf("<\0a\0/\0>\0"sv), FileKind::assembly);
    EXPECT_EQ(kindOf("\0<\0a\0/\0>"sv), FileKind::assembly);
}

TEST(FileKind, KnowsAnAxisFileByItsLines) {
    EXPECT_EQ(kindOf(testing::identityAxis), FileKind::axis);
    EXPECT_EQ(kindOf("anything\n1 0 0 0\n0 1 0 0\n0 0 1 0\n0 0 0 1"), FileKind::axis);
    EXPECT_EQ(kindOf("\r\n1 0 0 0\r\n0 1 0 0\r\n0 0 1 0\r\n0 0 0 1\r\n"), FileKind::axis);
}

TEST(FileKind, KnowsAnAxisFileAfterALongFirstLine) {
    EXPECT_EQ(kindOf(std::string(5000, 'x') + "\n1 0 0 0\n0 1 0 0\n0 0 1 0\n0 0 0 1\n"),
              FileKind::axis);
}

TEST(FileKind, KnowsAFaultyAxisFile) {
    EXPECT_EQ(kindOf("x\n1 0 0 0\n0 1 0\n"), FileKind::axis);
    EXPECT_EQ(kindOf("      0\n"), FileKind::axis);
    EXPECT_EQ(kindOf("1"), FileKind::axis);
    EXPECT_EQ(kindOf("\t1 \r\nthree numbers\n"), FileKind::axis);
}

TEST(FileKind, KnowsAMachineContextByAnyOfItsSections) {
    EXPECT_EQ(kindOf(testing::setupContext), FileKind::machineContext);
    for (const char* section : {"header", "machine", "postpro", "part", "clamping_system"})
        EXPECT_EQ(kindOf("x\n[" + std::string(section) + "]"), FileKind::machineContext) << section;
    EXPECT_EQ(kindOf("\xEF\xBB\xBF[ machine ] tail\r\n"), FileKind::machineContext);
    EXPECT_EQ(kindOf("[machine]\nname = Mill\n"), FileKind::machineContext);
}

TEST(FileKind, TestsForXmlAndForAValidAxisFileFirst) {
    EXPECT_EQ(kindOf(std::string(testing::identityAxis) + "[machine]\nname=x\n"), FileKind::axis);
    EXPECT_EQ(kindOf("<\n[machine]\nname=x\n"), FileKind::assembly);
}

TEST(FileKind, AcceptsNothingElse) {
    EXPECT_EQ(kindOf(""), FileKind::unknown);
    EXPECT_EQ(kindOf("\n"), FileKind::unknown);
    EXPECT_EQ(kindOf("2\n1 2 3\n"), FileKind::unknown);
    EXPECT_EQ(kindOf("10\n"), FileKind::unknown);
    EXPECT_EQ(kindOf("[Machine]\nname = Mill\n"), FileKind::unknown);
    EXPECT_EQ(kindOf(" [machine]\nname = Mill\n"), FileKind::unknown);
    EXPECT_EQ(kindOf("[var]\nmachine = Mill\n"), FileKind::unknown);
    EXPECT_EQ(kindOf("x < y\n"), FileKind::unknown);
    EXPECT_EQ(kindOf("\0\0\0\0"sv), FileKind::unknown);
}

TEST(FileKind, KnowsAMachineContextAfterLongLines) {
    EXPECT_EQ(kindOf(std::string(1000000, 'x') + "\n[machine]\n"), FileKind::machineContext);
    EXPECT_EQ(kindOf(std::string(1000000, '[') + "\n[machine]\n"), FileKind::machineContext);
}

TEST(FileKind, LooksForXmlInTheFirst512Bytes) {
    EXPECT_EQ(kindOf(std::string(511, ' ') + "<a/>"), FileKind::assembly);
    EXPECT_EQ(kindOf(std::string(512, ' ') + "<a/>"), FileKind::unknown);
}

}  // namespace
}  // namespace trv::cli
