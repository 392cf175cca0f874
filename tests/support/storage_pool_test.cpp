#include <tests/common/channel_log.h>
#include <trvfiles/support/dynamic_storage.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>
#include <string>

namespace trv {
namespace {

using testing::ChannelLog;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* beyond = "Dynamic storage: trying to access unallocated memory\n";

std::string report() {
    char text[64];
    storage_report(text, sizeof text);
    return text;
}

// All permanent bytes except those of the pool's record.
std::string dataReport(std::uint64_t bytes) {
    const std::string all = std::to_string(bytes + 24);
    return "data base memory : " + all + "/" + all;
}

// No block is in use before and after each test.
class StoragePool : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(report(), "data base memory : 0/0"); }
    void TearDown() override {
        EXPECT_EQ(report(), "data base memory : 0/0");
        set_storage_maximum(4294967295);
    }
    ChannelLog log_;
};

TEST_F(StoragePool, HandsOutOffsetsInMultiplesOf4) {
    storage_pool* const pool = pool_create(100);
    EXPECT_EQ(pool_reserve(pool, 3), 0);
    EXPECT_EQ(pool_reserve(pool, 4), 4);
    EXPECT_EQ(pool_reserve(pool, 5), 8);
    EXPECT_EQ(pool_reserve(pool, 0), 16);
    EXPECT_EQ(pool_used(pool), 16);
    EXPECT_EQ(report(), dataReport(100));
    pool_destroy(pool);
}

TEST_F(StoragePool, GrowsByItsInitialSize) {
    storage_pool* const pool = pool_create(100);
    EXPECT_EQ(pool_reserve(pool, 250), 0);
    EXPECT_EQ(pool_used(pool), 252);
    EXPECT_EQ(report(), dataReport(300));
    EXPECT_EQ(pool_reserve(pool, 48), 252);
    EXPECT_EQ(report(), dataReport(300));
    EXPECT_EQ(pool_reserve(pool, 1), 300);
    EXPECT_EQ(report(), dataReport(400));
    pool_destroy(pool);
}

TEST_F(StoragePool, KeepsItsContentsAtTheirOffsets) {
    storage_pool* const pool = pool_create(8);
    const std::int32_t first = pool_add_string(pool, "first");
    for (int i = 0; i < 10000; ++i)
        pool_add_string(pool, std::to_string(i).c_str());
    EXPECT_EQ(first, 0);
    EXPECT_STREQ(static_cast<char*>(pool_address(pool, first)), "first");
    EXPECT_STREQ(static_cast<char*>(pool_address(pool, 8)), "0");
    EXPECT_STREQ(static_cast<char*>(pool_address(pool, 12)), "1");
    pool_destroy(pool);
}

TEST_F(StoragePool, AddressesOnlyWhatIsInUse) {
    storage_pool* const pool = pool_create(100);
    EXPECT_EQ(pool_address(pool, 0), nullptr);
    EXPECT_THAT(log_.errors(), ElementsAre(beyond));
    pool_reserve(pool, 8);
    EXPECT_NE(pool_address(pool, 0), nullptr);
    EXPECT_EQ(static_cast<char*>(pool_address(pool, 7)) - static_cast<char*>(pool_address(pool, 0)),
              7);
    EXPECT_EQ(pool_address(pool, -1), nullptr);
    EXPECT_THAT(log_.errors(), ElementsAre(beyond));
    EXPECT_EQ(pool_address(pool, 8), nullptr);
    EXPECT_EQ(pool_address(pool, INT32_MAX), nullptr);
    EXPECT_THAT(log_.errors(), ElementsAre(beyond, beyond, beyond));
    EXPECT_THAT(log_.fatals(), IsEmpty());
    pool_destroy(pool);
}

TEST_F(StoragePool, StoresTextsWithTheirTerminators) {
    storage_pool* const pool = pool_create(100);
    EXPECT_EQ(pool_add_string(pool, "abc"), 0);
    EXPECT_EQ(pool_add_string(pool, "abcd"), 4);
    EXPECT_EQ(pool_add_string(pool, ""), 12);
    EXPECT_EQ(pool_used(pool), 16);
    EXPECT_STREQ(static_cast<char*>(pool_address(pool, 0)), "abc");
    EXPECT_STREQ(static_cast<char*>(pool_address(pool, 4)), "abcd");
    EXPECT_STREQ(static_cast<char*>(pool_address(pool, 12)), "");
    pool_destroy(pool);
}

TEST_F(StoragePool, StoresATextOfItsOwn) {
    storage_pool* const pool = pool_create(8);
    pool_add_string(pool, "abcdefg");
    for (int i = 0; i < 100; ++i) {
        const auto* const own = static_cast<const char*>(pool_address(pool, i * 8 + 1));
        const std::string expected = own;
        const std::int32_t offset = pool_add_string(pool, own);
        ASSERT_EQ(static_cast<char*>(pool_address(pool, offset)), expected);
        pool_reserve(pool, 8 - pool_used(pool) % 8);
        std::memcpy(pool_address(pool, (i + 1) * 8), "abcdefg", 8);
    }
    pool_destroy(pool);
}

TEST_F(StoragePool, TrimsToWhatIsInUse) {
    storage_pool* const pool = pool_create(100);
    pool_add_string(pool, "abc");
    pool_trim(pool);
    EXPECT_EQ(report(), dataReport(4));
    EXPECT_EQ(pool_used(pool), 4);
    EXPECT_EQ(pool_add_string(pool, "def"), 4);
    EXPECT_EQ(report(), dataReport(104));
    EXPECT_STREQ(static_cast<char*>(pool_address(pool, 0)), "abc");
    pool_destroy(pool);
}

TEST_F(StoragePool, GrowsAgainWhenItWasTrimmedToNothing) {
    storage_pool* const pool = pool_create(100);
    pool_trim(pool);
    EXPECT_EQ(report(), dataReport(0));
    EXPECT_EQ(pool_add_string(pool, "abc"), 0);
    EXPECT_EQ(report(), dataReport(100));
    pool_destroy(pool);
}

TEST_F(StoragePool, HasAnInitialSize) {
    EXPECT_EQ(pool_create(0), nullptr);
    EXPECT_EQ(pool_create(-1), nullptr);
    EXPECT_THAT(log_.errors(), IsEmpty());
    storage_pool* const pool = pool_create(1);
    EXPECT_EQ(pool_reserve(pool, 1), 0);
    EXPECT_EQ(report(), dataReport(4));
    pool_destroy(pool);
}

TEST_F(StoragePool, CannotBeCreatedWithoutMemory) {
    set_storage_maximum(2000);
    EXPECT_EQ(pool_create(5000), nullptr);
    EXPECT_THAT(log_.errors(),
                ElementsAre("_Wmalloc: allocating 5000 bytes would exceed maximum of 2000",
                            "Dynamic storage: no more memory\n"));
}

TEST_F(StoragePool, ReportsWhatItCannotGrowTo) {
    set_storage_maximum(3000);
    storage_pool* const pool = pool_create(2000);
    EXPECT_EQ(pool_add_string(pool, "abc"), 0);
    EXPECT_EQ(pool_reserve(pool, 2000), -1);
    EXPECT_EQ(pool_add_string(pool, std::string(2000, 'x').c_str()), -1);
    EXPECT_THAT(
        log_.errors(),
        ElementsAre("Dynamic storage: no more memory, could not expand from 2000 to 4000 bytes\n",
                    "Dynamic storage: no more memory, could not expand from 2000 to 4000 bytes\n"));
    EXPECT_EQ(pool_used(pool), 4);
    EXPECT_EQ(report(), dataReport(2000));
    EXPECT_EQ(pool_reserve(pool, 1996), 4);
    pool_destroy(pool);
}

TEST_F(StoragePool, ReportsTheStepThatFailedAndKeepsTheOnesBefore) {
    storage_pool* const pool = pool_create(600);
    set_storage_maximum(24 + 1800);
    EXPECT_EQ(pool_reserve(pool, 1500), -1);
    EXPECT_THAT(log_.errors(), ElementsAre("Dynamic storage: no more memory, could not expand from "
                                           "1200 to 1800 bytes\n"));
    EXPECT_EQ(pool_used(pool), 0);
    EXPECT_EQ(report(), dataReport(1200));
    EXPECT_EQ(pool_reserve(pool, 1200), 0);
    EXPECT_EQ(log_.errors().size(), 1U);
    pool_destroy(pool);
}

TEST_F(StoragePool, TakesAsManyStepsAsTheMaximumAllows) {
    storage_pool* const pool = pool_create(1);
    set_storage_maximum(24 + 2976);
    EXPECT_EQ(pool_reserve(pool, 5000), -1);
    EXPECT_EQ(report(), dataReport(2975));
    EXPECT_EQ(pool_reserve(pool, 2976), -1);
    EXPECT_EQ(report(), dataReport(2975));
    set_storage_maximum(24 + 100000);
    EXPECT_EQ(pool_reserve(pool, INT32_MAX), -1);
    EXPECT_EQ(report(), dataReport(99999));
    EXPECT_THAT(
        log_.errors(),
        ElementsAre("Dynamic storage: no more memory, could not expand from 2975 to 2976 bytes\n",
                    "Dynamic storage: no more memory, could not expand from 2975 to 2976 bytes\n",
                    "Dynamic storage: no more memory, could not expand from 99999 to 100000 "
                    "bytes\n"));
    EXPECT_EQ(pool_used(pool), 0);
    pool_destroy(pool);
}

TEST_F(StoragePool, GrowsByTheStepsThatAreAlwaysAllowed) {
    set_storage_maximum(0);
    storage_pool* const pool = pool_create(100);
    EXPECT_EQ(pool_reserve(pool, 5000), -1);
    EXPECT_THAT(log_.errors(), ElementsAre("Dynamic storage: no more memory, could not expand from "
                                           "1000 to 1100 bytes\n"));
    EXPECT_EQ(report(), dataReport(1000));
    pool_destroy(pool);
}

TEST_F(StoragePool, NeverGrowsBeyondItsOffsets) {
    void* const room = allocate_temporary(2147483600);
    if (room == nullptr) GTEST_SKIP() << "No room for a pool of this size";
    _Wfree(room);
    storage_pool* const pool = pool_create(100);
    EXPECT_EQ(pool_reserve(pool, INT32_MAX), -1);
    EXPECT_EQ(report(), dataReport(2147483600));
    EXPECT_EQ(pool_reserve(pool, 200), 0);
    EXPECT_EQ(pool_reserve(pool, INT32_MAX - 100), -1);
    EXPECT_THAT(log_.errors(), ElementsAre("Dynamic storage: no more memory, could not expand from "
                                           "2147483600 to 2147483700 bytes\n",
                                           "Dynamic storage: no more memory, could not expand from "
                                           "2147483600 to 2147483700 bytes\n"));
    pool_trim(pool);
    EXPECT_EQ(report(), dataReport(200));
    pool_destroy(pool);
}

TEST_F(StoragePool, PrintsAGrowthBeyondItsOffsetsInFull) {
    storage_pool* const pool = pool_create(1500000000);
    if (pool == nullptr) GTEST_SKIP() << "No room for a pool of this size";
    EXPECT_EQ(pool_reserve(pool, 1500000001), -1);
    EXPECT_THAT(log_.errors(), ElementsAre("Dynamic storage: no more memory, could not expand from "
                                           "1500000000 to 3000000000 bytes\n"));
    pool_destroy(pool);
}

TEST_F(StoragePool, RefusesANegativeSize) {
    storage_pool* const pool = pool_create(100);
    EXPECT_EQ(pool_reserve(pool, -1), -1);
    EXPECT_EQ(pool_reserve(pool, INT32_MIN), -1);
    EXPECT_EQ(pool_used(pool), 0);
    pool_destroy(pool);
}

TEST_F(StoragePool, NoPoolAndNoTextGiveNothing) {
    EXPECT_EQ(pool_reserve(nullptr, 4), -1);
    EXPECT_EQ(pool_address(nullptr, 0), nullptr);
    EXPECT_EQ(pool_add_string(nullptr, "a"), -1);
    EXPECT_EQ(pool_used(nullptr), 0);
    pool_trim(nullptr);
    pool_destroy(nullptr);
    storage_pool* const pool = pool_create(100);
    EXPECT_EQ(pool_add_string(pool, nullptr), -1);
    EXPECT_EQ(pool_used(pool), 0);
    pool_destroy(pool);
    EXPECT_THAT(log_.errors(), IsEmpty());
}

TEST_F(StoragePool, AHandlerMayThrow) {
    set_storage_maximum(3000);
    set_error_handler([](const char* message) { throw std::runtime_error(message); });
    EXPECT_THROW(pool_create(5000), std::runtime_error);
    storage_pool* const pool = pool_create(2000);
    EXPECT_THROW(pool_reserve(pool, 3000), std::runtime_error);
    EXPECT_EQ(pool_reserve(pool, 2000), 0);
    pool_destroy(pool);
}

// A pool of this size has its own pages, which are unmapped when it moves. Reading a text from the
// old address would end the process.
TEST_F(StoragePool, MovesWhileItStoresATextOfItsOwn) {
    storage_pool* const pools[2] = {pool_create(300000), pool_create(300000)};
    const std::string text(199999, 'x');
    for (storage_pool* const pool : pools)
        ASSERT_EQ(pool_add_string(pool, text.c_str()), 0);
    const void* const before = pool_address(pools[0], 0);
    for (std::int32_t number = 1; number < 20; ++number) {
        for (storage_pool* const pool : pools) {
            const std::int32_t latest = (number - 1) * 200000;
            const auto* const own = static_cast<const char*>(pool_address(pool, latest));
            ASSERT_EQ(pool_add_string(pool, own), latest + 200000);
            ASSERT_EQ(static_cast<char*>(pool_address(pool, latest + 200000)), text);
        }
    }
    EXPECT_NE(pool_address(pools[0], 0), before);
    for (storage_pool* const pool : pools)
        pool_destroy(pool);
}

}  // namespace
}  // namespace trv
