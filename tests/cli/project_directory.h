#pragma once

/// @file
/// A directory of project files for the tests of the command.

#include <tests/cli/answer.h>
#include <tests/cli/samples.h>
#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>
#include <trvfiles/support/platform.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace trv::testing {

class ProjectDirectory : public ::testing::Test {
protected:
    /// Writes a file.
    ///
    /// @return its path
    QString file(const std::string& name, std::string_view bytes) const {
        std::filesystem::create_directories((directory_ / name).parent_path());
        writeBytes(directory_ / name, bytes);
        return path(name);
    }

    QString path(const std::string& name) const { return QString::fromStdString(text(name)); }

    std::string text(const std::string& name) const {
        return (directory_ / name).generic_u8string();
    }

    /// The path of a file as a command prints it: on Windows with "\", which is shown as two.
    std::string printed(const std::string& name) const { return asPrinted(text(name)); }

    static std::string asPrinted(const std::string& path) {
        if (!platform::backslash_separates()) return path;
        std::string shown;
        for (const char c : path)
            shown += c == '/' ? "\\\\" : std::string(1, c);
        return shown;
    }

    std::string bytes(const std::string& name) const { return textOf(directory_ / name); }

    bool exists(const std::string& name) const {
        return std::filesystem::exists(directory_ / name);
    }

    /// The names of all entries of the directory, in byte order.
    std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(directory_.path()))
            found.push_back(entry.path().filename().u8string());
        std::sort(found.begin(), found.end());
        return found;
    }

    TemporaryDirectory directory_;
};

}  // namespace trv::testing
