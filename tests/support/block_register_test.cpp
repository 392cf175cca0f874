#include <trvfiles/support/block_register.h>

#include <gtest/gtest.h>

#include <list>
#include <map>
#include <random>
#include <utility>
#include <vector>

namespace trv {
namespace {

using State = block_register::state;

const void* address(std::uintptr_t number) {
    return reinterpret_cast<const void*>(number * 16);
}

class BlockRegister : public ::testing::Test {
protected:
    void add(std::uintptr_t number, std::uint32_t serial) {
        ASSERT_TRUE(register_.reserve());
        register_.add(address(number), serial);
    }
    void retire(std::uintptr_t number) { register_.retire(register_.find(address(number))); }
    State state(std::uintptr_t number) const { return register_.find(address(number)).kind; }
    std::uint32_t serial(std::uintptr_t number) const {
        return register_.find(address(number)).serial;
    }

    // The table of a register is never freed, so all tests share one register.
    static block_register register_;
};
block_register BlockRegister::register_;

TEST_F(BlockRegister, KnowsTheRegisteredBlocks) {
    EXPECT_EQ(state(1), State::unknown);
    EXPECT_EQ(serial(1), 0U);
    add(1, 7);
    EXPECT_EQ(state(1), State::live);
    EXPECT_EQ(serial(1), 7U);
    retire(1);
    EXPECT_EQ(state(1), State::freed);
    EXPECT_EQ(serial(1), 7U);
    EXPECT_EQ(state(2), State::unknown);
}

TEST_F(BlockRegister, AnAddressThatIsHandedOutAgainIsLive) {
    add(10, 1);
    retire(10);
    add(10, 2);
    EXPECT_EQ(state(10), State::live);
    EXPECT_EQ(serial(10), 2U);
    retire(10);
    EXPECT_EQ(serial(10), 2U);
}

TEST_F(BlockRegister, ForgetsTheAddressFreedLongestAgo) {
    for (std::uintptr_t i = 0; i <= 4096; ++i)
        add(1000 + i, 5);
    for (std::uintptr_t i = 0; i < 4096; ++i)
        retire(1000 + i);
    EXPECT_EQ(state(1000), State::freed);
    retire(1000 + 4096);
    EXPECT_EQ(state(1000), State::unknown);
    EXPECT_EQ(serial(1000), 0U);
    EXPECT_EQ(state(1001), State::freed);
    EXPECT_EQ(state(1000 + 4096), State::freed);
}

TEST_F(BlockRegister, AnAddressUsedOverAndOverForgetsNoOther) {
    add(20, 1);
    retire(20);
    for (std::uint32_t i = 0; i < 10000; ++i) {
        add(21, i);
        retire(21);
    }
    EXPECT_EQ(state(20), State::freed);
    EXPECT_EQ(serial(21), 9999U);
}

// A plain model of the register.
class Model {
public:
    void add(std::uintptr_t number, std::uint32_t serial) {
        const auto remembered = freedAt_.find(number);
        if (remembered != freedAt_.end()) {
            freed_.erase(remembered->second);
            freedAt_.erase(remembered);
        }
        live_[number] = serial;
    }
    void retire(std::uintptr_t number) {
        freed_.emplace_back(number, live_.at(number));
        freedAt_[number] = std::prev(freed_.end());
        live_.erase(number);
        if (freed_.size() <= 4096) return;
        freedAt_.erase(freed_.front().first);
        freed_.pop_front();
    }
    std::pair<State, std::uint32_t> find(std::uintptr_t number) const {
        const auto live = live_.find(number);
        if (live != live_.end()) return {State::live, live->second};
        const auto freed = freedAt_.find(number);
        if (freed != freedAt_.end()) return {State::freed, freed->second->second};
        return {State::unknown, 0};
    }
    std::size_t liveCount() const { return live_.size(); }

private:
    using Freed = std::list<std::pair<std::uintptr_t, std::uint32_t>>;
    std::map<std::uintptr_t, std::uint32_t> live_;
    Freed freed_;
    std::map<std::uintptr_t, Freed::iterator> freedAt_;
};

// The addresses have several strides, like those of blocks of a few sizes.
TEST_F(BlockRegister, AgreesWithAPlainModelOverRandomSteps) {
    Model model;
    const auto addToBoth = [&](std::uintptr_t number, std::uint32_t itsSerial) {
        add(number, itsSerial);
        model.add(number, itsSerial);
    };
    const auto retireFromBoth = [&](std::uintptr_t number) {
        retire(number);
        model.retire(number);
    };
    // First push out the freed addresses of other tests.
    for (std::uintptr_t i = 0; i < 4096; ++i)
        addToBoth(0x7F0000000 + i, 1);
    for (std::uintptr_t i = 0; i < 4096; ++i)
        retireFromBoth(0x7F0000000 + i);

    std::vector<std::uintptr_t> numbers;
    for (const std::uintptr_t stride : {1U, 3U, 256U, 4096U, 1U << 20U}) {
        for (std::uintptr_t i = 1; i <= 3000; ++i)
            numbers.push_back(0x100000 + i * stride);
    }
    std::mt19937 random(20240507);
    for (std::uint32_t step = 0; step < 200000; ++step) {
        const std::uintptr_t number = numbers[random() % numbers.size()];
        if (model.find(number).first != State::live) {
            addToBoth(number, step);
        } else if (random() % 3 != 0) {
            retireFromBoth(number);
        }
        if (step % 10000 != 0) continue;
        for (const std::uintptr_t one : numbers) {
            ASSERT_EQ(std::make_pair(state(one), serial(one)), model.find(one)) << one;
        }
    }
    EXPECT_GT(model.liveCount(), 1000U);
}

}  // namespace
}  // namespace trv
