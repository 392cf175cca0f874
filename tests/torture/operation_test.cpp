#include <tests/common/child_process.h>
#include <tests/torture/operation_test.h>
#include <trvfiles/support/diagnostics.h>

#include <filesystem>

namespace trv::testing {
namespace {

bool isPrefix(const std::string& part, const std::string& whole) {
    return whole.compare(0, part.size(), part) == 0;
}

}  // namespace

void OperationTest::SetUp() {
    Workshop::makeFiles();
    ASSERT_TRUE(passesInChild([&] {
        silence();
        NoFault none;
        Workshop at(directory.path(), none);
        const Outcome outcome = operation().run(at);
        EXPECT_EQ(outcome.status, operation().success);
        expected_->store(outcome.result);
    }));
    after_ = filesOf(directory.path());
}

void OperationTest::silence() {
    const auto nothing = [](const char*) {};
    set_error_handler(nothing);
    set_fatal_handler(nothing);
    set_trace_handler(nothing);
}

void OperationTest::letHandlersThrow() {
    const auto failure = [](const char*) { throw HandlerFailure(); };
    set_error_handler(failure);
    set_fatal_handler(failure);
}

void OperationTest::expectDocumented(const Outcome& outcome) const {
    if (outcome.status != operation().success) {
        EXPECT_EQ(operation().failures.count(outcome.status), 1U) << outcome.status;
    } else if (!operation().ignoresFaults) {
        EXPECT_EQ(outcome.result, expected_->text());
    }
}

void OperationTest::expectWhole(const Files& found, bool isComplete, bool hasKeptFile) const {
    const bool isExact = isComplete && !operation().ignoresFaults;
    const Files present = filesOf(directory.path());
    for (const auto& [name, bytes] : present) {
        const auto old = found.find(name);
        const auto fresh = after_.find(name);
        const bool isOld = old != found.end() && bytes == old->second;
        const bool isNew = fresh != after_.end() && bytes == fresh->second;
        const bool isPart = operation().inPlace.count(name) != 0 && fresh != after_.end() &&
                            isPrefix(bytes, fresh->second);
        const bool isTemporary = hasKeptFile && old == found.end() && fresh == after_.end();
        EXPECT_TRUE(isNew || isPart || isTemporary || (isOld && !isExact)) << name << ":\n"
                                                                           << bytes;
    }
    for (const auto& [name, bytes] : found)
        EXPECT_EQ(present.count(name), 1U) << name << " is gone";
    if (!isExact) return;
    for (const auto& [name, bytes] : after_)
        EXPECT_EQ(present.count(name), 1U) << name << " is missing";
}

void OperationTest::expectSuccess(Workshop& at) const {
    if (operation().isBlockedByItsRest) {
        for (const std::string& name : operation().inPlace)
            std::filesystem::remove(directory / name);
    }
    const Outcome outcome = operation().run(at);
    EXPECT_EQ(outcome.status, operation().success) << "when it was tried again";
    if (!operation().ignoresFaults) {
        EXPECT_EQ(outcome.result, expected_->text()) << "when it was tried again";
    }
}

void PrintTo(const Operation& operation, std::ostream* stream) {
    *stream << operation.name;
}

std::string nameOf(const ::testing::TestParamInfo<Operation>& info) {
    return info.param.name;
}

}  // namespace trv::testing
