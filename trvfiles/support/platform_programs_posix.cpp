#include <trvfiles/support/platform_programs.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <system_error>
#include <thread>

namespace trv::platform {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

constexpr char opener[] = "xdg-open";

std::string failure_text(int error) {
    return std::string(opener) + ": " + std::generic_category().message(error);
}

// The streams of a process that must not write to the output of this one.
class quiet_streams {
public:
    quiet_streams() {
        is_set_ = posix_spawn_file_actions_init(&actions_) == 0;
        if (!is_set_) return;
        posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_adddup2(&actions_, STDERR_FILENO, STDOUT_FILENO);
    }
    ~quiet_streams() {
        if (is_set_) posix_spawn_file_actions_destroy(&actions_);
    }
    quiet_streams(const quiet_streams&) = delete;
    quiet_streams& operator=(const quiet_streams&) = delete;

    const posix_spawn_file_actions_t* get() const { return is_set_ ? &actions_ : nullptr; }

private:
    posix_spawn_file_actions_t actions_;
    bool is_set_;
};

// The end of a process, if it ends soon.
//
// @return what waitpid() returns; 0 if the process still runs
pid_t wait_shortly(pid_t process, int& status) {
    constexpr std::chrono::milliseconds pause(10);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    for (;;) {
        const pid_t ended = waitpid(process, &status, WNOHANG);
        const bool is_interrupted = ended < 0 && errno == EINTR;
        if (ended != 0 && !is_interrupted) return ended;
        if (std::chrono::steady_clock::now() >= deadline) return 0;
        std::this_thread::sleep_for(pause);
    }
}

}  // namespace

std::string open_on_desktop(const std::filesystem::path& file) {
    std::string program = opener;
    std::string argument = file.native();
    char* const arguments[] = {program.data(), argument.data(), nullptr};
    const quiet_streams streams;
    pid_t process = 0;
    const int error =
        posix_spawnp(&process, program.c_str(), streams.get(), nullptr, arguments, environ);
    if (error != 0) return failure_text(error);
    int status = 0;
    const pid_t ended = wait_shortly(process, status);
    if (ended < 0) return failure_text(errno);
    if (ended == 0 || (WIFEXITED(status) && WEXITSTATUS(status) == 0)) return {};
    if (!WIFEXITED(status)) return program + " was ended by a signal";
    return program + " ended with status " + std::to_string(WEXITSTATUS(status));
}

}  // namespace trv::platform
