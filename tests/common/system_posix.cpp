#include <tests/common/system.h>

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace trv::testing {

void setEmptyVariable(const char* name) {
    ::setenv(name, "", 1);
}

std::ptrdiff_t openDescriptors() {
    std::error_code error;
    std::filesystem::directory_iterator entries("/proc/self/fd", error);
    return error ? -1 : std::distance(begin(entries), end(entries));
}

}  // namespace trv::testing
