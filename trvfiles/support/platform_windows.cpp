#include <trvfiles/support/platform.h>

#include <fcntl.h>
#include <io.h>
#include <process.h>
#include <share.h>
#include <sys/stat.h>
#include <windows.h>

#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <system_error>

namespace trv::platform {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

file_handle open_shared(const std::filesystem::path& path, const wchar_t* text_mode,
                        const wchar_t* binary_mode, file_mode mode) {
    return file_handle(
        ::_wfsopen(path.c_str(), mode == file_mode::text ? text_mode : binary_mode, _SH_DENYNO));
}

struct stack_call {
    const std::function<void()>& work;
    std::exception_ptr thrown;
};

unsigned __stdcall run(void* argument) {
    auto& call = *static_cast<stack_call*>(argument);
    try {
        call.work();
    } catch (...) {
        call.thrown = std::current_exception();
    }
    return 0;
}

}  // namespace

bool narrow_text_is_utf8() {
    return false;
}

bool backslash_separates() {
    return true;
}

file_handle open_for_read(const std::filesystem::path& path, file_mode mode) {
    const DWORD attributes = ::GetFileAttributesW(path.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        errno = EISDIR;
        return nullptr;
    }
    return open_shared(path, L"r", L"rb", mode);
}

file_handle open_for_write(const std::filesystem::path& path, file_mode mode) {
    return open_shared(path, L"w", L"wb", mode);
}

void call_on_stack(std::size_t bytes, const std::function<void()>& work) {
    if (bytes > UINT_MAX)
        throw std::system_error(ENOMEM, std::generic_category(), "_beginthreadex");
    stack_call call{work, nullptr};
    const std::uintptr_t thread =
        ::_beginthreadex(nullptr, static_cast<unsigned>(bytes), run, &call,
                         STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
    if (thread == 0) throw std::system_error(errno, std::generic_category(), "_beginthreadex");
    const auto handle = reinterpret_cast<HANDLE>(thread);
    ::WaitForSingleObject(handle, INFINITE);
    ::CloseHandle(handle);
    if (call.thrown != nullptr) std::rethrow_exception(call.thrown);
}

}  // namespace trv::platform
