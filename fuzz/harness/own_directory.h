#pragma once

#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>

#include <filesystem>
#include <string>
#include <string_view>

namespace trv::fuzz {

/// The directory of this process, in the system's temporary directory. It is removed when the
/// process ends.
inline const testing::TemporaryDirectory& ownDirectory() {
    static const testing::TemporaryDirectory directory;
    return directory;
}

/// The path of a file in that directory.
inline std::string ownFile(const char* name) {
    return (ownDirectory() / name).string();
}

/// Replaces the content of the file and returns its path.
inline std::string writeOwnFile(const char* name, std::string_view bytes) {
    std::string path = ownFile(name);
    testing::writeBytes(path, bytes);
    return path;
}

}  // namespace trv::fuzz
