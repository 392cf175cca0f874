// Inputs that are chosen to slow a store down. The time must not grow faster than n log n.

#include <tests/common/channel_log.h>
#include <tests/common/growth.h>
#include <tests/environment/store_access.h>
#include <trvfiles/environment/message_store.h>
#include <trvfiles/support/dynamic_storage.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace trv {
namespace {

using testing::byProgram;
using testing::ChannelLog;
using testing::growth;
using testing::processorTime;
using testing::Store;
using testing::valueOf;

// 16 times the entries: linear work takes 16 times as long, n log n 22 times, quadratic 256 times.
// Caches make the large input slower by up to 2.
constexpr int small = 2000;
constexpr int large = 32000;
constexpr double maxGrowth = 90;

void fill(message_store* store, int count, const char* text) {
    add_section(store, "s");
    for (int number = 0; number < count; ++number)
        append_message(store, 0, text, byProgram, 0);
}

std::vector<int> ascending(int count) {
    std::vector<int> numbers(static_cast<std::size_t>(count));
    std::iota(numbers.begin(), numbers.end(), 0);
    return numbers;
}

std::vector<int> descending(int count) {
    const std::vector<int> numbers = ascending(count);
    return {numbers.rbegin(), numbers.rend()};
}

std::vector<int> shuffled(int count) {
    std::vector<int> numbers = ascending(count);
    std::shuffle(numbers.begin(), numbers.end(), std::mt19937(20260101));
    return numbers;
}

double timeToReplace(const std::vector<int>& numbers, const char* before, const char* after) {
    const Store store;
    fill(store, static_cast<int>(numbers.size()), before);
    return processorTime([&] {
        for (const int number : numbers)
            replace_message(store, 0, number, after, byProgram, 0);
    });
}

TEST(MessageStoreGrowth, OfReplacingEqualNamesIsThatOfTheirNumber) {
    for (const auto& order : {ascending, descending, shuffled}) {
        const auto leave = [&](int count) { return timeToReplace(order(count), "A = 1", "none"); };
        EXPECT_LT(growth(small, large, leave), maxGrowth);
        const auto come = [&](int count) { return timeToReplace(order(count), "none", "A = 1"); };
        EXPECT_LT(growth(small, large, come), maxGrowth);
        const auto move = [&](int count) { return timeToReplace(order(count), "A = 1", "B = 1"); };
        EXPECT_LT(growth(small, large, move), maxGrowth);
    }
}

// Each entry is the first of its name when it is removed.
void fillWithDeleted(message_store* store, int count) {
    fill(store, count, "none");
    for (int number = count - 1; number >= 0; --number) {
        replace_message(store, 0, number, "A = 1", byProgram, 0);
        remove_parameter(store, 0, "A");
    }
    append_message(store, 0, "A = last", byProgram, 0);
}

TEST(MessageStoreGrowth, OfALookupIsNotThatOfTheDeletedEntriesBeforeIt) {
    const auto lookUp = [](int count) {
        const Store store;
        fillWithDeleted(store, count);
        EXPECT_EQ(valueOf(store, 0, "A"), "last");
        return processorTime([&] {
            for (int lookup = 0; lookup < 20000; ++lookup)
                find_parameter(store, 0, "A", true);
        });
    };
    EXPECT_LT(growth(500, large, lookUp), 5);
}

TEST(MessageStoreGrowth, OfRemovingAnEntryAgainAndAgainIsNotThatOfItsHistory) {
    const auto replaceAndRemove = [](int count) {
        const Store store;
        fill(store, 1, "A = 1");
        return processorTime([&] {
            for (int round = 0; round < count; ++round) {
                set_variable(store, 0, "A = 2");
                remove_parameter(store, 0, "A");
            }
        });
    };
    EXPECT_LT(growth(small, large, replaceAndRemove), maxGrowth);
}

std::string storageReport() {
    char buffer[64];
    storage_report(buffer, sizeof buffer);
    return buffer;
}

// With three quarters of the storage in use the texts cannot grow by half any more.
TEST(MessageStoreGrowth, NearTheEndOfTheStorageTakesFewSteps) {
    const ChannelLog log;
    const Store store;
    fill(store, 1, std::string(3000000, 'x').c_str());
    set_storage_maximum(4000000);
    const std::string text(900, 'x');
    std::string report = storageReport();
    int steps = 0;
    int messages = 0;
    for (; append_message(store, 0, text.c_str(), byProgram, 0) == 0; ++messages) {
        if (storageReport() != report) ++steps;
        report = storageReport();
    }
    set_storage_maximum(4294967295U);
    EXPECT_GT(messages, 1000);
    EXPECT_LT(steps, 40);
}

// Names of 240 characters in 15 pairs of blocks. In each pair either no bit or three bits differ: a
// hash without a key that multiplies by an odd factor and shifts by 32 gives all of them one hash.
std::string similarName(int number) {
    std::string name;
    for (int pair = 0; pair < 15; ++pair) {
        std::string blocks(16, 'a');
        if ((number >> pair) % 2 != 0) blocks[7] = blocks[11] = blocks[15] = '\xE1';
        name += blocks;
    }
    return name;
}

TEST(MessageStoreGrowth, OfMergingSimilarNamesIsThatOfOthers) {
    const auto timeToMerge = [](int similar) {
        const Store store;
        fill(store, 0, "");
        std::vector<std::string> texts;
        for (int number = 0; number < small; ++number) {
            std::string name = similar != 0 ? similarName(number) : std::to_string(number);
            name.resize(240, 'x');
            texts.push_back(name + " = 1");
        }
        return processorTime([&] {
            for (int round = 0; round < 2; ++round) {
                for (const std::string& text : texts)
                    set_parameter(store, 0, text.c_str(), byProgram, 0);
            }
        });
    };
    EXPECT_LT(growth(0, 1, timeToMerge), 5);
}

}  // namespace
}  // namespace trv
