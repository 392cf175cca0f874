#pragma once

/// @file
/// Makes system calls of a process fail, or kills a process at one of them.

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>
#include <vector>

namespace trv::testing {

/// The numbers of the system calls that rename a file.
inline const std::vector<unsigned> renamingCalls = {
#ifdef SYS_rename
    SYS_rename,
#endif
#ifdef SYS_renameat
    SYS_renameat,
#endif
    SYS_renameat2};

/// Makes these system calls fail with this error without any effect, from now on in this process.
inline bool refuseSystemCalls(const std::vector<unsigned>& numbers, int reason) {
    std::vector<sock_filter> filter = {BPF_STMT(BPF_LD | BPF_W | BPF_ABS, 0)};
    for (const unsigned number : numbers) {
        filter.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, number, 0, 1));
        filter.push_back(BPF_STMT(BPF_RET | BPF_K,
                                  SECCOMP_RET_ERRNO | (static_cast<unsigned>(reason) & 0xFFFFU)));
    }
    filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    const sock_fprog program = {static_cast<unsigned short>(filter.size()), filter.data()};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

inline bool canRefuseSystemCalls() {
    const pid_t child = ::fork();
    if (child == 0) ::_exit(refuseSystemCalls({}, 0) ? 0 : 1);
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

/// Runs `work` in a child process. Kills the child after `steps` entries to and exits from system
/// calls.
///
/// @param prepare  runs in the child before `work`. It makes the calls that only a first run makes,
///                 for example for memory, so the number of calls in `work` is the same in each run
/// @return whether the child was killed; false if it ended by itself before
inline bool killAtStep(int steps, const std::function<void()>& prepare,
                       const std::function<void()>& work) {
    const pid_t child = ::fork();
    if (child == 0) {
        prepare();
        if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) ::_exit(1);
        if (::raise(SIGSTOP) != 0) ::_exit(1);
        work();
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    if (!WIFSTOPPED(status)) return false;
    ::ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_EXITKILL);
    for (int step = 0; step < steps; ++step) {
        ::ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
        ::waitpid(child, &status, 0);
        if (!WIFSTOPPED(status)) return false;
    }
    ::kill(child, SIGKILL);
    ::waitpid(child, &status, 0);
    return true;
}

inline bool canTraceProcesses() {
    const auto nothing = [] {};
    return killAtStep(0, nothing, nothing);
}

}  // namespace trv::testing
