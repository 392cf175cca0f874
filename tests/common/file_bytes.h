#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>

namespace trv::testing {

/// The unchanged bytes of a file; empty if it cannot be opened.
inline std::string bytesOf(const std::filesystem::path& path) {
    const std::ifstream file(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

/// The bytes of a text file without its CRs, so they are the same on every system.
inline std::string textOf(const std::filesystem::path& path) {
    std::string text = bytesOf(path);
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    return text;
}

inline void writeBytes(const std::filesystem::path& path, std::string_view bytes) {
    std::ofstream file(path, std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

}  // namespace trv::testing
