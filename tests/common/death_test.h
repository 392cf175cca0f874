#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

namespace trv::testing {

/// What a process shows after exit(-1).
inline bool endedByDefaultFatalHandler(int status) {
    return ::testing::ExitedWithCode(255)(status) || ::testing::ExitedWithCode(-1)(status);
}

/// Runs a test's body to its end and leaves the process: 0 if all expectations held.
template <class Body>
[[noreturn]] void runAndLeave(const Body& body) {
    body();
    // The parent shows what its child has written to standard error.
    const ::testing::TestResult& result =
        *::testing::UnitTest::GetInstance()->current_test_info()->result();
    for (int i = 0; i < result.total_part_count(); ++i) {
        const ::testing::TestPartResult& part = result.GetTestPartResult(i);
        if (part.failed())
            std::fprintf(stderr, "line %d: %s\n", part.line_number(), part.message());
    }
    std::exit(::testing::Test::HasFailure() ? 1 : 0);
}

/// For tests of what happens once in a process: each body gets a process of its own.
class ChildProcessTest : public ::testing::Test {
protected:
    ChildProcessTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

}  // namespace trv::testing

/// Runs a callable in a child process, and fails if an expectation in it fails.
#define TRV_EXPECT_IN_CHILD(body) \
    EXPECT_EXIT(::trv::testing::runAndLeave(body), ::testing::ExitedWithCode(0), "")

/// Expects that a callable ends its process through the default fatal handler, with exactly this on
/// standard error.
#define TRV_EXPECT_FATAL(body, text)                                                           \
    EXPECT_EXIT(::trv::testing::runAndLeave(body), ::trv::testing::endedByDefaultFatalHandler, \
                ::testing::Eq(std::string(text)))
