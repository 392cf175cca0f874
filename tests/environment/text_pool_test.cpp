#include <trvfiles/environment/text_pool.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <new>
#include <string>
#include <vector>

namespace trv {
namespace {

std::int32_t add(text_pool& pool, const std::string& text, std::int32_t file = text_pool::none) {
    pool.reserve_texts(1, text.size());
    return pool.add_text({file, text_pool::none, 0, 0, 0}, text);
}

TEST(TextPool, PutsEachTextAfterItsRecordAtAMultipleOfFour) {
    text_pool pool;
    EXPECT_EQ(add(pool, ""), 12);
    EXPECT_EQ(add(pool, "abc"), 28);
    EXPECT_EQ(add(pool, "abcd"), 44);
    EXPECT_EQ(pool.add_file_name("file"), 52);
    EXPECT_EQ(add(pool, "last"), 72);
    EXPECT_STREQ(pool.at(44), "abcd");
    EXPECT_STREQ(pool.at(52), "file");
}

TEST(TextPool, KnowsWhereTextsAndFileNamesBegin) {
    text_pool pool;
    const std::int32_t file = pool.add_file_name("file");
    const std::int32_t text = add(pool, "text");
    for (std::int32_t offset = -5; offset < text + 20; ++offset) {
        EXPECT_EQ(pool.is_text(offset), offset == text);
        EXPECT_EQ(pool.is_file_name(offset), offset == file);
    }
}

TEST(TextPool, KnowsTheTextAroundAPointer) {
    text_pool pool;
    EXPECT_EQ(pool.text_around("elsewhere"), text_pool::none);
    const std::int32_t file = pool.add_file_name("file");
    const std::int32_t first = add(pool, "first");
    const std::int32_t second = add(pool, "");
    EXPECT_EQ(pool.text_around(pool.at(first)), first);
    EXPECT_EQ(pool.text_around(pool.at(first) + 5), first);
    EXPECT_EQ(pool.text_around(pool.at(first) + 6), text_pool::none);
    EXPECT_EQ(pool.text_around(pool.at(second)), second);
    EXPECT_EQ(pool.text_around(pool.at(second) - 1), text_pool::none);
    EXPECT_EQ(pool.text_around(pool.at(second) + 1), text_pool::none);
    EXPECT_EQ(pool.text_around(pool.at(file)), text_pool::none);
    EXPECT_EQ(pool.text_around(nullptr), text_pool::none);
    EXPECT_EQ(pool.text_around("elsewhere"), text_pool::none);
}

TEST(TextPool, KeepsOffsetsRecordsAndNamesWhileItGrows) {
    text_pool pool;
    std::vector<std::int32_t> texts;
    std::vector<std::int32_t> files;
    for (int i = 0; i < 10000; ++i) {
        files.push_back(pool.add_file_name("file " + std::to_string(i % 2000)));
        texts.push_back(add(pool, "text " + std::to_string(i), files.back()));
    }
    for (std::size_t i = 0; i < texts.size(); ++i) {
        ASSERT_EQ(pool.at(texts[i]), "text " + std::to_string(i));
        ASSERT_EQ(pool.record(texts[i]).file, files[i]);
        ASSERT_EQ(files[i], files[i % 2000]);
        ASSERT_EQ(pool.origin(texts[i]), "from 'file " + std::to_string(i % 2000) + "' line 0");
    }
}

// The space is reserved, not filled: it takes addresses, but no memory.
TEST(TextPool, HoldsTwoGigabytesAtMost) {
    constexpr std::size_t around = 16;  // a record and its alignment
    constexpr std::size_t maxSize = (std::size_t{1} << 31) - 1024 - around;
    text_pool pool;
    const std::int32_t text = add(pool, "text");
    EXPECT_THROW(pool.reserve_texts(1, maxSize), std::bad_alloc);
    EXPECT_THROW(pool.reserve_texts(1, std::size_t{1} << 40), std::bad_alloc);
    EXPECT_EQ(add(pool, "next"), text + 20);
    const std::size_t used = 12 + 8 + 12 + 8;
    pool.reserve_texts(1, maxSize - used);
    EXPECT_STREQ(pool.at(text), "text");
    EXPECT_THROW(pool.reserve_texts(1, maxSize - used + 1), std::bad_alloc);
    EXPECT_EQ(add(pool, "last"), text + 40);
}

TEST(TextPool, GrowsThoughLessThanHalfOfItIsLeftToTheLimit) {
    constexpr std::size_t megabyte = std::size_t{1} << 20;
    text_pool pool;
    pool.reserve_texts(1, 1400 * megabyte);
    pool.reserve_texts(1, 1500 * megabyte);
    pool.reserve_texts(1, 2047 * megabyte);
    EXPECT_EQ(add(pool, "text"), 12);
    EXPECT_THROW(pool.reserve_texts(1, 2048 * megabyte), std::bad_alloc);
}

TEST(TextPool, HoldsNothingFourGigabytesFromItsTexts) {
    if (sizeof(std::uintptr_t) < 8) GTEST_SKIP() << "there are no such addresses";
    text_pool pool;
    const std::int32_t text = add(pool, "text");
    const auto address = reinterpret_cast<std::uintptr_t>(pool.at(text));
    const std::uintptr_t far = std::uintptr_t{1} << 16 << 16;
    EXPECT_TRUE(pool.holds(reinterpret_cast<const char*>(address)));
    for (const std::uintptr_t other : {address + far, address - far}) {
        EXPECT_FALSE(pool.holds(reinterpret_cast<const char*>(other)));
        EXPECT_EQ(pool.text_around(reinterpret_cast<const char*>(other)), text_pool::none);
    }
}

}  // namespace
}  // namespace trv
