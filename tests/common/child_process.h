#pragma once

/// @file
/// For tests that need another process: other rights, other limits, another locale. Only systems
/// with fork() support this. Tests skip if `can_fork` is false.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

#if __has_include(<sys/wait.h>)
#include <grp.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#endif

namespace trv::testing {

#if __has_include(<sys/wait.h>)

inline constexpr bool can_fork = true;

/// Starts a child process that runs `work` and ends.
///
/// @return the child, or -1
inline pid_t startChild(const std::function<void()>& work) {
    constexpr unsigned patience = 200;
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child != 0) return child;
    alarm(patience);
    try {
        work();
    } catch (...) {
        ADD_FAILURE() << "an exception left the child's work";
    }
    std::fflush(nullptr);
    _exit(::testing::Test::HasFailure() ? 1 : 0);
}

/// Waits for a child. Failed expectations in the child print as usual. The result is true if all
/// expectations held and the child ended by itself.
inline bool hasPassed(pid_t child) {
    int status = 0;
    if (child == -1 || waitpid(child, &status, 0) != child) return false;
    if (WIFSIGNALED(status)) ADD_FAILURE() << "the child ended by signal " << WTERMSIG(status);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

inline bool passesInChild(const std::function<void()>& work) {
    return hasPassed(startChild(work));
}

/// Runs `work` in several child processes, which start at the same moment.
///
/// @param work  called with the number of its child, from 0
inline bool passesInChildren(int children, const std::function<void(int child)>& work) {
    int gate[2] = {};
    if (pipe(gate) != 0) return false;
    std::vector<pid_t> started;
    for (int child = 0; child < children; ++child) {
        started.push_back(startChild([&] {
            char none = 0;
            close(gate[1]);
            // The read returns when the parent closes its end.
            EXPECT_EQ(read(gate[0], &none, 1), 0);
            close(gate[0]);
            work(child);
        }));
    }
    close(gate[0]);
    close(gate[1]);
    int passed = 0;
    for (const pid_t child : started)
        passed += hasPassed(child) ? 1 : 0;
    return passed == children;
}

/// Sets an environment variable. For child processes.
inline bool setEnvironment(const char* name, const char* value) {
    return setenv(name, value, 1) == 0;
}

/// Drops the rights of user 0, which the system does not check. For child processes.
inline bool becomeOrdinaryUser() {
    constexpr unsigned nobody = 65534;
    if (getuid() != 0) return true;
    return setgroups(0, nullptr) == 0 && setgid(nobody) == 0 && setuid(nobody) == 0;
}

/// Whether changeRoot() works. It needs user 0, and does not work in every container.
inline bool mayChangeRoot() {
    return getuid() == 0 && passesInChild([] {
               if (chroot("/") != 0) _exit(1);
           });
}

/// Makes this directory the root of all paths. For child processes.
inline bool changeRoot(const char* directory) {
    return chroot(directory) == 0 && chdir("/") == 0;
}

/// Limits the size of files to `bytes`: writing more fails with EFBIG. For child processes.
inline bool limitFileSize(std::uint64_t bytes) {
    const rlimit limit = {bytes, bytes};
    return std::signal(SIGXFSZ, SIG_IGN) != SIG_ERR && setrlimit(RLIMIT_FSIZE, &limit) == 0;
}

/// Makes the start of every thread fail. For child processes.
inline bool forbidThreads() {
    const rlimit limit = {0, 0};
    return becomeOrdinaryUser() && setrlimit(RLIMIT_NPROC, &limit) == 0;
}

/// Makes every open of a file fail, because all descriptors are in use. For child processes.
inline bool exhaustDescriptors() {
    const rlimit limit = {0, 0};
    return setrlimit(RLIMIT_NOFILE, &limit) == 0;
}

#else

inline constexpr bool can_fork = false;

inline bool passesInChild(const std::function<void()>&) {
    return false;
}
inline bool passesInChildren(int, const std::function<void(int)>&) {
    return false;
}
inline bool setEnvironment(const char*, const char*) {
    return false;
}
inline bool becomeOrdinaryUser() {
    return false;
}
inline bool mayChangeRoot() {
    return false;
}
inline bool changeRoot(const char*) {
    return false;
}
inline bool limitFileSize(std::uint64_t) {
    return false;
}
inline bool forbidThreads() {
    return false;
}
inline bool exhaustDescriptors() {
    return false;
}

#endif

}  // namespace trv::testing
