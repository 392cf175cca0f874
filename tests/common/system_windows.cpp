#include <tests/common/system.h>

#include <stdlib.h>
#include <windows.h>

namespace trv::testing {

// The C library unsets a variable if it gets an empty value. So the value in its own copy is
// truncated in place. It may refresh that copy from the system's, so that one is set to an empty
// value too.
void setEmptyVariable(const char* name) {
    ::_putenv_s(name, "x");
    ::SetEnvironmentVariableA(name, "");
    if (char* value = ::getenv(name)) *value = '\0';
}

std::ptrdiff_t openDescriptors() {
    return -1;
}

}  // namespace trv::testing
