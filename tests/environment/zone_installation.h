#pragma once

#include <tests/common/death_test.h>
#include <tests/environment/installation.h>
#include <trvfiles/environment/work_zone.h>

#include <string>

namespace trv::testing {

/// An installation with a zone, a counter at 0000000f and a directory for temporary directories.
class ZoneInstallation : public Installation {
public:
    explicit ZoneInstallation(const std::string& more = "TRVCONF = $TRVHOME/conf\n") {
        write("config/environ.cfg",
              "[var]\nTRVZONE = $TRVHOME/zone\nTRVTMP = $TRVHOME/temporary\n" + more);
        write("conf/workzone.num", "0000000f\n");
        makeDirectory("zone");
        makeDirectory("temporary");
    }
};

inline std::string temporaryDirectory() {
    const char* directory = get_temporary_directory();
    return directory != nullptr ? directory : "<none>";
}

/// The temporary directory is computed once in a process, so each test runs in its own process.
using WorkZone = ChildProcessTest;

}  // namespace trv::testing
