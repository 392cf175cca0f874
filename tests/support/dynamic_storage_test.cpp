#include <tests/common/channel_log.h>
#include <tests/common/death_test.h>
#include <trvfiles/support/dynamic_storage.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

// With a sanitizer too, a request that is too large must fail and not end the process.
extern "C" const char* __asan_default_options();
extern "C" const char* __tsan_default_options();

const char* __asan_default_options() {
    return "allocator_may_return_null=1";
}

const char* __tsan_default_options() {
    return "allocator_may_return_null=1";
}

namespace trv {
namespace {

using testing::ChannelLog;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// More than the address space of a process, but without an overflow.
constexpr std::size_t tooLarge = std::size_t{1} << 58U;

struct Header {
    std::uint64_t size;
    std::uint32_t tag;
    std::uint32_t serial;
};

Header headerOf(const void* block) {
    Header header;
    std::memcpy(&header, static_cast<const char*>(block) - 16, 16);
    return header;
}

void setTag(void* block, std::uint32_t tag) {
    std::memcpy(static_cast<char*>(block) - 8, &tag, 4);
}

std::string report() {
    char text[64];
    storage_report(text, sizeof text);
    return text;
}

// No block is in use before and after each test.
class DynamicStorage : public testing::ChildProcessTest {
protected:
    void SetUp() override { ASSERT_EQ(report(), "data base memory : 0/0"); }
    void TearDown() override {
        EXPECT_EQ(report(), "data base memory : 0/0");
        set_storage_maximum(4294967295);
    }
    ChannelLog log_;
};

TEST_F(DynamicStorage, PutsAHeaderOf16BytesBeforeABlock) {
    void* const permanent = allocate_permanent(10);
    void* const temporary = allocate_temporary(5);
    EXPECT_EQ(headerOf(permanent).size, 10U);
    EXPECT_EQ(headerOf(permanent).tag, 0x75A5A5A5U);
    EXPECT_EQ(headerOf(temporary).size, 5U);
    EXPECT_EQ(headerOf(temporary).tag, 0x7C0DCAB4U);
    EXPECT_EQ(headerOf(temporary).serial, headerOf(permanent).serial + 1);
    EXPECT_EQ(_Wfree(permanent), 0);
    EXPECT_EQ(_Wfree(temporary), 0);
    EXPECT_EQ(freed_tag, 0x7D0ECBB5U);
}

TEST_F(DynamicStorage, NumbersNewBlocksButNotResizes) {
    void* first = allocate_temporary(8);
    const std::uint32_t serial = headerOf(first).serial;
    first = resize_temporary(first, 8000);
    EXPECT_EQ(headerOf(first).serial, serial);
    void* const second = resize_temporary(nullptr, 1);
    EXPECT_EQ(headerOf(second).serial, serial + 1);
    _Wfree(first);
    _Wfree(second);
}

TEST_F(DynamicStorage, TheFirstBlockOfAProcessHasTheSerial0) {
    TRV_EXPECT_IN_CHILD([] {
        void* const block = allocate_temporary(1);
        EXPECT_EQ(headerOf(block).serial, 0U);
        _Wfree(block);
    });
}

TEST_F(DynamicStorage, CountsPermanentAndAllBytes) {
    void* const permanent = allocate_permanent(10);
    void* const temporary = allocate_temporary(5);
    EXPECT_EQ(report(), "data base memory : 10/15");
    _Wfree(permanent);
    EXPECT_EQ(report(), "data base memory : 0/5");
    _Wfree(temporary);
}

TEST_F(DynamicStorage, CountsWhatAResizeAddsAndTakes) {
    void* permanent = allocate_permanent(10);
    void* temporary = allocate_temporary(5);
    permanent = resize_permanent(permanent, 100);
    EXPECT_EQ(report(), "data base memory : 100/105");
    temporary = resize_temporary(temporary, 50);
    EXPECT_EQ(report(), "data base memory : 100/150");
    permanent = resize_permanent(permanent, 1);
    EXPECT_EQ(report(), "data base memory : 1/51");
    temporary = resize_temporary(temporary, 0);
    EXPECT_EQ(report(), "data base memory : 1/1");
    _Wfree(permanent);
    _Wfree(temporary);
}

TEST_F(DynamicStorage, AReportIsBoundedByTheBuffer) {
    char text[64] = "~~~~~~~~";
    storage_report(text, 5);
    EXPECT_STREQ(text, "data");
    EXPECT_EQ(text[5], '~');
    storage_report(text, 1);
    EXPECT_STREQ(text, "");
    text[0] = '~';
    storage_report(text, 0);
    EXPECT_EQ(text[0], '~');
    storage_report(nullptr, 64);
}

TEST_F(DynamicStorage, KeepsWhatBothSizesHave) {
    auto* block = static_cast<char*>(allocate_temporary(4));
    std::memcpy(block, "abc", 4);
    block = static_cast<char*>(resize_temporary(block, 100000));
    EXPECT_STREQ(block, "abc");
    block = static_cast<char*>(resize_temporary(block, 2));
    EXPECT_EQ(std::string(block, 2), "ab");
    _Wfree(block);
}

TEST_F(DynamicStorage, AlignsBlocksTo16Bytes) {
    for (std::size_t size = 0; size < 200; ++size) {
        void* const block = allocate_temporary(size);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % 16, 0U) << size;
        _Wfree(block);
    }
}

TEST_F(DynamicStorage, ASizeOf0GivesABlockOfNoBytes) {
    void* const block = allocate_permanent(0);
    void* const other = allocate_permanent(0);
    ASSERT_NE(block, nullptr);
    EXPECT_NE(block, other);
    EXPECT_EQ(_Wfree(block), 0);
    EXPECT_EQ(_Wfree(other), 0);
    void* const emptied = resize_permanent(allocate_permanent(20), 0);
    ASSERT_NE(emptied, nullptr);
    EXPECT_EQ(_Wfree(emptied), 0);
    EXPECT_THAT(log_.fatals(), IsEmpty());
}

TEST_F(DynamicStorage, FreeingNullDoesNothing) {
    EXPECT_EQ(_Wfree(nullptr), 0);
    EXPECT_THAT(log_.fatals(), IsEmpty());
}

TEST_F(DynamicStorage, TheMaximumLetsSmallRequestsPass) {
    EXPECT_EQ(set_storage_maximum(2000), 2000U);
    void* const most = allocate_permanent(1999);
    void* const small = allocate_permanent(1024);
    ASSERT_NE(most, nullptr);
    ASSERT_NE(small, nullptr);
    EXPECT_EQ(allocate_permanent(1025), nullptr);
    EXPECT_THAT(log_.errors(),
                ElementsAre("_Wmalloc: allocating 1025 bytes would exceed maximum of 2000"));
    EXPECT_EQ(report(), "data base memory : 3023/3023");
    _Wfree(most);
    _Wfree(small);
}

TEST_F(DynamicStorage, TheMaximumIsNeverReached) {
    set_storage_maximum(2000);
    void* const block = allocate_permanent(974);
    void* const fits = allocate_permanent(1025);
    EXPECT_NE(fits, nullptr);
    _Wfree(fits);
    void* const oneMore = allocate_permanent(1);
    EXPECT_EQ(allocate_permanent(1025), nullptr);
    EXPECT_THAT(log_.errors(),
                ElementsAre("_Wmalloc: allocating 1025 bytes would exceed maximum of 2000"));
    _Wfree(block);
    _Wfree(oneMore);
}

TEST_F(DynamicStorage, FitsWhatStaysBelowTheMaximum) {
    EXPECT_TRUE(storage_fits(4294967294));
    EXPECT_FALSE(storage_fits(4294967295));
    EXPECT_FALSE(storage_fits(UINT64_MAX));
    set_storage_maximum(100);
    void* const block = allocate_permanent(40);
    EXPECT_TRUE(storage_fits(59));
    EXPECT_FALSE(storage_fits(60));
    EXPECT_FALSE(storage_fits(UINT64_MAX));
    set_storage_maximum(40);
    EXPECT_FALSE(storage_fits(0));
    set_storage_maximum(10);
    EXPECT_FALSE(storage_fits(0));
    _Wfree(block);
    set_storage_maximum(0);
    EXPECT_FALSE(storage_fits(0));
}

TEST_F(DynamicStorage, TheMaximumDoesNotConcernTemporaryBlocks) {
    set_storage_maximum(0);
    void* block = allocate_temporary(100000);
    ASSERT_NE(block, nullptr);
    block = resize_temporary(block, 200000);
    ASSERT_NE(block, nullptr);
    _Wfree(block);
    EXPECT_THAT(log_.errors(), IsEmpty());
}

TEST_F(DynamicStorage, AResizeCountsItsGrowthAgainstTheMaximum) {
    set_storage_maximum(2000);
    void* block = allocate_permanent(1500);
    std::memset(block, 'x', 1500);
    EXPECT_EQ(resize_permanent(block, 2000), nullptr);
    EXPECT_THAT(log_.errors(), IsEmpty());
    EXPECT_EQ(headerOf(block).size, 1500U);
    EXPECT_EQ(headerOf(block).tag, permanent_tag);
    EXPECT_EQ(static_cast<char*>(block)[1499], 'x');
    block = resize_permanent(block, 1999);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(report(), "data base memory : 1999/1999");
    _Wfree(block);
}

TEST_F(DynamicStorage, AResizeThatEndsBelow1025OrShrinksIsNotCapped) {
    void* small = allocate_permanent(10);
    void* large = allocate_permanent(5000);
    set_storage_maximum(100);
    small = resize_permanent(small, 1024);
    ASSERT_NE(small, nullptr);
    EXPECT_EQ(resize_permanent(small, 1025), nullptr);
    large = resize_permanent(large, 4000);
    ASSERT_NE(large, nullptr);
    large = resize_permanent(large, 4000);
    ASSERT_NE(large, nullptr);
    _Wfree(small);
    _Wfree(large);
}

TEST_F(DynamicStorage, ReportsWhatItCannotAllocate) {
    EXPECT_EQ(allocate_temporary(SIZE_MAX), nullptr);
    EXPECT_EQ(allocate_temporary(SIZE_MAX - 15), nullptr);
    EXPECT_EQ(allocate_temporary(SIZE_MAX - 16), nullptr);
    EXPECT_EQ(allocate_temporary(SIZE_MAX / 2), nullptr);
    EXPECT_THAT(log_.errors(),
                ElementsAre("_Wmalloc: unable to allocate 18446744073709551615 bytes",
                            "_Wmalloc: unable to allocate 18446744073709551600 bytes",
                            "_Wmalloc: unable to allocate 18446744073709551599 bytes",
                            "_Wmalloc: unable to allocate 9223372036854775807 bytes"));
}

TEST_F(DynamicStorage, ReportsWhatTheSystemRefuses) {
    EXPECT_EQ(allocate_temporary(tooLarge), nullptr);
    EXPECT_THAT(log_.errors(),
                ElementsAre("_Wmalloc: unable to allocate 288230376151711744 bytes"));
}

TEST_F(DynamicStorage, AResizeThatTheSystemRefusesLeavesTheBlockAsItWas) {
    auto* const block = static_cast<char*>(allocate_temporary(5));
    const Header before = headerOf(block);
    std::memcpy(block, "abcd", 5);
    EXPECT_EQ(resize_temporary(block, tooLarge), nullptr);
    EXPECT_THAT(log_.errors(),
                ElementsAre("_Wrealloc: unable to increase size from 5 to 288230376151711744."));
    EXPECT_STREQ(block, "abcd");
    EXPECT_EQ(std::memcmp(&before, block - 16, 16), 0);
    EXPECT_EQ(report(), "data base memory : 0/5");
    EXPECT_EQ(_Wfree(block), 0);
}

TEST_F(DynamicStorage, PrintsNumbersInFull) {
    EXPECT_EQ(allocate_permanent(SIZE_MAX), nullptr);
    EXPECT_EQ(allocate_permanent(4294967295), nullptr);
    EXPECT_THAT(log_.errors(),
                ElementsAre("_Wmalloc: allocating 18446744073709551615 bytes would exceed maximum "
                            "of 4294967295",
                            "_Wmalloc: allocating 4294967295 bytes would exceed maximum of "
                            "4294967295"));
}

TEST_F(DynamicStorage, AFailedRequestTakesNoSerial) {
    void* const before = allocate_temporary(1);
    EXPECT_EQ(allocate_temporary(SIZE_MAX), nullptr);
    void* const after = allocate_temporary(1);
    EXPECT_EQ(headerOf(after).serial, headerOf(before).serial + 1);
    _Wfree(before);
    _Wfree(after);
}

TEST_F(DynamicStorage, AFailedResizeLeavesTheBlockAsItWas) {
    auto* const block = static_cast<char*>(allocate_temporary(5));
    std::memcpy(block, "abcd", 5);
    EXPECT_EQ(resize_temporary(block, SIZE_MAX), nullptr);
    EXPECT_THAT(log_.errors(), ElementsAre("_Wrealloc: unable to increase size from 5 to "
                                           "18446744073709551615."));
    EXPECT_STREQ(block, "abcd");
    EXPECT_EQ(headerOf(block).tag, temporary_tag);
    EXPECT_EQ(report(), "data base memory : 0/5");
    EXPECT_EQ(_Wfree(block), 0);
}

TEST_F(DynamicStorage, ASecondFreeIsReported) {
    void* const block = allocate_permanent(10);
    EXPECT_EQ(_Wfree(block), 0);
    EXPECT_EQ(_Wfree(block), -1);
    EXPECT_EQ(_Wfree(block), -1);
    EXPECT_THAT(log_.fatals(), ElementsAre("Trying to free previously freed memory",
                                           "Trying to free previously freed memory"));
    EXPECT_THAT(log_.errors(), IsEmpty());
}

TEST_F(DynamicStorage, FreeingAnUnknownPointerIsReported) {
    int local = 5;
    auto* const block = static_cast<char*>(allocate_temporary(64));
    static const char text[] = "a text of the program";
    for (void* const foreign :
         {static_cast<void*>(&local), static_cast<void*>(block + 16),
          static_cast<void*>(block - 16), const_cast<void*>(static_cast<const void*>(text)),
          reinterpret_cast<void*>(16)}) {
        EXPECT_EQ(_Wfree(foreign), -1);
    }
    EXPECT_EQ(local, 5);
    EXPECT_THAT(log_.fatals(), ::testing::AllOf(::testing::SizeIs(5),
                                                ::testing::Each("Trying to free unallocated or "
                                                                "corrupt memory")));
    EXPECT_EQ(_Wfree(block), 0);
}

TEST_F(DynamicStorage, ADamagedTagIsReported) {
    void* const block = allocate_temporary(10);
    const std::string serial = std::to_string(headerOf(block).serial);
    for (const std::uint32_t tag : {0U, freed_tag, 0x12345678U}) {
        setTag(block, tag);
        EXPECT_EQ(_Wfree(block), -1);
        EXPECT_EQ(resize_temporary(block, 20), nullptr);
        EXPECT_THAT(log_.fatals(),
                    ElementsAre("Trying to free unallocated or corrupt memory",
                                "Trying to reallocp unallocated or corrupt memory #" + serial));
        log_.fatals().clear();
    }
    EXPECT_EQ(report(), "data base memory : 0/10");
    setTag(block, temporary_tag);
    EXPECT_EQ(_Wfree(block), 0);
}

TEST_F(DynamicStorage, AResizeWithTheOtherTagIsReportedWithTheSerial) {
    void* const permanent = allocate_permanent(10);
    void* const temporary = allocate_temporary(10);
    EXPECT_EQ(resize_temporary(permanent, 20), nullptr);
    EXPECT_EQ(resize_permanent(temporary, 20), nullptr);
    EXPECT_THAT(log_.fatals(), ElementsAre("Trying to reallocp permanent allocated memory#" +
                                               std::to_string(headerOf(permanent).serial),
                                           "Trying to reallocp temporary allocated memory#" +
                                               std::to_string(headerOf(temporary).serial)));
    EXPECT_EQ(report(), "data base memory : 10/20");
    _Wfree(permanent);
    _Wfree(temporary);
}

TEST_F(DynamicStorage, AResizeOfFreedOrForeignMemoryIsReported) {
    void* const block = allocate_permanent(10);
    const std::string serial = std::to_string(headerOf(block).serial);
    _Wfree(block);
    int local = 0;
    EXPECT_EQ(resize_permanent(block, 20), nullptr);
    EXPECT_EQ(resize_permanent(&local, 20), nullptr);
    EXPECT_THAT(log_.fatals(), ElementsAre("Trying to reallocp previously freed memory #" + serial,
                                           "Trying to reallocp unallocated or corrupt memory #0"));
}

TEST_F(DynamicStorage, TheOldAddressOfABlockThatMovedIsFreed) {
    std::vector<void*> blocks;
    void* old = nullptr;
    for (int i = 0; i < 100 && old == nullptr; ++i) {
        void* const block = allocate_temporary(64);
        blocks.push_back(allocate_temporary(64));  // prevents growing in place
        blocks.push_back(resize_temporary(block, 100000));
        if (blocks.back() != block) old = block;
    }
    ASSERT_NE(old, nullptr);
    EXPECT_EQ(_Wfree(old), -1);
    EXPECT_THAT(log_.fatals(), ElementsAre("Trying to free previously freed memory"));
    for (void* const block : blocks)
        EXPECT_EQ(_Wfree(block), 0);
}

TEST_F(DynamicStorage, RemembersTheLast4096FreedAddresses) {
    std::vector<void*> blocks(4097);
    for (void*& block : blocks)
        block = allocate_temporary(1);
    for (void* const block : blocks)
        EXPECT_EQ(_Wfree(block), 0);
    EXPECT_EQ(_Wfree(blocks[1]), -1);
    EXPECT_EQ(_Wfree(blocks[0]), -1);
    EXPECT_THAT(log_.fatals(), ElementsAre("Trying to free previously freed memory",
                                           "Trying to free unallocated or corrupt memory"));
}

TEST_F(DynamicStorage, KeepsManyBlocksApart) {
    std::vector<char*> blocks(20000);
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        blocks[i] = static_cast<char*>(allocate_permanent(i % 40 + 1));
        blocks[i][0] = static_cast<char>(i);
    }
    for (std::size_t i = 0; i < blocks.size(); i += 2) {
        blocks[i] = static_cast<char*>(resize_permanent(blocks[i], i % 300 + 1));
    }
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        ASSERT_EQ(blocks[i][0], static_cast<char>(i));
        ASSERT_EQ(_Wfree(blocks[i]), 0);
    }
    EXPECT_THAT(log_.fatals(), IsEmpty());
}

TEST_F(DynamicStorage, AnyTagIsKeptButOnlyBlocksOfTheTwoKindsAreFreed) {
    void* block = _Wmalloc(7, 10);
    EXPECT_EQ(report(), "data base memory : 0/10");
    block = _Wrealloc(7, block, 20);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(_Wfree(block), -1);
    setTag(block, temporary_tag);
    EXPECT_EQ(_Wfree(block), 0);
}

TEST_F(DynamicStorage, AHandlerMayThrow) {
    void* const block = allocate_temporary(10);
    set_error_handler([](const char* message) { throw std::runtime_error(message); });
    set_fatal_handler([](const char* message) { throw std::runtime_error(message); });
    EXPECT_THROW(resize_temporary(block, SIZE_MAX), std::runtime_error);
    EXPECT_THROW(resize_permanent(block, 20), std::runtime_error);
    EXPECT_THROW(allocate_temporary(SIZE_MAX), std::runtime_error);
    EXPECT_EQ(report(), "data base memory : 0/10");
    EXPECT_EQ(_Wfree(block), 0);
    EXPECT_THROW(_Wfree(block), std::runtime_error);
}

TEST_F(DynamicStorage, MisuseEndsTheProcessByDefault) {
    TRV_EXPECT_FATAL(
        [] {
            set_fatal_handler(nullptr);
            void* const block = allocate_temporary(1);
            _Wfree(block);
            _Wfree(block);
        },
        "Trying to free previously freed memory\n");
}

}  // namespace
}  // namespace trv
