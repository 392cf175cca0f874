#include <trvfiles/support/platform.h>

#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <exception>
#include <system_error>

namespace trv::platform {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

file_handle adopt(int descriptor, const char* mode) {
    if (descriptor < 0) return nullptr;
    file_handle file(::fdopen(descriptor, mode));
    if (file == nullptr) {
        const int reason = errno;
        ::close(descriptor);
        errno = reason;
    }
    return file;
}

// An open that a signal interrupts is made again.
int open_descriptor(const std::filesystem::path& path, int flags) {
    constexpr mode_t everyone_as_the_mask_allows = 0666;
    int descriptor = -1;
    do {
        descriptor = ::open(path.c_str(), flags | O_CLOEXEC, everyone_as_the_mask_allows);
    } while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

struct stack_call {
    const std::function<void()>& work;
    std::exception_ptr thrown;
};

void* run(void* argument) {
    auto& call = *static_cast<stack_call*>(argument);
    try {
        call.work();
    } catch (...) {
        call.thrown = std::current_exception();
    }
    return nullptr;
}

void require(int status, const char* what) {
    if (status != 0) throw std::system_error(status, std::generic_category(), what);
}

}  // namespace

bool narrow_text_is_utf8() {
    return true;
}

bool backslash_separates() {
    return false;
}

file_handle open_for_read(const std::filesystem::path& path, file_mode) {
    const int descriptor = open_descriptor(path, O_RDONLY);
    struct stat status = {};
    if (descriptor >= 0 && ::fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode)) {
        ::close(descriptor);
        errno = EISDIR;
        return nullptr;
    }
    return adopt(descriptor, "r");
}

file_handle open_for_write(const std::filesystem::path& path, file_mode) {
    return adopt(open_descriptor(path, O_WRONLY | O_CREAT | O_TRUNC), "w");
}

void call_on_stack(std::size_t bytes, const std::function<void()>& work) {
    stack_call call{work, nullptr};
    pthread_attr_t attributes;
    require(::pthread_attr_init(&attributes), "pthread_attr_init");
    pthread_t thread = {};
    const auto least = static_cast<std::size_t>(PTHREAD_STACK_MIN);
    int status = ::pthread_attr_setstacksize(&attributes, std::max(bytes, least));
    if (status == 0) status = ::pthread_create(&thread, &attributes, run, &call);
    ::pthread_attr_destroy(&attributes);
    require(status, "pthread_create");
    ::pthread_join(thread, nullptr);
    if (call.thrown != nullptr) std::rethrow_exception(call.thrown);
}

}  // namespace trv::platform
