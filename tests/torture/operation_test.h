#pragma once

/// @file
/// Expectations that hold for every operation after every fault.

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

    /// Sets handlers for the channels. They return, or those for errors throw a HandlerFailure.
    static void silence();
    static void letHandlersThrow();

    /// Whether the status is a success with the full result or a documented failure.
    void expectDocumented(const Outcome& outcome) const;

    /// Expects that each file has its old bytes or its new ones. A file that is written in place
    /// may have a part of the new ones.
    ///
    /// @param found        the files before the operation
    /// @param isComplete  whether the operation has succeeded; then the files must have the new
    ///         bytes
    /// @param hasKeptFile  whether a file could not be removed
    void expectWhole(const Files& found, bool isComplete, bool hasKeptFile) const;

    /// Expects that the same operation succeeds after a failure.
    void expectSuccess(Workshop& at) const;

    TemporaryDirectory directory;

private:
    Shared<Text> expected_;
    Files after_;
};

std::string nameOf(const ::testing::TestParamInfo<Operation>& info);

}  // namespace trv::testing
