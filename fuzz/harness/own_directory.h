#pragma once

#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>

#include <filesystem>
#include <string>
#include <string_view>

namespace trv::fuzz {

/// The one directory of this process, under the system's temporary one; it goes with the process.
inline const testing::TemporaryDirectory& ownDirectory() {
    static const testing::TemporaryDirectory directory;
    return directory;
}

/// The path of a file in it.
inline std::string ownFile(const char* name) {
    return (ownDirectory() / name).string();
}

/// Writes the file anew and gives its path back.
inline std::string writeOwnFile(const char* name, std::string_view bytes) {
    std::string path = ownFile(name);
    testing::writeBytes(path, bytes);
    return path;
}

}  // namespace trv::fuzz
