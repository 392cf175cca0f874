#include <trvfiles/support/platform_targets.h>

#include <aclapi.h>
#include <io.h>
#include <windows.h>

#include <cerrno>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace trv::platform {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

struct handle_closer {
    using pointer = HANDLE;
    void operator()(HANDLE handle) const noexcept { ::CloseHandle(handle); }
};

// Copies the attributes that do not describe the content.
void copy_file_attributes(DWORD attributes, HANDLE to) {
    constexpr DWORD copied = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM |
                             FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
    FILE_BASIC_INFO information = {};
    information.FileAttributes = attributes & copied;
    if (information.FileAttributes == 0) information.FileAttributes = FILE_ATTRIBUTE_NORMAL;
    ::SetFileInformationByHandle(to, FileBasicInfo, &information, sizeof information);
}

std::wstring path_of(HANDLE file) {
    std::wstring path(::GetFinalPathNameByHandleW(file, nullptr, 0, VOLUME_NAME_DOS), L'\0');
    path.resize(::GetFinalPathNameByHandleW(file, path.data(), static_cast<DWORD>(path.size()),
                                            VOLUME_NAME_DOS));
    return path;
}

// Removes the prefix of paths that may exceed MAX_PATH.
std::wstring without_prefix(std::wstring path) {
    constexpr std::wstring_view server = L"\\\\?\\UNC\\";
    constexpr std::wstring_view drive = L"\\\\?\\";
    if (path.rfind(server, 0) == 0) return path.replace(0, server.size(), L"\\\\");
    return path.rfind(drive, 0) == 0 ? path.substr(drive.size()) : path;
}

// @return empty if the code page cannot represent the text
std::string narrow_text(const std::wstring& wide) {
    constexpr std::size_t max_bytes_of_a_unit = 4;
    const auto units = static_cast<int>(wide.size());
    std::string text(max_bytes_of_a_unit * wide.size(), '\0');
    const int bytes = ::WideCharToMultiByte(CP_ACP, 0, wide.data(), units, text.data(),
                                            static_cast<int>(text.size()), nullptr, nullptr);
    text.resize(static_cast<std::size_t>(bytes));
    std::wstring back(wide.size(), L'\0');
    const int length = ::MultiByteToWideChar(CP_ACP, 0, text.data(), bytes, back.data(), units);
    return length == units && back == wide ? text : std::string();
}

// The list is set by name: a handle opened for writing need not have the right to change it.
void copy_access_list(const char* from, std::wstring to) {
    PACL list = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    std::string name(from);
    if (::GetNamedSecurityInfoA(name.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr,
                                nullptr, &list, nullptr, &descriptor) != ERROR_SUCCESS) {
        return;
    }
    SECURITY_DESCRIPTOR_CONTROL control = 0;
    DWORD revision = 0;
    ::GetSecurityDescriptorControl(descriptor, &control, &revision);
    const bool is_protected = (control & SE_DACL_PROTECTED) != 0;
    const SECURITY_INFORMATION inheritance =
        is_protected ? PROTECTED_DACL_SECURITY_INFORMATION : UNPROTECTED_DACL_SECURITY_INFORMATION;
    ::SetNamedSecurityInfoW(to.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION | inheritance,
                            nullptr, nullptr, list, nullptr);
    ::LocalFree(descriptor);
}

}  // namespace

int copy_attributes(const char* from, int held) {
    const DWORD attributes = ::GetFileAttributesA(from);
    if (attributes == INVALID_FILE_ATTRIBUTES) return 0;
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return 0;
    const auto file = reinterpret_cast<HANDLE>(::_get_osfhandle(held));
    copy_file_attributes(attributes, file);
    copy_access_list(from, path_of(file));
    return 0;
}

int follow_links(std::string& path) {
    const DWORD attributes = ::GetFileAttributesA(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return 0;
    if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) return 0;
    constexpr DWORD no_access = 0;
    const HANDLE end = ::CreateFileA(path.c_str(), no_access,
                                     FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                     nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (end == INVALID_HANDLE_VALUE) return 0;
    const std::unique_ptr<HANDLE, handle_closer> file(end);
    const std::wstring wide = without_prefix(path_of(end));
    const std::string narrow = narrow_text(wide);
    // The nearest name in the code page would name another file.
    if (narrow.empty()) return ENOENT;
    path = narrow;
    return 0;
}

bool is_name_taken(const char* path) {
    return ::GetFileAttributesA(path) != INVALID_FILE_ATTRIBUTES;
}

}  // namespace trv::platform
