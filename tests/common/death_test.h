#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

namespace trv::testing {

/// The exit status of a process after exit(-1).
inline bool endedByDefaultFatalHandler(int status) {
    return ::testing::ExitedWithCode(255)(status) || ::testing::ExitedWithCode(-1)(status);
}

/// Runs the body of a test and ends the process. The exit status is 0 if all expectations held.
template <class Body>
[[noreturn]] void runAndLeave(const Body& body) {
    body();
    // The parent prints the standard error of its child.
    const ::testing::TestResult& result =
        *::testing::UnitTest::GetInstance()->current_test_info()->result();
    for (int i = 0; i < result.total_part_count(); ++i) {
        const ::testing::TestPartResult& part = result.GetTestPartResult(i);
        if (part.failed())
            std::fprintf(stderr, "line %d: %s\n", part.line_number(), part.message());
    }
    std::exit(::testing::Test::HasFailure() ? 1 : 0);
}

/// For tests of things that happen once in a process: each body runs in its own process.
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
