// Several processes create contexts in one directory at the same time.

#include <tests/catalogue/catalogue_files.h>
#include <tests/common/channel_log.h>
#include <tests/common/child_process.h>
#include <tests/common/temporary_directory.h>
#include <tests/common/torture_rounds.h>
#include <tests/torture/shared_memory.h>
#include <trvfiles/catalogue/CMachineContextUtils.h>
#include <trvfiles/environment/file_replacement.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>

namespace fs = std::filesystem;
using namespace trv::testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

const std::string context1 = "[MACHINE_POSITION_1].mctx";
const std::string reference1 = "[stockposition@[MACHINE_POSITION_1]]MACHINE.ref";
const std::string contextText1 = createdContext("[MACHINE_POSITION_1]", "", reference1);
const std::string namedReference = "[stockposition@job]MACHINE.ref";

class SimultaneousCreation : public ::testing::Test {
protected:
    static constexpr int processes = 6;

    /// Runs several processes that create a context at the same time. None of them reports
    /// anything.
    ///
    /// @return the number of processes that have succeeded
    int create(const std::function<bool(int process)>& creation) {
        *successes_ = 0;
        EXPECT_TRUE(passesInChildren(processes, [&](int process) {
            const ChannelLog log;
            if (creation(process)) ++*successes_;
            EXPECT_THAT(log.errors(), IsEmpty());
            EXPECT_THAT(log.fatals(), IsEmpty());
        }));
        return *successes_;
    }

    bool createDefault(int position = 1) const {
        return CMachineContextUtils::sCreateDefaultMachineContext(directory_.wide(), position,
                                                                  nullptr, nullptr);
    }
    bool createNamed() const {
        fs::current_path(directory_.path());
        return CMachineContextUtils::sCreateMachineContext(directory_.wide(), L"m.mac", L"",
                                                           L"job.mctx", nullptr, nullptr);
    }

    void write(const std::string& name, const std::string& bytes) const {
        writeBytes(directory_ / name, bytes);
    }
    void clear() const {
        for (const auto& entry : fs::directory_iterator(directory_.path()))
            fs::remove_all(entry);
    }
    Contents contents() const { return contentsOf(directory_.path()); }

    static int rounds() { return 20 * tortureRounds(); }

    const Contents complete_ = {
        {"transfo.dat", identityAxis}, {reference1, identityAxis}, {context1, contextText1}};
    TemporaryDirectory directory_;
    Shared<std::atomic<int>> successes_;
};

}  // namespace

TEST_F(SimultaneousCreation, OfOnePositionSucceedsOnce) {
    for (int round = 0; round < rounds(); ++round) {
        ASSERT_EQ(create([&](int) { return createDefault(); }), 1) << "in round " << round;
        ASSERT_EQ(contents(), complete_) << "in round " << round;
        clear();
    }
}

TEST_F(SimultaneousCreation, OfOnePositionSucceedsOnceIfOnlyTheReferenceExists) {
    for (int round = 0; round < rounds(); ++round) {
        write(reference1, std::string(5000, 'x'));
        ASSERT_EQ(create([&](int) { return createDefault(); }), 1) << "in round " << round;
        ASSERT_EQ(contents(), complete_) << "in round " << round;
        clear();
    }
}

TEST_F(SimultaneousCreation, OfOnePositionSucceedsOnceIfOnlyTheContextExists) {
    for (int round = 0; round < rounds(); ++round) {
        write(context1, "[machine]\nname=old\n");
        ASSERT_EQ(create([&](int) { return createDefault(); }), 1) << "in round " << round;
        ASSERT_EQ(contents(), complete_) << "in round " << round;
        clear();
    }
}

TEST_F(SimultaneousCreation, OfDifferentPositionsCopiesACompleteAxisFile) {
    Contents expected = {{"transfo.dat", identityAxis}};
    for (int process = 0; process < processes; ++process) {
        const std::string name = "[MACHINE_POSITION_" + std::to_string(process + 1) + "]";
        const std::string reference = "[stockposition@" + name + "]MACHINE.ref";
        expected[reference] = identityAxis;
        expected[name + ".mctx"] = createdContext(name, "", reference);
    }
    for (int round = 0; round < rounds(); ++round) {
        ASSERT_EQ(create([&](int process) { return createDefault(process + 1); }), processes)
            << "in round " << round;
        ASSERT_EQ(contents(), expected) << "in round " << round;
        clear();
    }
}

TEST_F(SimultaneousCreation, OfOneNameSucceedsOnce) {
    for (int round = 0; round < rounds(); ++round) {
        write("transfo.dat", "axis");
        ASSERT_EQ(create([&](int) { return createNamed(); }), 1) << "in round " << round;
        ASSERT_EQ(contents(),
                  (Contents{{"transfo.dat", "axis"},
                            {namedReference, "axis"},
                            {"job.mctx", createdContext("job", "m.mac", namedReference)}}))
            << "in round " << round;
        clear();
    }
}

// One of the two processes waits for the lock. Without the lock their order would be random.

TEST_F(SimultaneousCreation, LeavesThePairOfTheProcessThatWasFirst) {
    write("transfo.dat", "axis");
    const Shared<std::atomic<bool>> isHeld;
    const pid_t first = startChild([&] {
        trv::file_replacement held((directory_ / context1).string());
        *isHeld = true;
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        write(reference1, "first");
        write(context1, "first");
    });
    while (!*isHeld)
        std::this_thread::yield();
    const ChannelLog log;
    EXPECT_FALSE(createDefault());
    EXPECT_THAT(log.fatals(), IsEmpty());
    EXPECT_TRUE(hasPassed(first));
    EXPECT_EQ(contents(),
              (Contents{{"transfo.dat", "axis"}, {reference1, "first"}, {context1, "first"}}));
}

TEST_F(SimultaneousCreation, LeavesTheNamedPairOfTheProcessThatWasFirst) {
    write("transfo.dat", "axis");
    const Shared<std::atomic<bool>> isHeld;
    const pid_t first = startChild([&] {
        trv::file_replacement held((directory_ / "job.mctx").string());
        *isHeld = true;
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        write(namedReference, "first");
        write("job.mctx", "first");
    });
    while (!*isHeld)
        std::this_thread::yield();
    EXPECT_TRUE(passesInChild([&] {
        const ChannelLog log;
        EXPECT_FALSE(createNamed());
        EXPECT_THAT(log.fatals(), IsEmpty());
    }));
    EXPECT_TRUE(hasPassed(first));
    EXPECT_EQ(
        contents(),
        (Contents{{"transfo.dat", "axis"}, {namedReference, "first"}, {"job.mctx", "first"}}));
}

TEST_F(SimultaneousCreation, LeavesTheReferenceFileOfAProcessThatWasFirst) {
    write("transfo.dat", "axis");
    const Shared<std::atomic<bool>> isHeld;
    const pid_t first = startChild([&] {
        trv::file_replacement held((directory_ / "job.mctx").string());
        *isHeld = true;
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        write(namedReference, "first");
    });
    while (!*isHeld)
        std::this_thread::yield();
    EXPECT_FALSE(createNamed());
    EXPECT_TRUE(hasPassed(first));
    EXPECT_EQ(contents(), (Contents{{"transfo.dat", "axis"}, {namedReference, "first"}}));
}

TEST_F(SimultaneousCreation, DoesNotWaitIfOneOfTheNamedFilesExists) {
    write("transfo.dat", "axis");
    const trv::file_replacement held((directory_ / "job.mctx").string());
    const auto start = std::chrono::steady_clock::now();
    for (const std::string& name : {std::string("job.mctx"), namedReference}) {
        write(name, "old");
        EXPECT_FALSE(createNamed()) << name;
        EXPECT_EQ(textOf(directory_ / name), "old");
        fs::remove(directory_ / name);
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, trv::platform::max_lock_wait);
}

TEST_F(SimultaneousCreation, SucceedsAfterAProcessThatWasFirstAndFailed) {
    const Shared<std::atomic<bool>> isHeld;
    const pid_t first = startChild([&] {
        trv::file_replacement held((directory_ / context1).string());
        write(reference1, "first");
        *isHeld = true;
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        fs::remove(directory_ / reference1);
    });
    while (!*isHeld)
        std::this_thread::yield();
    EXPECT_TRUE(createDefault());
    EXPECT_TRUE(hasPassed(first));
    EXPECT_EQ(contents(), complete_);
}

TEST_F(SimultaneousCreation, ReportsAContextThatAnotherProcessHoldsForTooLong) {
    write("transfo.dat", "axis");
    write(reference1, "first");
    const Shared<std::atomic<int>> state;
    const pid_t first = startChild([&] {
        trv::file_replacement held((directory_ / context1).string());
        *state = 1;
        while (*state == 1)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
    });
    while (*state == 0)
        std::this_thread::yield();
    const ChannelLog log;
    EXPECT_FALSE(createDefault());
    EXPECT_THAT(log.fatals(), ElementsAre("Store messages : error opening file '" +
                                          directory_.path().generic_string() + "/" + context1 +
                                          ".messages.tmp'"));
    EXPECT_EQ(textOf(directory_ / reference1), "first");
    *state = 2;
    EXPECT_TRUE(hasPassed(first));
    EXPECT_EQ(contents(), (Contents{{"transfo.dat", "axis"}, {reference1, "first"}}));
}
