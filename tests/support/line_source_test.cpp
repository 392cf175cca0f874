#include <tests/common/file_bytes.h>
#include <tests/common/system.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/support/line_source.h>

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace trv {
namespace {

using testing::TemporaryDirectory;

class LineSource : public ::testing::Test {
protected:
    CL8BFile& open(std::string_view bytes) {
        const std::filesystem::path path = directory_ / "lines.txt";
        testing::writeBytes(path, bytes);
        source_ = std::make_unique<CL8BFile>(path.string().c_str());
        return *source_;
    }

    std::uint64_t read(std::int32_t size = 1024) {
        buffer_.assign(static_cast<std::size_t>(size) + 1, '~');
        const std::uint64_t consumed = source_->readLine(buffer_.data(), size);
        EXPECT_EQ(buffer_.back(), '~') << "written beyond the buffer";
        return consumed;
    }
    std::string line() const { return buffer_.data(); }

    TemporaryDirectory directory_;
    std::unique_ptr<CL8BFile> source_;
    std::vector<char> buffer_;
};

TEST_F(LineSource, ReadsLinesWithTheirNewlines) {
    const CL8BFile& source = open("one\n\nthree\n");
    EXPECT_EQ(source.lineNumber(), 1U);
    EXPECT_EQ(read(), 4U);
    EXPECT_EQ(line(), "one\n");
    EXPECT_EQ(source.lineNumber(), 2U);
    EXPECT_EQ(read(), 1U);
    EXPECT_EQ(line(), "\n");
    EXPECT_EQ(source.lineNumber(), 3U);
    EXPECT_EQ(read(), 6U);
    EXPECT_EQ(line(), "three\n");
}

TEST_F(LineSource, ReachesTheEndAfterATerminatedLineAtTheNextRead) {
    const CL8BFile& source = open("one\n");
    read();
    EXPECT_EQ(source.lineNumber(), 2U);
    EXPECT_EQ(read(), 0U);
    EXPECT_EQ(line(), "");
    EXPECT_EQ(source.lineNumber(), 0U);
    EXPECT_EQ(read(), 0U);
}

TEST_F(LineSource, MeetsTheEndWithAnUnterminatedLine) {
    const CL8BFile& source = open("one\ntwo");
    read();
    EXPECT_EQ(read(), 3U);
    EXPECT_EQ(line(), "two");
    EXPECT_EQ(source.lineNumber(), 0U);
    EXPECT_EQ(read(), 0U);
    EXPECT_EQ(line(), "");
}

TEST_F(LineSource, AnEmptyFileEndsAtTheFirstRead) {
    const CL8BFile& source = open("");
    EXPECT_EQ(source.lineNumber(), 1U);
    EXPECT_EQ(read(), 0U);
    EXPECT_EQ(source.lineNumber(), 0U);
}

TEST_F(LineSource, CutsALongLineAndCountsAllOfIt) {
    open(std::string(300, 'x') + "\nnext\n");
    EXPECT_EQ(read(100), 301U);
    EXPECT_EQ(line(), std::string(99, 'x'));
    EXPECT_EQ(read(100), 5U);
    EXPECT_EQ(line(), "next\n");
}

TEST_F(LineSource, ALineThatFitsWithItsNewlineIsNotCut) {
    open("123456789\nnext\n");
    EXPECT_EQ(read(11), 10U);
    EXPECT_EQ(line(), "123456789\n");
    EXPECT_EQ(read(11), 5U);
}

TEST_F(LineSource, ALineThatFitsWithoutItsNewlineCountsAsCut) {
    open("123456789\nnext\n");
    EXPECT_EQ(read(10), 10U);
    EXPECT_EQ(line(), "123456789");
    EXPECT_EQ(read(10), 5U);
    EXPECT_EQ(line(), "next\n");
}

TEST_F(LineSource, TheEndAfterAFullBufferCountsOne) {
    const CL8BFile& source = open(std::string(1023, 'x'));
    EXPECT_EQ(read(1024), 1024U);
    EXPECT_EQ(line(), std::string(1023, 'x'));
    EXPECT_EQ(source.lineNumber(), 0U);
    EXPECT_EQ(read(1024), 0U);
}

TEST_F(LineSource, ALastLineOneShorterThanTheBufferCountsItsLength) {
    open(std::string(1022, 'x'));
    EXPECT_EQ(read(1024), 1022U);
    EXPECT_EQ(line(), std::string(1022, 'x'));
}

TEST_F(LineSource, ALineMayBeLongerThanAnyBuffer) {
    open(std::string(1000000, 'x') + "\nnext\n");
    EXPECT_EQ(read(1024), 1000001U);
    EXPECT_EQ(read(1024), 5U);
    EXPECT_EQ(line(), "next\n");
}

TEST_F(LineSource, ANulEndsTheTextButNotTheLine) {
    using namespace std::string_literals;
    open("ab\0cd\nsecond\n"s);
    EXPECT_EQ(read(), 6U);
    EXPECT_EQ(line(), "ab");
    EXPECT_EQ(read(), 7U);
    EXPECT_EQ(line(), "second\n");
}

TEST_F(LineSource, ALineThatBeginsWithANulIsNotTheEnd) {
    using namespace std::string_literals;
    const CL8BFile& source = open("\0\n\0second"s);
    EXPECT_EQ(read(), 2U);
    EXPECT_EQ(line(), "");
    EXPECT_EQ(source.lineNumber(), 2U);
    EXPECT_EQ(read(), 7U);
    EXPECT_EQ(line(), "");
    EXPECT_EQ(source.lineNumber(), 0U);
}

TEST_F(LineSource, ANulInTheLostPartOfALineIsCounted) {
    using namespace std::string_literals;
    open("abcdef\0gh\nnext\n"s);
    EXPECT_EQ(read(4), 10U);
    EXPECT_EQ(line(), "abc");
    EXPECT_EQ(read(8), 5U);
}

TEST_F(LineSource, KeepsEveryOtherByte) {
    open("\x01\t\xFF\xE9 x\n");
    EXPECT_EQ(read(), 7U);
    EXPECT_EQ(line(), "\x01\t\xFF\xE9 x\n");
}

TEST_F(LineSource, ASizeOfTwoReadsOneCharacterOfEachLine) {
    open("abc\n\nd\n");
    EXPECT_EQ(read(2), 4U);
    EXPECT_EQ(line(), "a");
    EXPECT_EQ(read(2), 1U);
    EXPECT_EQ(line(), "\n");
    EXPECT_EQ(read(2), 2U);
    EXPECT_EQ(line(), "d");
}

TEST_F(LineSource, ReadsNothingWithoutRoomButCountsTheLine) {
    CL8BFile& source = open("one\n");
    char room = '~';
    EXPECT_EQ(source.readLine(nullptr, 1024), 0U);
    EXPECT_EQ(source.readLine(&room, 0), 0U);
    EXPECT_EQ(source.readLine(&room, -7), 0U);
    EXPECT_EQ(room, '~');
    EXPECT_EQ(source.readLine(&room, 1), 0U);
    EXPECT_EQ(room, '\0');
    EXPECT_EQ(source.lineNumber(), 5U);
    EXPECT_EQ(read(), 4U);
    EXPECT_EQ(line(), "one\n");
}

void expectNoStream(CL8BFile& source) {
    EXPECT_EQ(source.lineNumber(), 0U);
    char buffer[] = "~~~~";
    EXPECT_EQ(source.readLine(buffer, sizeof buffer), 0U);
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(source.lineNumber(), 0U);
}

TEST_F(LineSource, WithoutAStreamThereIsNothing) {
    CL8BFile missing((directory_ / "missing").string().c_str());
    expectNoStream(missing);
    CL8BFile nameless(static_cast<const char*>(nullptr));
    expectNoStream(nameless);
    CL8BFile empty("");
    expectNoStream(empty);
    CL8BFile streamless(static_cast<std::FILE*>(nullptr));
    expectNoStream(streamless);
}

TEST_F(LineSource, ADirectoryGivesNoStream) {
    CL8BFile source(directory_.text().c_str());
    expectNoStream(source);
}

TEST_F(LineSource, OpensAPathWithEitherSeparator) {
    testing::writeBytes(directory_ / "a.txt", "line\n");
    source_ = std::make_unique<CL8BFile>((directory_.text() + "\\a.txt").c_str());
    EXPECT_EQ(read(), 5U);
}

TEST_F(LineSource, LeavesACallersStreamOpenAndInItsPlace) {
    testing::writeBytes(directory_ / "a.txt", "one\ntwo\nthree\n");
    std::FILE* const stream = std::fopen((directory_ / "a.txt").string().c_str(), "rb");
    ASSERT_NE(stream, nullptr);
    char text[16];
    ASSERT_NE(std::fgets(text, sizeof text, stream), nullptr);
    {
        CL8BFile source(stream);
        EXPECT_EQ(source.lineNumber(), 1U);
        EXPECT_EQ(source.readLine(text, sizeof text), 4U);
        EXPECT_STREQ(text, "two\n");
        EXPECT_EQ(source.lineNumber(), 2U);
    }
    EXPECT_NE(std::fgets(text, sizeof text, stream), nullptr);
    EXPECT_STREQ(text, "three\n");
    EXPECT_EQ(std::fclose(stream), 0);
}

TEST_F(LineSource, MayOutliveACallersStream) {
    testing::writeBytes(directory_ / "a.txt", "one\n");
    std::FILE* const stream = std::fopen((directory_ / "a.txt").string().c_str(), "rb");
    ASSERT_NE(stream, nullptr);
    {
        const CL8BFile source(stream);
        EXPECT_EQ(std::fclose(stream), 0);
    }
}

TEST_F(LineSource, ServesThroughTheInterface) {
    VCL8BLineSource& source = open("one\ntwo");
    char text[16];
    EXPECT_EQ(source.readLine(text, sizeof text), 4U);
    EXPECT_EQ(source.lineNumber(), 2U);
}

TEST_F(LineSource, ClosesTheFileThatItHasOpened) {
    if (testing::openDescriptors() < 0) GTEST_SKIP() << "the system does not list descriptors";
    const auto before = testing::openDescriptors();
    open("one\n");
    EXPECT_EQ(testing::openDescriptors(), before + 1);
    source_.reset();
    EXPECT_EQ(testing::openDescriptors(), before);
}

}  // namespace
}  // namespace trv
