// Part of each program of a coverage build: a child process that ends by _exit() first writes the
// counts of the lines that it has reached.

#include <sys/resource.h>

#include <cstdio>

namespace {

// With a limited file size an incomplete file of counts would destroy those of other processes.
bool mayFilesHaveAnySize() {
    rlimit limit = {};
    return getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur == RLIM_INFINITY;
}

// A tracer stops at each system call, and writing the counts takes thousands of them.
bool isTraced() {
    std::FILE* status = std::fopen("/proc/self/status", "r");
    if (status == nullptr) return true;
    int tracer = 0;
    char line[256];
    while (std::fgets(line, sizeof line, status) != nullptr)
        static_cast<void>(std::sscanf(line, "TracerPid: %d", &tracer));
    std::fclose(status);
    return tracer != 0;
}

}  // namespace

extern "C" {

void __gcov_dump();
[[noreturn]] void __real__exit(int status);

[[noreturn]] void __wrap__exit(int status) {
    if (mayFilesHaveAnySize() && !isTraced()) __gcov_dump();
    __real__exit(status);
}
}
