#pragma once

/// @file
/// Makes system calls of the library, libc or Qt fail.

#include <tests/torture/workshop.h>

#include <atomic>

namespace trv::testing {

/// Whether the system lets a process answer its own system calls.
bool canFailCalls();

/// Makes system calls fail without any effect: those that open, lock, read, seek, list, write,
/// sync, close, rename, remove and create files, links and directories, and those that set rights
/// and attributes. Only a close that fails closes nevertheless, as the system does. Calls of the
/// first thread of the process and of threads that it starts later are counted.
///
/// For child processes. From the constructor on, the calls of the process are watched until it
/// ends.
class FailingCalls : public Fault {
public:
    /// @param first    the number of the call that fails, from 1
    /// @param forEver  whether all later ones fail too
    /// @param reason  the error of these calls
    FailingCalls(int first, bool forEver, int reason);

    void arm() override { isArmed_ = !isOver_; }
    void disarm() override { isArmed_ = false; }
    /// Stops the failures.
    void end() { isOver_ = true; }

    bool isStarted() const { return isStarted_; }
    /// The number of calls that have failed.
    int failures() const { return failures_; }
    /// Whether a call that removes a file has failed.
    bool hasKeptFile() const { return hasKeptFile_; }

private:
    // The thread that answers the calls lives as long as the process.
    ~FailingCalls() override = default;

    void answerCalls(int listener);
    bool strikes(int number);

    const int first_;
    const bool forEver_;
    const int reason_;
    bool isStarted_ = false;
    bool isOver_ = false;
    std::atomic<bool> isArmed_ = false;
    std::atomic<int> calls_ = 0;
    std::atomic<int> failures_ = 0;
    std::atomic<bool> hasKeptFile_ = false;
};

}  // namespace trv::testing
