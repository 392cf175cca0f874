#pragma once

/// @file
/// A file that is replaced as a whole.
///
/// The new text goes to a temporary file beside the target. It replaces the target when it is
/// complete and on the disk. A reader of the target gets the whole old text or the whole new one,
/// also if the process is killed at any moment.
///
/// Threads: one at a time, with the whole runtime.

#include <trvfiles/support/platform_sharing.h>

#include <chrono>
#include <cstdio>
#include <functional>
#include <string>

namespace trv {

/// The name of a target's temporary file.
using temporary_name = std::string (*)(const std::string& target);

/// The target's own: ".messages.tmp" is appended.
std::string own_temporary_name(const std::string& target);

/// One for all targets of a directory: "messages.tmp". A target that has this name itself gets its
/// own temporary name.
std::string shared_temporary_name(const std::string& target);

/// Replaces a file, or creates it. The temporary file is locked from the constructor to the
/// destructor, so all saves to targets with this temporary file happen one after the other. Code
/// that reads the target after the constructor, and then replaces it, overwrites no other change.
///
/// A process holds at most one replacement of a temporary file at a time. A second one would wait
/// for the first.
///
/// The target keeps permission bits, owner, group, access control list and extended attributes, as
/// platform::copy_attributes() says. A target that is a symbolic link stays one: the file to which
/// it leads is replaced, and the temporary file is beside that file. Other hard links to the target
/// keep the old text.
class file_replacement {
public:
    /// What happens to an existing file of the target's name. With `refused` a link is not
    /// followed: it counts as an existing file, also if it leads nowhere.
    using existing = platform::existing_file;

    /// Creates and locks the temporary file; other processes that hold it are waited for. Nothing
    /// is reported.
    ///
    /// @param target  a runtime path
    /// @param wait    the maximum time to wait
    explicit file_replacement(const std::string& target,
                              temporary_name name_of = own_temporary_name,
                              existing what = existing::replaced,
                              std::chrono::milliseconds wait = platform::max_lock_wait);
    /// Removes the temporary file unless it has taken the target's place, and releases the lock.
    ~file_replacement();
    file_replacement(const file_replacement&) = delete;
    file_replacement& operator=(const file_replacement&) = delete;

    /// Whether the temporary file is locked, and empty so far.
    bool is_open() const { return held_ >= 0; }
    /// Why it is not, as an `errno`. ETIMEDOUT: another process held it for too long. EEXIST: the
    /// target exists and is refused.
    int open_failure() const { return open_failure_; }
    /// The runtime path of the temporary file, for reports.
    const std::string& temporary_path() const { return temporary_path_; }

    /// Writes the text and replaces the target. To be called once.
    ///
    /// @param text  its line ends become those of the system
    /// @return 0, or the `errno` of the step that failed; then the target is unchanged
    int write_and_replace(const std::string& text);

    /// Writes to a stream, and returns whether all is written. If not, the reason is in `errno`.
    using writer = std::function<bool(std::FILE*)>;

    /// Writes the new content to the temporary file, and waits until it is on the disk. The target
    /// is unchanged. To be called once.
    ///
    /// @return 0, or the `errno` of the step that failed
    int write(platform::file_mode mode, const writer& put);

    /// Opens what write() has written, so that it can be checked.
    ///
    /// @return the stream, at the beginning, or nullptr with the reason in `errno`
    platform::file_handle open_written() const { return platform::open_reader_of(held_); }

    /// Replaces the target by what write() has written. To be called once, after a write that has
    /// not failed and when no stream is open.
    ///
    /// @return 0, or the `errno` of the failure; then the target is unchanged
    int replace();

private:
    existing existing_;
    // Native paths, computed before the temporary file exists: computing them takes memory, and a
    // destructor without memory could not remove the file.
    std::string target_;
    std::string temporary_path_;
    std::string temporary_;
    int open_failure_ = 0;
    int held_ = -1;
};

}  // namespace trv
