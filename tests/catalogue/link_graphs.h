#pragma once

/// @file
/// Directories with links between them, and a plain walk through them.

#include <tests/common/file_bytes.h>
#include <tests/common/temporary_directory.h>

#include <algorithm>
#include <filesystem>
#include <random>
#include <string>
#include <system_error>
#include <vector>

namespace trv::testing {

/// Whether a link to a directory can be created. Not every user of every system has the right to
/// create links.
inline bool linksCanBeMade() {
    const TemporaryDirectory directory;
    std::error_code error;
    std::filesystem::create_directory_symlink(directory.path(), directory / "link", error);
    return !error;
}

/// `count` directories "d0", "d1" and so on in a new directory, each with a link "lN" to every
/// other one.
inline void linkEachToAll(const std::filesystem::path& directory, int count) {
    namespace fs = std::filesystem;
    for (int i = 0; i < count; ++i)
        fs::create_directories(directory / ("d" + std::to_string(i)));
    for (int i = 0; i < count; ++i) {
        for (int j = 0; j < count; ++j) {
            if (i == j) continue;
            const fs::path target = directory / ("d" + std::to_string(j));
            fs::create_directory_symlink(
                target, directory / ("d" + std::to_string(i)) / ("l" + std::to_string(j)));
        }
    }
}

/// The contexts that the plain walk finds. It is depth-first and in the order of names. A directory
/// with a context of its name is a leaf. A directory that is being walked is not entered again.
class PlainWalk {
public:
    explicit PlainWalk(const std::filesystem::path& start) { enter(start); }

    const std::vector<std::string>& found() const { return found_; }

private:
    void enter(const std::filesystem::path& directory) {
        namespace fs = std::filesystem;
        const fs::path canonical = fs::canonical(directory);
        if (std::find(chain_.begin(), chain_.end(), canonical) != chain_.end()) return;
        chain_.push_back(canonical);
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(directory)) {
            std::error_code ignored;
            if (fs::is_directory(entry.path(), ignored))
                names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        for (const std::string& name : names) {
            const fs::path context = directory / name / (name + ".mctx");
            if (fs::is_regular_file(context)) {
                found_.push_back(context.generic_string());
            } else {
                enter(directory / name);
            }
        }
        chain_.pop_back();
    }

    std::vector<std::filesystem::path> chain_;
    std::vector<std::string> found_;
};

/// Some directories in a new one, with links between them and contexts in them. There are only a
/// few names. So a directory may contain a context of one of its names, but not of another one.
class RandomLinkGraph {
public:
    explicit RandomLinkGraph(unsigned seed) : random_(seed) {
        directories_.push_back(directory_.path());
        for (int count = upTo(6); count > 0; --count) {
            const std::filesystem::path path = anyOf(directories_) / anyName();
            if (std::filesystem::create_directory(path)) directories_.push_back(path);
        }
        entries_ = directories_;
        for (int links = upTo(9); links > 0; --links)
            link(anyOf(directories_) / anyName(), anyOf(directories_));
        for (int contexts = upTo(3); contexts > 0; --contexts) {
            const std::filesystem::path entry = anyOf(entries_);
            writeBytes(entry / (entry.filename().string() + ".mctx"), "x");
        }
    }

    const std::filesystem::path& start() const { return directory_.path(); }

private:
    int upTo(int most) { return std::uniform_int_distribution<int>(0, most)(random_); }
    std::string anyName() { return std::string(1, static_cast<char>('a' + upTo(5))); }
    std::filesystem::path anyOf(const std::vector<std::filesystem::path>& paths) {
        return paths[static_cast<std::size_t>(upTo(static_cast<int>(paths.size()) - 1))];
    }

    void link(const std::filesystem::path& path, const std::filesystem::path& target) {
        namespace fs = std::filesystem;
        const bool isRelative = upTo(1) == 0;
        std::error_code exists;
        fs::create_directory_symlink(isRelative ? fs::relative(target, path.parent_path()) : target,
                                     path, exists);
        if (!exists) entries_.push_back(path);
    }

    std::mt19937 random_;
    TemporaryDirectory directory_;
    std::vector<std::filesystem::path> directories_;
    std::vector<std::filesystem::path> entries_;
};

}  // namespace trv::testing
