#pragma once

/// @file
/// The version of the library: the one that a host is compiled with, and the one that it runs with.
///
/// The build reads the version from the three macros below. CONTRIBUTING.md says what each number
/// promises.

#include <trvfiles/export.h>

/// The version of these headers.
#define TRVFILES_VERSION_MAJOR 0
#define TRVFILES_VERSION_MINOR 1
#define TRVFILES_VERSION_PATCH 0

/// A version as one number, for comparisons by the preprocessor.
#define TRVFILES_MAKE_VERSION(major, minor, patch) ((major)*1000000 + (minor)*1000 + (patch))

/// The version of these headers as one number.
#define TRVFILES_VERSION \
    TRVFILES_MAKE_VERSION(TRVFILES_VERSION_MAJOR, TRVFILES_VERSION_MINOR, TRVFILES_VERSION_PATCH)

namespace trv {

/// The version of the library that the process has loaded, as a number like TRVFILES_VERSION. It
/// differs from TRVFILES_VERSION when the host was compiled with the headers of another version.
///
/// Threads: any.
TRV_EXPORT int version();

/// The same as a text: "0.1.0". It lives as long as the library is loaded.
///
/// Threads: any.
TRV_EXPORT const char* version_text();

}  // namespace trv
