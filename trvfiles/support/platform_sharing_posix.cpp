#include <trvfiles/support/platform_sharing.h>
#include <trvfiles/support/platform_targets.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <ctime>
#include <thread>
#include <utility>

namespace trv::platform {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

int code_of(int result) {
    return result == 0 ? 0 : errno;
}

class descriptor {
public:
    descriptor() = default;
    explicit descriptor(int number) : number_(number) {}
    ~descriptor() { reset(); }
    descriptor(const descriptor&) = delete;
    descriptor& operator=(const descriptor&) = delete;

    int get() const { return number_; }
    bool is_open() const { return number_ >= 0; }
    void reset(int number = -1) {
        if (is_open()) ::close(number_);
        number_ = number;
    }
    int release() { return std::exchange(number_, -1); }

private:
    int number_ = -1;
};

// Never follows a link under the name.
int open_unfollowed(const char* path, int flags) {
    constexpr mode_t all_rights_of_the_mask = 0666;
    int number = -1;
    do {
        number = ::open(path, flags | O_NOFOLLOW | O_CLOEXEC, all_rights_of_the_mask);
    } while (number < 0 && errno == EINTR);
    return number;
}

bool is_named(int file, const char* path) {
    struct stat held = {};
    struct stat named = {};
    return ::fstat(file, &held) == 0 && ::lstat(path, &named) == 0 && held.st_dev == named.st_dev &&
           held.st_ino == named.st_ino;
}

enum class lock_result { locked, refused, unavailable };

lock_result try_lock(int file) {
    int result = 0;
    do {
        result = ::flock(file, LOCK_EX | LOCK_NB);
    } while (result != 0 && errno == EINTR);
    if (result == 0) return lock_result::locked;
    return errno == EWOULDBLOCK ? lock_result::refused : lock_result::unavailable;
}

// Pauses between attempts, until the maximum time has passed.
class waiting {
public:
    explicit waiting(std::chrono::milliseconds wait) : end_(clock::now() + wait) {}

    bool is_over() const { return clock::now() >= end_; }

    bool pause() {
        // Two processes that save in a loop release the file for a moment between two saves. With
        // longer pauses a third one misses these moments for seconds.
        constexpr std::chrono::milliseconds max_pause(8);
        if (is_over()) return false;
        std::this_thread::sleep_for(pause_);
        pause_ = std::min(2 * pause_, max_pause);
        return true;
    }

private:
    using clock = std::chrono::steady_clock;
    clock::time_point end_;
    std::chrono::milliseconds pause_{1};
};

// Removes a file that cannot be locked if it has not changed for the maximum time that a caller
// waits: its holder, if there is one, would have finished.
//
// @return 0, EBUSY if the file has changed since, or why it cannot be removed
int remove_unlocked(const char* path, const struct stat& status, std::chrono::milliseconds wait) {
    using std::chrono::nanoseconds;
    using std::chrono::seconds;
    timespec now = {};
    ::clock_gettime(CLOCK_REALTIME, &now);
    const nanoseconds age = seconds(now.tv_sec - status.st_ctim.tv_sec) +
                            nanoseconds(now.tv_nsec - status.st_ctim.tv_nsec);
    return std::chrono::abs(age) >= wait ? code_of(::unlink(path)) : EBUSY;
}

// Removes a regular file unless another caller holds it. It is locked during the removal: a caller
// that has opened it before waits for the lock and then finds that the name is gone.
int remove_left_file(const char* path, const struct stat& status, std::chrono::milliseconds wait) {
    descriptor file(open_unfollowed(path, O_RDWR | O_NONBLOCK));
    // A file that is open only for reading can be locked too.
    if (!file.is_open() && errno == EACCES)
        file.reset(open_unfollowed(path, O_RDONLY | O_NONBLOCK));
    if (!file.is_open()) return errno == EACCES ? remove_unlocked(path, status, wait) : errno;
    switch (try_lock(file.get())) {
        case lock_result::refused:
            return EBUSY;
        case lock_result::unavailable:
            return remove_unlocked(path, status, wait);
        case lock_result::locked:
            break;
    }
    return is_named(file.get(), path) ? code_of(::unlink(path)) : 0;
}

// Removes the file, the link or the pipe of this name. A file with two names is not held, or its
// holder is moving it and removes this name as well.
//
// @return 0, EBUSY if another caller holds the file, or why it cannot be removed
int clear_name(const char* path, std::chrono::milliseconds wait) {
    struct stat status = {};
    if (::lstat(path, &status) != 0) return errno;
    if (S_ISDIR(status.st_mode)) return EISDIR;
    const bool may_be_held = S_ISREG(status.st_mode) && status.st_nlink < 2;
    return may_be_held ? remove_left_file(path, status, wait) : code_of(::unlink(path));
}

// Tries to create and lock the file.
//
// @return 0; EAGAIN if it is worth another attempt at once, EBUSY after a pause
int try_to_hold(const char* path, std::chrono::milliseconds wait, descriptor& file) {
    file.reset(open_unfollowed(path, O_RDWR | O_CREAT | O_EXCL));
    if (file.is_open()) {
        // Between its creation and its lock, another caller may have removed it as a leftover file.
        // On a file system without locks only the name can be compared.
        if (try_lock(file.get()) != lock_result::refused && is_named(file.get(), path)) return 0;
        file.reset();
        return EBUSY;
    }
    if (errno != EEXIST) return errno;
    const int reason = clear_name(path, wait);
    // The name is free, or something else has taken it meanwhile.
    const bool has_changed = reason == 0 || reason == ENOENT || reason == ELOOP;
    return has_changed ? EAGAIN : reason;
}

int rename_without_replacing(const char* from, const char* to) {
#ifdef RENAME_NOREPLACE
    if (::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) return 0;
    if (errno != EINVAL && errno != ENOSYS) return errno;
#endif
    if (::link(from, to) == 0) {
        // If this fails, the next caller removes the first name as a leftover file.
        static_cast<void>(::unlink(from));
        return 0;
    }
    const bool has_links = errno != EPERM && errno != EOPNOTSUPP && errno != ENOSYS;
    if (has_links) return errno;
    // No other caller creates the target meanwhile: all of them move a held file, and this one is
    // held.
    return is_name_taken(to) ? EEXIST : code_of(std::rename(from, to));
}

file_handle open_copy_of(int held, const char* mode) {
    descriptor copy(::fcntl(held, F_DUPFD_CLOEXEC, 0));
    if (!copy.is_open()) return nullptr;
    file_handle stream(::fdopen(copy.get(), mode));
    if (stream != nullptr) copy.release();
    return stream;
}

}  // namespace

file_handle open_for_update(const char* runtime_path, file_mode, std::chrono::milliseconds wait) {
    const std::string path = native_path(runtime_path);
    file_handle file;
    do {
        file.reset(std::fopen(path.c_str(), "r+e"));
    } while (file == nullptr && errno == EINTR);
    if (file == nullptr) return file;
    waiting turn(wait);
    while (try_lock(::fileno(file.get())) == lock_result::refused) {
        if (turn.pause()) continue;
        file.reset();
        errno = ETIMEDOUT;
        break;
    }
    return file;
}

int create_held(const char* path, std::chrono::milliseconds wait) {
    descriptor file;
    waiting turn(wait);
    int reason = 0;
    bool goes_on = true;
    while (goes_on) {
        const bool was_free = reason == EAGAIN;
        reason = try_to_hold(path, wait, file);
        // A process that takes the name again and again cannot keep this loop running.
        if (reason == EAGAIN) {
            goes_on = !was_free || !turn.is_over();
        } else {
            goes_on = reason == EBUSY && turn.pause();
        }
    }
    if (reason == 0) return file.release();
    errno = reason == EBUSY || reason == EAGAIN ? ETIMEDOUT : reason;
    return -1;
}

file_handle open_stream_of(int held, file_mode) {
    return open_copy_of(held, "w");
}

// The copy shares its position with the held file.
file_handle open_reader_of(int held) {
    if (::lseek(held, 0, SEEK_SET) != 0) return nullptr;
    return open_copy_of(held, "r");
}

int move_held(int held, const char* from, const char* to, existing_file existing) {
    if (!is_named(held, from)) return ENOENT;
    if (existing == existing_file::refused) return rename_without_replacing(from, to);
    return code_of(std::rename(from, to));
}

void release_held(int held) {
    ::close(held);
}

void remove_held(int held, const char* path) {
    if (is_named(held, path)) ::unlink(path);
    ::close(held);
}

}  // namespace trv::platform
