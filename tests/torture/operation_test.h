#pragma once

/// @file
/// What holds for every operation, whatever has struck it.

#include <tests/common/temporary_directory.h>
#include <tests/common/torture_rounds.h>
#include <tests/torture/operations.h>
#include <tests/torture/shared_memory.h>

#include <gtest/gtest.h>

#include <string>

namespace trv::testing {

class OperationTest : public ::testing::TestWithParam<Operation> {
protected:
    void SetUp() override;

    static const Operation& operation() { return GetParam(); }

    /// Replaces the handlers of the channels by ones that return, or those of errors by ones that
    /// throw a HandlerFailure.
    static void silence();
    static void letHandlersThrow();

    /// Whether the answer is a success with the full result or a documented failure.
    void expectDocumented(const Outcome& outcome) const;

    /// Expects of each file its old bytes or its new ones; of one that is written in place, a part
    /// of them.
    ///
    /// @param found        the files before the operation
    /// @param isComplete   whether it has succeeded: then they are the new ones
    /// @param hasKeptFile  whether a file could not be removed
    void expectWhole(const Files& found, bool isComplete, bool hasKeptFile) const;

    /// Expects that what a failure has left stands in nobody's way.
    void expectSuccess(Workshop& at) const;

    TemporaryDirectory directory;

private:
    Shared<Text> expected_;
    Files after_;
};

std::string nameOf(const ::testing::TestParamInfo<Operation>& info);

}  // namespace trv::testing
