#include <tests/torture/failing_calls.h>

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <thread>
#include <vector>

namespace trv::testing {
namespace {

// The calls that this machine has. Newer machines have only the calls that are relative to a
// directory.
const std::vector<unsigned> removingCalls = {
#ifdef SYS_unlink
    SYS_unlink,
#endif
    SYS_unlinkat};
const std::vector<unsigned> fileCalls = {
#ifdef SYS_open
    SYS_open,     SYS_creat,     SYS_rename,   SYS_unlink,     SYS_mkdir,        SYS_link,
    SYS_readlink,
#endif
#ifdef SYS_renameat
    SYS_renameat,
#endif
    SYS_openat,   SYS_read,      SYS_readv,    SYS_pread64,    SYS_getdents64,   SYS_write,
    SYS_writev,   SYS_pwrite64,  SYS_fsync,    SYS_fdatasync,  SYS_close,        SYS_renameat2,
    SYS_unlinkat, SYS_mkdirat,   SYS_linkat,   SYS_readlinkat, SYS_flock,        SYS_fchmod,
    SYS_fchown,   SYS_listxattr, SYS_getxattr, SYS_fsetxattr,  SYS_fremovexattr, SYS_lseek};

// From now on the system calls of this thread wait for an answer through the returned descriptor.
int listenToCalls() {
    std::vector<sock_filter> filter = {BPF_STMT(BPF_LD | BPF_W | BPF_ABS, 0)};
    for (const unsigned number : fileCalls) {
        filter.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, number, 0, 1));
        filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_USER_NOTIF));
    }
    filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    const sock_fprog program = {static_cast<unsigned short>(filter.size()), filter.data()};
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) return -1;
    return static_cast<int>(::syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER,
                                      SECCOMP_FILTER_FLAG_NEW_LISTENER, &program));
}

bool isRemoval(int number) {
    for (const unsigned removal : removingCalls) {
        if (static_cast<unsigned>(number) == removal) return true;
    }
    return false;
}

}  // namespace

bool canFailCalls() {
    const pid_t child = ::fork();
    // The child's calls get no answer. _exit is the only one that is not watched.
    if (child == 0) ::syscall(SYS_exit_group, listenToCalls() < 0 ? 1 : 0);
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

FailingCalls::FailingCalls(int first, bool forEver, int reason)
    : first_(first), forEver_(forEver), reason_(reason) {
    // The answering thread starts first, so its own calls are not watched.
    static std::atomic<int> listener;
    listener = -1;
    std::thread([this] {
        while (listener == -1)
            std::this_thread::yield();
        answerCalls(listener);
    }).detach();
    const int listening = listenToCalls();
    isStarted_ = listening >= 0;
    listener = isStarted_ ? listening : -2;
}

// This code must not allocate, and must not take a lock that the waiting thread may hold.
void FailingCalls::answerCalls(int listener) {
    for (;;) {
        seccomp_notif call = {};
        if (::ioctl(listener, SECCOMP_IOCTL_NOTIF_RECV, &call) != 0) {
            if (listener < 0) return;
            continue;
        }
        seccomp_notif_resp answer = {};
        answer.id = call.id;
        if (strikes(call.data.nr)) {
            if (call.data.nr == SYS_close) ::close(static_cast<int>(call.data.args[0]));
            answer.error = -reason_;
        } else {
            answer.flags = SECCOMP_USER_NOTIF_FLAG_CONTINUE;
        }
        ::ioctl(listener, SECCOMP_IOCTL_NOTIF_SEND, &answer);
    }
}

bool FailingCalls::strikes(int number) {
    if (!isArmed_) return false;
    const int call = ++calls_;
    if (call != first_ && !(forEver_ && call > first_)) return false;
    ++failures_;
    if (isRemoval(number)) hasKeptFile_ = true;
    return true;
}

}  // namespace trv::testing
