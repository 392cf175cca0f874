#include <trvfiles/environment/file_replacement.h>
#include <trvfiles/environment/path_text.h>
#include <trvfiles/support/ascii_case.h>
#include <trvfiles/support/platform_targets.h>

#include <cerrno>
#include <cstdio>
#include <string_view>
#include <utility>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

constexpr std::string_view shared_name = "messages.tmp";
constexpr char own_ending[] = ".messages.tmp";

// On Windows "Messages.tmp" is the same file as "messages.tmp".
bool is_shared_name(std::string_view name) {
    return platform::backslash_separates() ? equal_ignoring_case(name, shared_name)
                                           : name == shared_name;
}

}  // namespace

std::string own_temporary_name(const std::string& target) {
    return target + own_ending;
}

std::string shared_temporary_name(const std::string& target) {
    const std::size_t name = target.find_last_of(path_separators) + 1;
    if (is_shared_name(std::string_view(target).substr(name))) return own_temporary_name(target);
    return target.substr(0, name).append(shared_name);
}

file_replacement::file_replacement(const std::string& target, temporary_name name_of, existing what,
                                   std::chrono::milliseconds wait)
    : existing_(what), target_(platform::native_path(target.c_str())) {
    // All names are computed first: from create_held() on nothing allocates (see the members).
    std::string end = target_;
    if (what == existing::replaced) open_failure_ = platform::follow_links(end);
    // Reports name the path as the caller gave it, unless a link leads to another file.
    temporary_path_ = name_of(end == target_ ? target : end);
    temporary_ = platform::native_path(temporary_path_.c_str());
    target_ = std::move(end);
    if (open_failure_ != 0) return;
    held_ = platform::create_held(temporary_.c_str(), wait);
    if (held_ < 0) {
        open_failure_ = errno;
    } else if (what == existing::refused && platform::is_name_taken(target_.c_str())) {
        open_failure_ = EEXIST;
        platform::remove_held(std::exchange(held_, -1), temporary_.c_str());
    }
}

file_replacement::~file_replacement() {
    if (is_open()) platform::remove_held(held_, temporary_.c_str());
}

// The order makes the target the old file or the new one at every moment: attributes, content,
// sync, close, rename. The lock is released last.
int file_replacement::write_and_replace(const std::string& text) {
    const int failure = write(platform::file_mode::text, [&text](std::FILE* stream) {
        return std::fwrite(text.data(), 1, text.size(), stream) == text.size();
    });
    return failure == 0 ? replace() : failure;
}

// The attributes come first: a user who could not read the old content must never be able to read
// the new one. Closing shows failures too, so the stream is closed before the file is renamed. The
// file stays held.
int file_replacement::write(platform::file_mode mode, const writer& put) {
    if (!is_open()) return open_failure_;
    if (existing_ == existing::replaced) {
        const int failure = platform::copy_attributes(target_.c_str(), held_);
        if (failure != 0) return failure;
    }
    errno = EIO;  // for a failure that leaves no number of its own
    platform::file_handle stream = platform::open_stream_of(held_, mode);
    if (stream == nullptr || !put(stream.get())) return errno;
    if (const int failure = platform::sync_file(stream.get()); failure != 0) return failure;
    return std::fclose(stream.release()) == 0 ? 0 : errno;
}

int file_replacement::replace() {
    if (!is_open()) return open_failure_;
    const int failure = platform::move_held(held_, temporary_.c_str(), target_.c_str(), existing_);
    if (failure != 0) return failure;
    platform::release_held(std::exchange(held_, -1));
    open_failure_ = EBADF;  // for a second call: nothing is left to write to
    return 0;
}

}  // namespace trv
