#include <tests/common/system.h>

#include <stdlib.h>
#include <windows.h>

namespace trv::testing {

// The C library takes an empty value for none, so its own copy is cut in place. It may make that
// copy anew from the system's one, which is therefore empty too.
void setEmptyVariable(const char* name) {
    ::_putenv_s(name, "x");
    ::SetEnvironmentVariableA(name, "");
    if (char* value = ::getenv(name)) *value = '\0';
}

std::ptrdiff_t openDescriptors() {
    return -1;
}

}  // namespace trv::testing
