#pragma once

/// @file
/// A directory with a file that is replaced, on Linux.

#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/environment/file_replacement.h>

#include <sys/stat.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace trv::testing {

/// How long a replacement of the tests waits for another one.
inline constexpr std::chrono::milliseconds shortly(50);

/// The number of a user without rights of its own.
inline constexpr uid_t nobody = 65534;

class ReplacementOnLinux : public ::testing::Test {
protected:
    std::filesystem::path target() const { return directory_ / "f"; }
    std::filesystem::path temporary() const { return directory_ / "f.messages.tmp"; }
    std::vector<std::string> files() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(directory_.path()))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

    static int replace(const std::filesystem::path& path, const std::string& text) {
        file_replacement held(path.string(), own_temporary_name,
                              file_replacement::existing::replaced, shortly);
        return held.write_and_replace(text);
    }
    /// Expects that a text is saved, whatever has the name of the temporary file.
    void expectSaved() const {
        EXPECT_EQ(replace(target(), "new"), 0);
        EXPECT_EQ(bytesOf(target()), "new");
        EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(temporary())));
    }

    static struct stat statusOf(const std::filesystem::path& path) {
        struct stat status = {};
        EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
        return status;
    }
    static unsigned modeOf(const std::filesystem::path& path) {
        return statusOf(path).st_mode & 07777U;
    }
    void letEverybodyWrite() const { ASSERT_EQ(::chmod(directory_.text().c_str(), 0777), 0); }

    TemporaryDirectory directory_;
};

}  // namespace trv::testing
