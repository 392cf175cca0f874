#include <trvfiles/support/platform_targets.h>

#include <sys/stat.h>
#include <unistd.h>
#if __has_include(<sys/xattr.h>)
#include <sys/xattr.h>
#endif

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstring>
#include <string>

namespace trv::platform {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

constexpr mode_t permission_bits = 0777;

int code_of(int result) {
    return result == 0 ? 0 : errno;
}

// Returns whether the file has the same group afterwards.
bool copy_owner(const struct stat& from, int to) {
    struct stat status = {};
    if (::fstat(to, &status) != 0) return false;
    constexpr auto same_owner = static_cast<uid_t>(-1);
    if (status.st_uid != from.st_uid && ::fchown(to, from.st_uid, from.st_gid) == 0) return true;
    return status.st_gid == from.st_gid || ::fchown(to, same_owner, from.st_gid) == 0;
}

int copy_permissions(const struct stat& from, bool has_group, int to) {
    mode_t mode = from.st_mode & permission_bits;
    if (!has_group) mode &= ~static_cast<mode_t>(S_IRWXG) | (mode & S_IRWXO) << 3;
    struct stat status = {};
    if (::fstat(to, &status) != 0) return errno;
    if ((status.st_mode & permission_bits) == mode) return 0;
    return code_of(::fchmod(to, mode));
}

#ifdef __linux__
constexpr char access_list[] = "system.posix_acl_access";

// Removes the list that the file may have inherited from its directory.
void remove_access_list(int to) {
    static_cast<void>(::fremovexattr(to, access_list));
}

void copy_extended_attribute(const char* from, const char* name, int to) {
    const ssize_t size = ::getxattr(from, name, nullptr, 0);
    if (size < 0) return;
    std::string value(static_cast<std::size_t>(size), '\0');
    const ssize_t length = ::getxattr(from, name, value.data(), value.size());
    if (length == size) ::fsetxattr(to, name, value.data(), value.size(), 0);
}

void copy_extended_attributes(const char* from, bool has_group, int to) {
    const ssize_t size = ::listxattr(from, nullptr, 0);
    if (size <= 0) return;
    std::string names(static_cast<std::size_t>(size), '\0');
    const ssize_t length = ::listxattr(from, names.data(), names.size());
    names.resize(static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
    for (std::size_t name = 0; name < names.size(); name = names.find('\0', name) + 1) {
        const char* text = names.c_str() + name;
        // The list has an entry for the group of the file, which is another one here.
        if (!has_group && std::strcmp(text, access_list) == 0) continue;
        copy_extended_attribute(from, text, to);
    }
}
#else
void remove_access_list(int) {}
void copy_extended_attributes(const char*, bool, int) {}
#endif

// @param text  empty if the path is not a link
int read_link(const std::string& path, std::string& text) {
    char buffer[PATH_MAX];
    const ssize_t length = ::readlink(path.c_str(), buffer, sizeof buffer);
    text.assign(buffer, static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
    const bool is_known = length >= 0 || errno == EINVAL || errno == ENOENT || errno == ENOTDIR;
    return is_known ? 0 : errno;
}

}  // namespace

int copy_attributes(const char* from, int held) {
    struct stat status = {};
    if (::stat(from, &status) != 0 || !S_ISREG(status.st_mode)) return 0;
    const bool has_group = copy_owner(status, held);
    remove_access_list(held);
    const int failure = copy_permissions(status, has_group, held);
    if (failure == 0) copy_extended_attributes(from, has_group, held);
    return failure;
}

int follow_links(std::string& path) {
    constexpr int max_links = 40;
    std::string text;
    int failure = read_link(path, text);
    if (failure != 0 || text.empty()) return failure;
    struct stat status = {};
    const bool leads_somewhere = ::stat(path.c_str(), &status) == 0;
    // The system does not let every process follow a link in a directory that all can write to.
    if (!leads_somewhere && errno != ENOENT) return errno;
    // A device or a pipe is never replaced by a file; the link to it is.
    if (leads_somewhere && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode)) return 0;
    std::string end = path;
    for (int links = 0; failure == 0 && !text.empty(); ++links) {
        if (links == max_links) return ELOOP;
        end.erase(text.front() == '/' ? 0 : end.rfind('/') + 1);
        end += text;
        failure = read_link(end, text);
    }
    if (failure == 0) path = end;
    return failure;
}

bool is_name_taken(const char* path) {
    struct stat status = {};
    return ::lstat(path, &status) == 0;
}

}  // namespace trv::platform
