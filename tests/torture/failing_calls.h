#pragma once

/// @file
/// System calls that fail, whoever makes them: the library, libc or Qt.

#include <tests/torture/workshop.h>

#include <atomic>

namespace trv::testing {

/// Whether the system lets a process answer its own system calls.
bool canFailCalls();

/// Lets the system calls that open, lock, read, list, write, sync, close, rename, remove and create
/// files, links and directories, and those that set rights and attributes, fail with an error
/// instead of doing anything; a close closes all the same, as the system's own does. Calls of the
/// process's first thread and of the threads that it starts later count.
///
/// For child processes: from the constructor on the process's calls are watched until it ends.
class FailingCalls : public Fault {
public:
    /// @param first    the number of the call that fails, from 1
    /// @param forEver  whether all later ones fail too
    /// @param reason   the error that they give
    FailingCalls(int first, bool forEver, int reason);

    void arm() override { isArmed_ = !isOver_; }
    void disarm() override { isArmed_ = false; }
    /// From here on nothing fails any more.
    void end() { isOver_ = true; }

    bool isStarted() const { return isStarted_; }
    /// How many calls have failed.
    int failures() const { return failures_; }
    /// Whether a file was to be removed and the call failed.
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
