// Runs every operation with a failure of its Nth allocation, and of its Nth and all later
// allocations.

#include <tests/common/child_process.h>
#include <tests/common/system.h>
#include <tests/torture/failing_allocations.h>
#include <tests/torture/operation_test.h>
#include <trvfiles/support/diagnostics.h>
#include <trvfiles/support/dynamic_storage.h>

#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <string>
#include <vector>

// Defined only in a program with the address sanitizer.
extern "C" [[gnu::weak]] int __lsan_do_recoverable_leak_check();

namespace trv::testing {
namespace {

struct FaultKind {
    AllocationKind kind;
    bool forEver;
    bool handlersThrow;
};

constexpr FaultKind faultKinds[] = {{AllocationKind::any, false, false},
                                    {AllocationKind::any, true, false},
                                    {AllocationKind::ofCheckedHeap, false, false},
                                    {AllocationKind::ofCheckedHeap, true, false},
                                    {AllocationKind::any, false, true},
                                    {AllocationKind::any, true, true},
                                    {AllocationKind::ofCheckedHeap, false, true},
                                    {AllocationKind::ofCheckedHeap, true, true}};

std::string describe(const FaultKind& kind, int number) {
    return std::string(kind.kind == AllocationKind::any ? "" : "checked heap's ") + "allocation " +
           std::to_string(number) + (kind.forEver ? " and all later ones" : "") +
           (kind.handlersThrow ? ", of which a handler makes an exception" : "");
}

std::string storageInUse() {
    char report[64];
    storage_report(report, sizeof report);
    return report;
}

/// The progress of a child process.
struct Progress {
    int number;
    int failures;
    /// The number of runs in which an allocation failed, in all processes.
    int faults;
    bool hasCrashed;
    /// The stack of the allocation that failed before a crash.
    Text stack;
    /// The statuses that occurred, by their negated value.
    bool statuses[100];
    /// Whether a handler was called.
    bool hasReported;
};

Progress* progressOfProcess = nullptr;

void tellOfCrash(int) {
    // The heap may be damaged here. The lookup of names uses it nevertheless.
    progressOfProcess->hasCrashed = true;
    progressOfProcess->stack.store(FailingAllocations::stackOfFailure());
    ::_exit(0);
}

// Qt 5.15 leaves a directory open in this case.
constexpr const char* functionThatLosesADescriptor = "QDirIterator::QDirIterator(";

bool canFindLeaks() {
    return __lsan_do_recoverable_leak_check != nullptr;
}

bool hasStruckIn(const char* function) {
    return FailingAllocations::stackOfFailure().find(function) != std::string::npos;
}

class FailingAllocationsOf : public OperationTest {
protected:
    /// Makes one allocation after the other fail, in as few processes as possible.
    void strike(const FaultKind& kind) {
        int number = 1;
        do {
            progress_->hasCrashed = false;
            progress_->failures = 0;
            EXPECT_TRUE(passesInChild([&] { strikeFrom(kind, number); }))
                << describe(kind, progress_->number);
            if (progress_->hasCrashed) {
                ADD_FAILURE() << "crash at " << describe(kind, progress_->number)
                              << ", which failed in\n"
                              << progress_->stack.text();
            }
            number = next(progress_->number);
        } while (progress_->failures > 0 && !HasFailure());
    }

    void strikeFrom(const FaultKind& kind, int number) {
        progressOfProcess = &*progress_;
        for (const int crash : {SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL})
            std::signal(crash, tellOfCrash);
        silence();
        noteReports();
        NoFault none;
        if (!operation().isOncePerProcess) {
            Workshop rehearsal(directory.path(), none);
            operation().run(rehearsal);
        }
        do {
            SCOPED_TRACE(describe(kind, number));
            progress_->number = number;
            strikeOnce(kind, number);
            number = next(number);
        } while (progress_->failures > 0 && !operation().isOncePerProcess && !HasFailure());
        if (canFindLeaks()) {
            EXPECT_EQ(__lsan_do_recoverable_leak_check(), 0) << "memory is lost";
        }
    }

    static void noteReports() {
        const auto note = [](const char*) { progressOfProcess->hasReported = true; };
        set_error_handler(note);
        set_fatal_handler(note);
    }

    void strikeOnce(const FaultKind& kind, int number) {
        const std::string storage = storageInUse();
        {
            FailingAllocations fault(kind.kind, number, kind.forEver);
            Workshop at(directory.path(), fault);
            const Files found = filesOf(directory.path());
            const auto descriptors = openDescriptors();
            if (kind.handlersThrow) letHandlersThrow();
            const Outcome outcome = operation().run(at);
            noteReports();
            progress_->failures = FailingAllocations::failures();
            if (progress_->failures > 0) ++progress_->faults;
            if (!hasStruckIn(functionThatLosesADescriptor)) {
                EXPECT_EQ(openDescriptors(), descriptors) << FailingAllocations::stackOfFailure();
            }
            if (outcome.status == handlerThrew) {
                EXPECT_TRUE(kind.handlersThrow);
            } else if (outcome.status != threwBadAlloc) {
                expectDocumented(outcome);
            }
            if (outcome.status <= 0 && outcome.status > -100) {
                progress_->statuses[-outcome.status] = true;
            }
            const bool isComplete = outcome.status == operation().success;
            expectWhole(found, isComplete, false);
            fault.end();
            if (!isComplete) expectSuccess(at);
        }
        EXPECT_EQ(storageInUse(), storage);
    }

    bool hasMet(int status) const { return progress_->statuses[-status]; }
    bool hasReported() const { return progress_->hasReported; }
    int faults() const { return progress_->faults; }

private:
    // The first 200 allocations one by one, those of a long read in growing steps.
    static int next(int number) {
        // Each allocation takes much longer if the address sanitizer unwinds every stack through
        // Qt.
        const bool isSlow = operation().losesMemoryInQt && canFindLeaks();
        const int dense = (isSlow ? 30 : 200) * tortureRounds();
        const int leap = isSlow ? 3 : 20;
        return number + 1 + std::max(0, number - dense) / leap;
    }

    Shared<Progress> progress_;
};

TEST_P(FailingAllocationsOf, AreReportedAndLeakNothing) {
    for (const FaultKind& kind : faultKinds) {
        if (kind.handlersThrow && !hasReported()) continue;
        strike(kind);
        ASSERT_FALSE(HasFailure());
    }
    RecordProperty("faults", faults());
    constexpr int outOfMemory = -41;
    if (operation().failures.count(outOfMemory) != 0) {
        EXPECT_TRUE(hasMet(outOfMemory));
    }
}

#if !TRV_TORTURE_OF_QT
// More blocks than the first tables of the block register hold.
TEST(FailingAllocation, OfABlockOrOfItsPlaceInTheRegisterGivesNoBlock) {
    EXPECT_TRUE(passesInChild([] {
        set_error_handler([](const char*) {});
        FailingAllocations fault(AllocationKind::ofCheckedHeap, 1, true);
        const auto mark = [](std::size_t number) { return static_cast<char>(number % 127); };
        std::vector<char*> blocks;
        while (blocks.size() < 5000) {
            fault.arm();
            void* const none = _Wmalloc(permanent_tag, 1);
            void* const same =
                blocks.empty() ? nullptr : _Wrealloc(permanent_tag, blocks.back(), 5000);
            fault.disarm();
            ASSERT_EQ(none, nullptr);
            ASSERT_EQ(same, nullptr);
            auto* const block = static_cast<char*>(_Wmalloc(permanent_tag, 1));
            ASSERT_NE(block, nullptr);
            *block = mark(blocks.size());
            blocks.push_back(block);
        }
        for (std::size_t number = 0; number < blocks.size(); ++number) {
            ASSERT_EQ(*blocks[number], mark(number));
            ASSERT_EQ(_Wfree(blocks[number]), 0);
        }
    }));
}
#endif

// The operations in which Qt leaks memory are in another program.
std::vector<Operation> operationsOfProgram() {
    constexpr bool isForQt = TRV_TORTURE_OF_QT != 0;
    std::vector<Operation> operations;
    for (const auto& all : {fileOperations(), memoryOperations()}) {
        for (const Operation& one : all) {
            if (one.losesMemoryInQt == isForQt) operations.push_back(one);
        }
    }
    return operations;
}

INSTANTIATE_TEST_SUITE_P(Torture, FailingAllocationsOf, ::testing::ValuesIn(operationsOfProgram()),
                         nameOf);

}  // namespace
}  // namespace trv::testing
