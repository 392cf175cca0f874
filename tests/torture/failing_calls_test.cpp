// Runs every operation with a failure of its Nth system call, and of its Nth and all later calls.

#include <tests/common/child_process.h>
#include <tests/common/system.h>
#include <tests/torture/failing_calls.h>
#include <tests/torture/operation_test.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <string>

namespace trv::testing {
namespace {

struct FaultKind {
    int reason;
    bool forEver;
    bool handlersThrow;
};

// EINTR has no run with all later calls, because no signal interrupts every call.
constexpr FaultKind faultKinds[] = {
    {EIO, false, false},    {EIO, true, false},    {ENOSPC, false, false}, {ENOSPC, true, false},
    {EMFILE, false, false}, {EMFILE, true, false}, {EACCES, false, false}, {EACCES, true, false},
    {EINTR, false, false},  {EIO, false, true},    {EIO, true, true}};

std::string describe(const FaultKind& kind, int number) {
    return "call " + std::to_string(number) + (kind.forEver ? " and all later ones: " : ": ") +
           std::strerror(kind.reason) + (kind.handlersThrow ? "; a handler throws" : "");
}

class FailingCallsOf : public OperationTest {
protected:
    /// One run in its own process.
    ///
    /// @return how many calls failed
    int strike(const FaultKind& kind, int number) {
        *failures_ = -1;
        EXPECT_TRUE(passesInChild([&] {
            SCOPED_TRACE(describe(kind, number));
            silence();
            NoFault none;
            // The first run makes the calls that only a first run needs.
            if (!operation().isOncePerProcess) {
                Workshop rehearsal(directory.path(), none);
                operation().run(rehearsal);
            }
            auto& calls = *new FailingCalls(number, kind.forEver, kind.reason);
            ASSERT_TRUE(calls.isStarted());
            Workshop at(directory.path(), calls);
            const Files found = filesOf(directory.path());
            const auto descriptors = openDescriptors();
            if (kind.handlersThrow) letHandlersThrow();
            const Outcome outcome = operation().run(at);
            silence();
            EXPECT_EQ(openDescriptors(), descriptors);
            if (outcome.status == handlerThrew) {
                EXPECT_TRUE(kind.handlersThrow);
            } else if (!operation().givesSystemErrors || outcome.status != -kind.reason) {
                expectDocumented(outcome);
            }
            const bool isComplete = outcome.status == operation().success;
            expectWhole(found, isComplete, calls.hasKeptFile());
            *failures_ = calls.failures();
            calls.end();
            if (!isComplete && !calls.hasKeptFile()) expectSuccess(at);
        })) << describe(kind, number);
        return *failures_;
    }

private:
    Shared<int> failures_;
};

TEST_P(FailingCallsOf, AreReportedAndDamageNothing) {
    if (!canFailCalls()) GTEST_SKIP() << "a process cannot answer its own system calls here";
    int faults = 0;
    for (const FaultKind& kind : faultKinds) {
        for (int number = 1; strike(kind, number) > 0; ++number) {
            ASSERT_FALSE(HasFailure());
            ++faults;
        }
        ASSERT_FALSE(HasFailure());
    }
    RecordProperty("faults", faults);
}

INSTANTIATE_TEST_SUITE_P(Torture, FailingCallsOf, ::testing::ValuesIn(fileOperations()), nameOf);

}  // namespace
}  // namespace trv::testing
