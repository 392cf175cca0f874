#pragma once

/// @file
/// A file system of a few bytes, to test a disk that is really full. Only Linux supports it. Tests
/// skip if `canMountSmallDisks()` is false.

#include <cstddef>
#include <filesystem>
#include <string>

#ifdef __linux__
#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace trv::testing {

#ifdef __linux__

inline bool writeOnce(const char* path, const std::string& text) {
    const int file = ::open(path, O_WRONLY | O_CLOEXEC);
    if (file < 0) return false;
    const bool isWritten = ::write(file, text.data(), text.size()) >= 0;
    return ::close(file) == 0 && isWritten;
}

/// Gives the process its own mounts. A process of another user becomes user 0 in a user namespace.
inline bool leaveMounts() {
    if (::unshare(CLONE_NEWNS) == 0) return true;
    const std::string user = "0 " + std::to_string(::geteuid()) + " 1";
    const std::string group = "0 " + std::to_string(::getegid()) + " 1";
    return ::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 &&
           writeOnce("/proc/self/setgroups", "deny") && writeOnce("/proc/self/uid_map", user) &&
           writeOnce("/proc/self/gid_map", group);
}

/// Mounts a file system of `bytes`, a multiple of the page size, on a directory. For child
/// processes: other processes do not see it.
inline bool mountSmallDisk(const std::filesystem::path& directory, std::size_t bytes) {
    const std::string options = "size=" + std::to_string(bytes);
    return leaveMounts() && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           ::mount("tmpfs", directory.c_str(), "tmpfs", 0, options.c_str()) == 0;
}

inline bool canMountSmallDisks() {
    const pid_t child = ::fork();
    if (child == 0) ::_exit(mountSmallDisk(std::filesystem::temp_directory_path(), 4096) ? 0 : 1);
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

#else

inline bool mountSmallDisk(const std::filesystem::path&, std::size_t) {
    return false;
}
inline bool canMountSmallDisks() {
    return false;
}

#endif

}  // namespace trv::testing
