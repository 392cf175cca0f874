#include <trvfiles/assembly/block_writer.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace trv {
namespace {

constexpr std::size_t blockSize = 65536;

class BlockWriterTest : public ::testing::Test {
protected:
    // The blocks before the first one that is not written, and that one.
    std::vector<std::string> blocks_;
    std::size_t maxBlocks_ = 100;
    BlockWriter out_ = BlockWriter([this](std::string_view block) {
        blocks_.emplace_back(block);
        return blocks_.size() <= maxBlocks_;
    });
};

TEST_F(BlockWriterTest, PassesNothingOfNothing) {
    EXPECT_TRUE(out_.finish());
    EXPECT_TRUE(blocks_.empty());
}

TEST_F(BlockWriterTest, JoinsPieces) {
    out_.append("<a");
    out_.append(std::string_view("bc", 1));
    out_.indent(3);
    char* const room = out_.room(2);
    room[0] = '4';
    out_.advance(room + 1);
    EXPECT_TRUE(blocks_.empty());
    EXPECT_TRUE(out_.finish());
    EXPECT_EQ(std::vector<std::string>{"<ab   4"}, blocks_);
}

TEST_F(BlockWriterTest, KeepsAFullBlockUntilMoreFollows) {
    out_.append(std::string_view(std::string(blockSize, 'x')));
    EXPECT_TRUE(blocks_.empty());
    out_.append("y");
    ASSERT_EQ(1U, blocks_.size());
    EXPECT_EQ(std::string(blockSize, 'x'), blocks_[0]);
    EXPECT_TRUE(out_.finish());
    ASSERT_EQ(2U, blocks_.size());
    EXPECT_EQ("y", blocks_[1]);
}

TEST_F(BlockWriterTest, DividesTextsAndBlanksAtTheEndOfABlock) {
    out_.append(std::string_view(std::string(2 * blockSize + 1, 'x')));
    out_.indent(blockSize);
    EXPECT_TRUE(out_.finish());
    ASSERT_EQ(4U, blocks_.size());
    EXPECT_EQ(std::string(blockSize, 'x'), blocks_[1]);
    EXPECT_EQ("x" + std::string(blockSize - 1, ' '), blocks_[2]);
    EXPECT_EQ(" ", blocks_[3]);
}

TEST_F(BlockWriterTest, StartsABlockForAPieceThatNeedsRoom) {
    out_.append(std::string_view(std::string(blockSize - 3, 'x')));
    out_.room(3);
    EXPECT_TRUE(blocks_.empty());
    char* const room = out_.room(4);
    ASSERT_EQ(1U, blocks_.size());
    EXPECT_EQ(blockSize - 3, blocks_[0].size());
    room[0] = 'y';
    out_.advance(room + 1);
    EXPECT_TRUE(out_.finish());
    EXPECT_EQ("y", blocks_[1]);
}

TEST_F(BlockWriterTest, DropsEverythingAfterABlockThatIsNotWritten) {
    maxBlocks_ = 1;
    out_.append(std::string_view(std::string(blockSize + 1, 'x')));
    EXPECT_FALSE(out_.hasFailed());
    out_.append(std::string_view(std::string(3 * blockSize, 'y')));
    EXPECT_TRUE(out_.hasFailed());
    EXPECT_FALSE(out_.finish());
    EXPECT_EQ(2U, blocks_.size());
}

}  // namespace
}  // namespace trv
