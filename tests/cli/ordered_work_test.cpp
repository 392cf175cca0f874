#include <cli/ordered_work.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <stdexcept>
#include <thread>
#include <vector>

namespace trv::cli {
namespace {

TEST(OrderedWork, IsDoneOnceAndTakenInOrder) {
    for (const unsigned threads : {0U, 1U, 4U, 64U}) {
        constexpr std::size_t count = 50;
        std::vector<std::atomic<int>> done(count);
        std::vector<std::size_t> taken;
        const std::thread::id caller = std::this_thread::get_id();
        OrderedWork work;
        work.count = count;
        work.work = [&](std::size_t i) {
            // The first items take the longest.
            if (i < 4) std::this_thread::sleep_for(std::chrono::milliseconds(20 - 5 * i));
            ++done[i];
        };
        work.wait = [&](std::size_t finished) { EXPECT_LE(finished, count); };
        work.take = [&](std::size_t i) {
            EXPECT_EQ(std::this_thread::get_id(), caller);
            EXPECT_EQ(done[i], 1);
            taken.push_back(i);
        };
        runInOrder(work, threads);
        ASSERT_EQ(taken.size(), count) << threads;
        for (std::size_t i = 0; i < count; ++i)
            EXPECT_EQ(taken[i], i);
    }
}

TEST(OrderedWork, RunsInSeveralThreads) {
    std::atomic<int> atOnce{0};
    OrderedWork work;
    work.count = 2;
    work.take = [](std::size_t) {};
    work.wait = [](std::size_t) {};
    // Each one waits for the other.
    work.work = [&](std::size_t) {
        ++atOnce;
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (atOnce < 2 && std::chrono::steady_clock::now() < end)
            std::this_thread::yield();
        EXPECT_EQ(atOnce, 2);
    };
    runInOrder(work, 2);
}

TEST(OrderedWork, EndsWithWhatIsThrown) {
    for (const unsigned threads : {1U, 3U}) {
        OrderedWork work;
        work.count = 100;
        work.work = [](std::size_t i) {
            if (i == 5) throw std::runtime_error("five");
        };
        work.wait = [](std::size_t) {};
        work.take = [](std::size_t i) { EXPECT_NE(i, 5U); };
        EXPECT_THROW(runInOrder(work, threads), std::runtime_error);
        work.work = [](std::size_t) {};
        work.take = [](std::size_t i) {
            if (i == 3) throw std::runtime_error("three");
        };
        EXPECT_THROW(runInOrder(work, threads), std::runtime_error);
    }
}

TEST(OrderedWork, MayBeNone) {
    OrderedWork work;
    runInOrder(work, 4);
}

}  // namespace
}  // namespace trv::cli
