#pragma once

/// @file
/// A host with a locale whose decimal point is a comma.

#include <tests/common/child_process.h>
#include <tests/common/temporary_directory.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <locale>
#include <string>

namespace trv::testing {

/// A German locale that is compiled for the test, so it need not be installed.
class HostLocale {
public:
    /// @param charset  "UTF-8" or "ISO-8859-1"
    explicit HostLocale(const std::string& charset) : name_("de_DE." + charset) {
        const std::string command = "localedef --no-archive -i de_DE -f " + charset + " '" +
                                    (directory_ / name_).string() + "' >/dev/null 2>&1";
        compiled_ = std::system(command.c_str()) == 0;
    }

    /// Whether localedef and the sources of the locale are installed.
    bool exists() const { return compiled_; }

    /// Sets the locale of this process, for C and for C++, as LC_ALL does when a host starts. For
    /// child processes.
    ///
    /// @return whether numbers are now written with a comma
    bool adopt() const {
        if (!setEnvironment("LOCPATH", directory_.text().c_str())) return false;
        if (!setEnvironment("LC_ALL", name_.c_str())) return false;
        if (std::setlocale(LC_ALL, "") == nullptr) return false;
        std::locale::global(std::locale(""));
        char text[16] = "";
        std::snprintf(text, sizeof text, "%.1f", 2.5);
        return std::string(text) == "2,5";
    }

private:
    TemporaryDirectory directory_;
    std::string name_;
    bool compiled_ = false;
};

}  // namespace trv::testing
