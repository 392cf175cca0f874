#include <tests/common/channel_log.h>
#include <tests/environment/store_access.h>
#include <trvfiles/environment/message_store.h>
#include <trvfiles/support/dynamic_storage.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace trv {
namespace {

using testing::byProgram;
using testing::ChannelLog;
using testing::messagesOf;
using testing::recordOf;
using testing::Store;
using testing::valueOf;

std::string report() {
    char buffer[64];
    storage_report(buffer, sizeof buffer);
    return buffer;
}

std::uint64_t permanentBytes() {
    const std::string text = report();
    return std::stoull(text.substr(text.find(':') + 1));
}

// Caps permanent storage at what is in use and a little more, so that blocks of 1025 bytes and more
// are refused and smaller ones are not.
class StorageCap {
public:
    explicit StorageCap(std::uint64_t spare) { set_storage_maximum(permanentBytes() + spare); }
    ~StorageCap() { set_storage_maximum(4294967295U); }
    StorageCap(const StorageCap&) = delete;
    StorageCap& operator=(const StorageCap&) = delete;
};

// Everything that a host can read from a store.
using Picture = std::vector<std::pair<std::string, std::vector<std::string>>>;
Picture pictureOf(const message_store* store) {
    Picture picture;
    for (int section = 0; section < section_count(store); ++section)
        picture.emplace_back(section_name(store, section), messagesOf(store, section));
    return picture;
}

TEST(MessageStoreStorage, IsAllReleasedWithTheStore) {
    const std::string before = report();
    message_store* store = create_store();
    for (int section = 0; section < 50; ++section) {
        add_section(store, std::to_string(section).c_str());
        for (int number = 0; number < 100; ++number) {
            const std::string text = "N" + std::to_string(number % 60) + " = +," + report();
            set_parameter(store, section, text.c_str(), register_file_name(store, text.c_str()), 1);
        }
        remove_parameter(store, section, "N1");
    }
    find_parameter(store, 0, "N2", true);
    EXPECT_NE(report(), before);
    destroy_store(store);
    EXPECT_EQ(report(), before);
}

TEST(MessageStoreStorage, OfAnEmptyStoreIsReleasedToo) {
    const std::string before = report();
    destroy_store(create_store());
    EXPECT_EQ(report(), before);
}

TEST(MessageStoreStorage, ThatRunsOutFailsTheAdditionAndChangesNothing) {
    const ChannelLog log;
    const Store store;
    add_section(store, "s");
    set_variable(store, 0, "A = 1");
    set_variable(store, 0, "A = +,2");
    append_message(store, 0, "text", byProgram, 0);
    const Picture before = pictureOf(store);
    const std::string big(5000, 'x');
    {
        const StorageCap cap(100);
        EXPECT_EQ(append_message(store, 0, big.c_str(), byProgram, 0), -1);
        EXPECT_EQ(append_message(store, 0, ("B = " + big).c_str(), byProgram, 0), -1);
        EXPECT_EQ(replace_message(store, 0, 0, big.c_str(), byProgram, 0), -1);
        EXPECT_EQ(set_message(store, 0, 1, big.c_str()), -1);
        EXPECT_EQ(set_message(store, 0, 2, big.c_str()), -1);
        EXPECT_EQ(set_message(store, 0, 30000, "x"), -1);
        EXPECT_EQ(set_variable(store, 0, ("A = " + big).c_str()), -1);
        EXPECT_EQ(set_variable(store, 0, ("C = " + big).c_str()), -1);
        EXPECT_EQ(register_file_name(store, big.c_str()), -1);
        EXPECT_EQ(pictureOf(store), before);
        EXPECT_EQ(valueOf(store, 0, "A"), "1,2");
        EXPECT_EQ(valueOf(store, 0, "B"), "<none>");
        EXPECT_EQ(valueOf(store, 0, "C"), "<none>");
        EXPECT_EQ(remove_parameter(store, 0, "C"), -2);
    }
    EXPECT_FALSE(log.errors().empty());
    EXPECT_TRUE(log.fatals().empty());
    EXPECT_EQ(set_variable(store, 0, ("A = +," + big).c_str()), 0);
    EXPECT_EQ(valueOf(store, 0, "A"), "1,2," + big);
    EXPECT_EQ(set_message(store, 0, 30000, "x"), 0);
}

TEST(MessageStoreStorage, ThatRunsOutFailsASectionAndChangesNothing) {
    const ChannelLog log;
    const Store store;
    int sections = 0;
    {
        const StorageCap cap(0);
        while (add_section(store, ("s" + std::to_string(sections)).c_str()) == sections)
            ++sections;
        ASSERT_LT(sections, 32767);
        EXPECT_EQ(section_count(store), sections);
        EXPECT_EQ(find_or_add_section(store, "one more"), -1);
        EXPECT_EQ(find_section(store, "one more"), -1);
        EXPECT_EQ(section_count(store), sections);
    }
    for (int section = 0; section < sections; ++section) {
        const std::string name = "s" + std::to_string(section);
        ASSERT_EQ(section_name(store, section), name);
        ASSERT_EQ(find_section(store, name.c_str()), section);
    }
    EXPECT_EQ(find_or_add_section(store, "one more"), sections);
}

TEST(MessageStoreStorage, ThatRunsOutAtAnyAllocationChangesNothing) {
    const ChannelLog log;
    const Store store;
    add_section(store, "s");
    for (int entry = 0; entry < 3000; ++entry) {
        const std::string name = "N" + std::to_string(entry);
        const std::string text = name + " = " + std::to_string(entry);
        int result = -1;
        // Starts without a spare byte, so that each of the blocks that have to grow is refused in
        // turn.
        for (std::uint64_t spare = 0; result != 0; spare = 2 * spare + 256) {
            const StorageCap cap(spare);
            result = set_variable(store, 0, text.c_str());
            ASSERT_EQ(message_count(store, 0), result == 0 ? entry + 1 : entry);
            ASSERT_EQ(valueOf(store, 0, name.c_str()),
                      result == 0 ? std::to_string(entry) : "<none>");
        }
    }
    for (int entry = 0; entry < 3000; ++entry)
        ASSERT_EQ(valueOf(store, 0, ("N" + std::to_string(entry)).c_str()), std::to_string(entry));
}

TEST(MessageStoreStorage, ThatRunsOutBelowThePlaceholdersLeavesNoneOfThem) {
    const ChannelLog log;
    for (const int number : {40, 300, 3000, 30000}) {
        const Store store;
        add_section(store, "s");
        int result = -1;
        for (std::uint64_t spare = 0; result != 0; spare += 1024 + spare / 4) {
            const StorageCap cap(spare);
            result = set_message(store, 0, number, "A = 1");
            ASSERT_EQ(message_count(store, 0), result == 0 ? number + 1 : 0);
        }
        EXPECT_STREQ(get_message(store, 0, number - 1), "undefined message");
        EXPECT_EQ(valueOf(store, 0, "A"), "1");
    }
}

TEST(MessageStoreStorage, NearItsEndIsUsedToTheLastBlock) {
    const ChannelLog log;
    const Store store;
    add_section(store, "s");
    const std::string text(900, 'x');
    int messages = 0;
    const StorageCap cap(100000);
    while (append_message(store, 0, text.c_str(), byProgram, 0) == 0)
        ++messages;
    EXPECT_GT(messages * 900, 90000);
    EXPECT_EQ(message_count(store, 0), messages);
}

// A record of 12 bytes and a terminator, at a multiple of 4.
constexpr std::uint64_t bytesOfAnEmptyText = 16;

TEST(MessageStoreStorage, IsTakenForEachEmptyText) {
    const Store store;
    add_section(store, "s");
    const std::int32_t file = register_file_name(store, "f");
    std::uint64_t before = permanentBytes();
    for (int number = 0; number < 5000; ++number)
        ASSERT_EQ(append_message(store, 0, "", file, number), 0);
    EXPECT_GE(permanentBytes() - before, 5000 * bytesOfAnEmptyText);
    before = permanentBytes();
    for (int line = 0; line < 5000; ++line)
        ASSERT_EQ(replace_message(store, 0, 4999, "", file, line), 0);
    EXPECT_GE(permanentBytes() - before, 5000 * bytesOfAnEmptyText);
    for (int number = 0; number < 5000; ++number) {
        ASSERT_STREQ(get_message(store, 0, number), "");
        ASSERT_EQ(recordOf(get_message(store, 0, number)).line, number);
    }
}

TEST(MessageStoreStorage, IsTakenForALongTextOnce) {
    const ChannelLog log;
    const std::string text(1000000, 'x');
    constexpr std::uint64_t spare = 1010000;
    {
        const Store store;
        add_section(store, "s");
        const StorageCap cap(spare);
        EXPECT_EQ(append_message(store, 0, text.c_str(), byProgram, 0), 0);
        EXPECT_EQ(append_message(store, 0, text.c_str(), byProgram, 0), -1);
    }
    {
        const Store store;
        add_section(store, "s");
        append_message(store, 0, "short", byProgram, 0);
        const StorageCap cap(spare);
        EXPECT_EQ(replace_message(store, 0, 0, text.c_str(), byProgram, 0), 0);
        EXPECT_EQ(replace_message(store, 0, 0, text.c_str(), byProgram, 0), -1);
        EXPECT_EQ(get_message(store, 0, 0), text);
    }
    {
        const Store store;
        add_section(store, "s");
        const StorageCap cap(spare);
        EXPECT_EQ(set_message(store, 0, 10, text.c_str()), 0);
        EXPECT_EQ(message_count(store, 0), 11);
    }
}

// Each placeholder takes a record of 12 bytes and 18 for "undefined message", at a multiple of 4.
TEST(MessageStoreStorage, IsTakenForEachPlaceholderOnce) {
    const ChannelLog log;
    const Store store;
    add_section(store, "s");
    constexpr std::uint64_t lists = 2 * 4 * 30001;
    const StorageCap cap(30000 * 32 + 30000 + lists + 1024);
    EXPECT_EQ(set_message(store, 0, 30000, ""), 0);
    EXPECT_EQ(message_count(store, 0), 30001);
}

TEST(MessageStoreStorage, IsFoundForAnEmptyStoreWhateverTheMaximum) {
    const ChannelLog log;
    const std::string before = report();
    set_storage_maximum(0);
    destroy_store(create_store());
    EXPECT_EQ(add_section(Store(), "s"), 0);
    set_storage_maximum(4294967295U);
    EXPECT_EQ(report(), before);
    EXPECT_TRUE(log.errors().empty());
}

// A block of this size has its own pages, which are unmapped when it moves. Reading a text from the
// old address would end the process.
TEST(MessageStoreStorage, MovesWhileItTakesATextOfItsOwn) {
    const Store stores[2];
    const std::string text(200000, 'x');
    for (const Store& store : stores) {
        add_section(store, "s");
        append_message(store, 0, text.c_str(), byProgram, 0);
    }
    const char* const before = get_message(stores[0], 0, 0);
    for (int number = 1; number < 40; ++number) {
        for (const Store& store : stores) {
            const char* const own = get_message(store, 0, number - 1);
            if (number % 3 == 0) {
                ASSERT_EQ(append_message(store, 0, own, byProgram, 0), 0);
            } else if (number % 3 == 1) {
                ASSERT_EQ(set_message(store, 0, number, own), 0);
            } else {
                ASSERT_EQ(append_message(store, 0, "", byProgram, 0), 0);
                ASSERT_EQ(replace_message(store, 0, number, get_message(store, 0, number - 1),
                                          byProgram, 0),
                          0);
            }
            ASSERT_EQ(get_message(store, 0, number), text);
        }
    }
    EXPECT_NE(get_message(stores[0], 0, 0), before);
}

TEST(MessageStoreStorage, TakesSpaceForTheMissingPlaceholdersAlone) {
    const ChannelLog log;
    const Store store;
    add_section(store, "s");
    for (int number = 0; number < 20000; ++number)
        ASSERT_EQ(append_message(store, 0, "text", byProgram, 0), 0);
    // The list of the messages may double; 20 000 placeholders would take over 600 000 bytes more.
    const StorageCap cap(300000);
    EXPECT_EQ(set_message(store, 0, 20001, "last"), 0);
    EXPECT_STREQ(get_message(store, 0, 20000), "undefined message");
    EXPECT_STREQ(get_message(store, 0, 20001), "last");
}

}  // namespace
}  // namespace trv
