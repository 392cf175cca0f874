#include <trvfiles/support/platform_sharing.h>

#include <aclapi.h>
#include <io.h>
#include <windows.h>

#include <string>

namespace trv::platform {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

// Those that say something about the file and are not about its content.
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

// The list is set by name: the right to change it may be missing where writing is allowed.
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

}  // namespace trv::platform
