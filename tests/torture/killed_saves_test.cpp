// Kills the process of a save, at each of its system calls and at random moments.

#include <tests/common/file_bytes.h>
#include <tests/common/system_calls_linux.h>
#include <tests/common/temporary_directory.h>
#include <tests/torture/operation_test.h>
#include <tests/torture/saves.h>
#include <tests/torture/shared_memory.h>

#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <random>
#include <string>

namespace trv::testing {
namespace {

class KilledSaveOf : public ::testing::TestWithParam<Save> {
protected:
    KilledSaveOf() {
        run(true);
        second_ = bytesOf(target());
        run(false);
        first_ = bytesOf(target());
    }

    void run(bool second) const { EXPECT_EQ(GetParam().run(target(), second), GetParam().success); }
    std::filesystem::path target() const { return directory_ / "target"; }

    unsigned microsecondsOfBothSaves() const {
        const auto start = std::chrono::steady_clock::now();
        run(true);
        run(false);
        const std::chrono::duration<double, std::micro> time =
            std::chrono::steady_clock::now() - start;
        return static_cast<unsigned>(time.count());
    }

    /// A file that is left beside the target does not disturb the next save.
    void expectNextSaveToWork() const {
        run(true);
        EXPECT_EQ(bytesOf(target()), second_);
        run(false);
        EXPECT_EQ(bytesOf(target()), first_);
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(directory_.path()), {}), 1);
    }

    std::string first_;
    std::string second_;

private:
    TemporaryDirectory directory_;
};

TEST_P(KilledSaveOf, AtEachSystemCallLeavesTheOldFileOrTheCompleteNewOne) {
    if (!canTraceProcesses()) GTEST_SKIP() << "processes cannot be traced here";
    int old = 0;
    int replaced = 0;
    const auto rehearse = [&] { run(false); };
    for (int step = 1; killAtStep(step, rehearse, [&] { run(true); }); ++step) {
        const std::string found = bytesOf(target());
        ASSERT_TRUE(found == first_ || found == second_) << "killed at step " << step;
        ++(found == first_ ? old : replaced);
        expectNextSaveToWork();
        ASSERT_FALSE(HasFailure()) << "after a kill at step " << step;
    }
    EXPECT_EQ(bytesOf(target()), second_);
    // The save opens, writes, syncs, closes and renames. Each call has an entry and an exit.
    EXPECT_GE(old, 9);
    EXPECT_GE(replaced, 1);
    RecordProperty("kills", old + replaced);
}

TEST_P(KilledSaveOf, AtAnyMomentLeavesTheOldFileOrTheCompleteNewOne) {
    const int rounds = 1000 * tortureRounds();
    std::minstd_rand random(20);
    // Up to two pairs of saves, so the kills occur in every part of a save.
    std::uniform_int_distribution<unsigned> microseconds(0, 2 * microsecondsOfBothSaves());
    const Shared<std::atomic<bool>> isSaving;
    int old = 0;
    for (int round = 0; round < rounds; ++round) {
        *isSaving = false;
        const pid_t child = ::fork();
        ASSERT_NE(child, -1);
        if (child == 0) {
            for (bool second = true;; second = !second) {
                GetParam().run(target(), second);
                *isSaving = true;
            }
        }
        while (!*isSaving && ::waitpid(child, nullptr, WNOHANG) == 0)
            ::usleep(1);
        ::usleep(microseconds(random));
        ASSERT_EQ(::kill(child, SIGKILL), 0);
        ASSERT_EQ(::waitpid(child, nullptr, 0), child);
        const std::string found = bytesOf(target());
        ASSERT_TRUE(found == first_ || found == second_) << "killed in round " << round;
        if (found == first_) ++old;
    }
    expectNextSaveToWork();
    EXPECT_GT(old, 0);
    EXPECT_LT(old, rounds);
}

INSTANTIATE_TEST_SUITE_P(Torture, KilledSaveOf, allSaves, nameOfSave);

}  // namespace
}  // namespace trv::testing
