#pragma once

#include <windows.h>

#include <filesystem>

namespace trv::testing {

/// A handle that keeps an existing file open, as an application does after loading it.
class HeldFile {
public:
    /// @param sharing  the access that others have meanwhile: FILE_SHARE_READ, FILE_SHARE_WRITE, or
    ///                0
    HeldFile(const std::filesystem::path& path, DWORD sharing)
        : handle_(::CreateFileW(path.c_str(), GENERIC_READ, sharing, nullptr, OPEN_EXISTING,
                                FILE_ATTRIBUTE_NORMAL, nullptr)) {}
    ~HeldFile() { ::CloseHandle(handle_); }
    HeldFile(const HeldFile&) = delete;
    HeldFile& operator=(const HeldFile&) = delete;

    bool isOpen() const { return handle_ != INVALID_HANDLE_VALUE; }

private:
    HANDLE handle_;
};

}  // namespace trv::testing
