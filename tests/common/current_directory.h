#pragma once

#include <filesystem>

namespace trv::testing {

/// Makes a directory the current one until the object is destroyed.
class CurrentDirectory {
public:
    explicit CurrentDirectory(const std::filesystem::path& directory)
        : old_(std::filesystem::current_path()) {
        std::filesystem::current_path(directory);
    }
    ~CurrentDirectory() { std::filesystem::current_path(old_); }
    CurrentDirectory(const CurrentDirectory&) = delete;
    CurrentDirectory& operator=(const CurrentDirectory&) = delete;

private:
    std::filesystem::path old_;
};

}  // namespace trv::testing
