#pragma once

#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/support/platform.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace trv::testing {

/// The path with "\" for every separator, as the runtime writes it.
inline std::string backslashed(std::string path) {
    std::replace(path.begin(), path.end(), '/', '\\');
    return path;
}

/// An installation in a directory of its own, to which TRVHOME points. Every other variable that
/// the runtime reads from the process environment is unset.
class Installation {
public:
    Installation() {
        for (const char* name : {"TRVHOME_LS", "TRVZONE", "TRVTMPDIR", "TRVTMP", "TRVCONF", "TMP",
                                 "TRVNULL", "ENVPATH", "CFGPATH", "WINDOWS", "PC",
                                 "TRV_TRVFILES_VERBOSE", "TRV_EXPAND_MIN_BUFFER_SIZE"}) {
            platform::set_environment(name, nullptr);
        }
        platform::set_environment("TRVHOME", root().c_str());
    }

    /// The value of TRVHOME: the root with the separators of the system.
    std::string root() const { return directory_.path().string(); }

    /// A path in the installation as the runtime writes it.
    std::string path(const std::string& name) const { return backslashed(root() + "/" + name); }

    /// The configuration file that is loaded first, as messages name it.
    std::string homeFile() const { return root() + "\\config\\environ.cfg"; }

    /// Creates a file, given by its name in the installation, with the directories above it.
    void write(const std::string& name, std::string_view text) const {
        std::filesystem::create_directories(file(name).parent_path());
        writeBytes(file(name), text);
    }

    void makeDirectory(const std::string& name) const {
        std::filesystem::create_directories(file(name));
    }

    std::filesystem::path file(const std::string& name) const { return directory_ / name; }

private:
    TemporaryDirectory directory_;
};

}  // namespace trv::testing
