#include <bench/peak_memory.h>

#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <string>

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

// A child inherits its parent's free memory, which would hide growth, and its peak size, which
// would be reported instead of that of the child.
void forgetParent() {
    ::malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << "5";
}

}  // namespace

double peakMemory(const Workload& work) {
    int ends[2];
    require(::pipe(ends) == 0, "making a pipe");
    const pid_t child = ::fork();
    require(child >= 0, "starting a process");
    if (child == 0) {
        forgetParent();
        const double before = statusBytes("VmRSS:");
        work.run();
        const double growth = statusBytes("VmHWM:") - before;
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
