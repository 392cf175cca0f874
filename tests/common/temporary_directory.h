#pragma once

#include <filesystem>
#include <random>
#include <string>

namespace trv::testing {

/// A directory of the test in the system's temporary directory. It is removed with its content when
/// the object is destroyed.
class TemporaryDirectory {
public:
    TemporaryDirectory() {
        std::random_device random;
        do {
            path_ = std::filesystem::temp_directory_path() /
                    ("trvfiles-test-" + std::to_string(random()));
        } while (!std::filesystem::create_directory(path_));
    }
    ~TemporaryDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::string text() const { return path_.generic_string(); }
    std::wstring wide() const { return path_.generic_wstring(); }
    std::filesystem::path operator/(const std::string& name) const {
        return path_ / std::filesystem::u8path(name);
    }

private:
    std::filesystem::path path_;
};

}  // namespace trv::testing
