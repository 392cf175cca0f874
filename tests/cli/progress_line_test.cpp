#include <cli/progress_line.h>

#include <gtest/gtest.h>

#include <sstream>
#include <thread>

namespace trv::cli {
namespace {

TEST(ProgressLine, IsNotPrintedWithoutATerminalOrInTheFirstSecond) {
    std::ostringstream stream;
    ProgressLine onTerminal(stream, 80);
    onTerminal.show(1, 2);
    onTerminal.clear();
    EXPECT_EQ(stream.str(), "");
    ProgressLine elsewhere(stream, 0);
    std::this_thread::sleep_for(std::chrono::milliseconds(1050));
    elsewhere.show(1, 2);
    EXPECT_EQ(stream.str(), "");
    onTerminal.show(12, 34);
    onTerminal.show(13, 34);
    EXPECT_EQ(stream.str(), "\r12 of 34 files");
}

TEST(ProgressLine, IsCutToTheTerminalAndRemovedAtTheEnd) {
    std::ostringstream stream;
    {
        ProgressLine line(stream, 6);
        std::this_thread::sleep_for(std::chrono::milliseconds(1050));
        line.show(12, 34);
    }
    EXPECT_EQ(stream.str(), "\r12 of\r     \r");
}

}  // namespace
}  // namespace trv::cli
