#include <bench/peak_memory.h>

#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <string>
#include <thread>

namespace trv::bench {
namespace {

// The value of the line "<name>  <n> kB" of the process's own status, in bytes.
double statusBytes(const std::string& name) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.compare(0, name.size(), name) == 0)
            return 1024 * std::stod(line.substr(name.size()));
    }
    return 0;
}

// Free memory of the preparation would hide growth. The peak size of the parent would be reported
// instead of that of the workload.
void forgetPast() {
    ::malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << "5";
}

// The child starts without the pages of the program's code, so the first call of each function adds
// some.
double growthOf(const Workload& work) {
    if (work.prepare != nullptr) work.prepare();
    statusBytes("VmHWM:");
    forgetPast();
    const double before = statusBytes("VmRSS:");
    work.run();
    return statusBytes("VmHWM:") - before;
}

// In a thread, because a new thread allocates from a heap of its own: in the heap of the parent,
// gaps between blocks that are in use hid 2 MiB.
double growthInThread(const Workload& work) {
    double growth = 0;
    std::thread([&] { growth = growthOf(work); }).join();
    return growth;
}

}  // namespace

double peakMemory(const Workload& work) {
    int ends[2];
    require(::pipe(ends) == 0, "making a pipe");
    const pid_t child = ::fork();
    require(child >= 0, "starting a process");
    if (child == 0) {
        const double growth = growthInThread(work);
        const bool isSent = ::write(ends[1], &growth, sizeof growth) == sizeof growth;
        ::_exit(isSent ? 0 : 1);
    }
    double growth = 0;
    ::close(ends[1]);
    const bool isSent = ::read(ends[0], &growth, sizeof growth) == sizeof growth;
    ::close(ends[0]);
    int status = 0;
    require(::waitpid(child, &status, 0) == child && isSent && growth > 0,
            "measuring memory in a process of its own");
    return growth;
}

}  // namespace trv::bench
