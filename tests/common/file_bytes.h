#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

namespace trv::testing {

/// The bytes of a file as they stand; empty where it cannot be opened.
inline std::string bytesOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// The bytes of a text file without its CRs, so that they are the same on every system.
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
