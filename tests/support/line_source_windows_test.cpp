// Lines of a file in the text mode of Windows.

#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/support/line_source.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace trv {
namespace {

using namespace std::string_literals;
using ::testing::ElementsAre;

/// The lines of a file of these bytes.
std::vector<std::string> linesOf(const std::string& bytes) {
    const testing::TemporaryDirectory directory;
    testing::writeBytes(directory / "f", bytes);
    CL8BFile source((directory / "f").string().c_str());
    std::vector<std::string> lines;
    std::string buffer(20000, '~');
    while (const std::uint64_t consumed =
               source.readLine(buffer.data(), static_cast<std::int32_t>(buffer.size())))
        lines.push_back(buffer.substr(0, consumed));
    EXPECT_EQ(source.lineNumber(), 0U);
    return lines;
}

TEST(LineSourceOnWindows, TreatsCrLfAsOneNewline) {
    EXPECT_THAT(linesOf("a\r\n\r\nb\nc\rd\r\n"), ElementsAre("a\n", "\n", "b\n", "c\rd\n"));
    EXPECT_THAT(linesOf("a\0b\r\n\0\r\nc"s), ElementsAre("a\0b\n"s, "\0\n"s, "c"));
}

TEST(LineSourceOnWindows, TreatsCrLfAsOneNewlineAtEveryPosition) {
    for (const std::size_t length :
         {510U, 1021U, 1022U, 1023U, 1024U, 2046U, 4095U, 4096U, 8191U}) {
        const std::string text(length, 'x');
        EXPECT_THAT(linesOf(text + "\r\ny\r\n"), ElementsAre(text + "\n", "y\n")) << length;
    }
}

TEST(LineSourceOnWindows, EndsAtCtrlZ) {
    EXPECT_THAT(linesOf("a\r\nb\x1A\r\nc\r\n"), ElementsAre("a\n", "b"));
    EXPECT_THAT(linesOf("a\r\n\x1A"), ElementsAre("a\n"));
    EXPECT_THAT(linesOf("\x1A\r\n"), ElementsAre());
    EXPECT_THAT(linesOf("a\0\x1Az"s), ElementsAre("a\0"s));
}

TEST(LineSourceOnWindows, EndsAtCtrlZAtEveryPosition) {
    for (const std::size_t length : {1022U, 1023U, 1024U, 2046U, 4095U, 4096U, 8191U}) {
        const std::string text(length, 'x');
        EXPECT_THAT(linesOf(text + "\x1Ay\r\n"), ElementsAre(text)) << length;
    }
}

}  // namespace
}  // namespace trv
