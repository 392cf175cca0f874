#include <trvfiles/support/platform_directories.h>

#include <dirent.h>
#include <sys/stat.h>

#include <cstdlib>
#include <memory>

namespace trv::platform {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

struct directory_closer {
    void operator()(DIR* directory) const noexcept { ::closedir(directory); }
};

struct memory_releaser {
    void operator()(char* text) const noexcept { std::free(text); }
};

// Not every file system tells the type with the name.
bool is_link(const dirent& entry, const std::filesystem::path& path) {
    if (entry.d_type != DT_UNKNOWN) return entry.d_type == DT_LNK;
    struct stat status = {};
    return ::lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

}  // namespace

file_kind kind_of(const std::filesystem::path& path) {
    struct stat status = {};
    if (::stat(path.c_str(), &status) != 0) return file_kind::none;
    return S_ISDIR(status.st_mode) ? file_kind::directory : file_kind::other;
}

std::vector<subdirectory> subdirectories(const std::filesystem::path& directory) {
    std::vector<subdirectory> found;
    const std::unique_ptr<DIR, directory_closer> open(::opendir(directory.c_str()));
    if (open == nullptr) return found;
    while (const dirent* entry = ::readdir(open.get())) {
        if (*entry->d_name == '.') continue;
        if (entry->d_type == DT_DIR) {
            found.push_back({entry->d_name, false});
        } else if (entry->d_type == DT_LNK || entry->d_type == DT_UNKNOWN) {
            // By the whole path: the links before the name count for the system's limit too.
            const std::filesystem::path path = directory / entry->d_name;
            if (kind_of(path) == file_kind::directory)
                found.push_back({entry->d_name, is_link(*entry, path)});
        }
    }
    return found;
}

std::filesystem::path canonical_path(const std::filesystem::path& path) {
    const std::unique_ptr<char, memory_releaser> canonical(::realpath(path.c_str(), nullptr));
    return canonical == nullptr ? std::filesystem::path() : std::filesystem::path(canonical.get());
}

}  // namespace trv::platform
