#include <trvfiles/version.h>

#define TRVFILES_TEXT_OF(number) #number
#define TRVFILES_VERSION_TEXT(major, minor, patch) \
    TRVFILES_TEXT_OF(major) "." TRVFILES_TEXT_OF(minor) "." TRVFILES_TEXT_OF(patch)

namespace trv {

int version() {
    return TRVFILES_VERSION;
}

const char* version_text() {
    return TRVFILES_VERSION_TEXT(TRVFILES_VERSION_MAJOR, TRVFILES_VERSION_MINOR,
                                 TRVFILES_VERSION_PATCH);
}

}  // namespace trv
