#pragma once

#include <process.h>
#include <windows.h>

#include <cstdint>
#include <filesystem>
#include <string>

namespace trv::testing {

/// A test of this program that runs in its own process, at the same time as others. It is disabled
/// in normal runs. The variable TRV_TEST_DIRECTORY names its directory.
class SpawnedTest {
public:
    SpawnedTest(const char* name, const std::filesystem::path& directory) {
        wchar_t program[1024];
        ::GetModuleFileNameW(nullptr, program, 1024);
        ::SetEnvironmentVariableW(L"TRV_TEST_DIRECTORY", directory.c_str());
        const std::wstring quoted = L'"' + std::wstring(program) + L'"';
        const std::wstring filter = L"--gtest_filter=" + std::filesystem::path(name).wstring();
        process_ = ::_wspawnl(_P_NOWAIT, program, quoted.c_str(), filter.c_str(),
                              L"--gtest_also_run_disabled_tests", L"--gtest_brief=1", nullptr);
        ::SetEnvironmentVariableW(L"TRV_TEST_DIRECTORY", nullptr);
    }
    ~SpawnedTest() { hasPassed(); }
    SpawnedTest(const SpawnedTest&) = delete;
    SpawnedTest& operator=(const SpawnedTest&) = delete;

    /// Waits for the end of the process. Called once.
    bool hasPassed() {
        int status = -1;
        const bool hasEnded =
            process_ != -1 && ::_cwait(&status, process_, 0) == process_ && status == 0;
        process_ = -1;
        return hasEnded;
    }
    void kill() {
        ::TerminateProcess(reinterpret_cast<HANDLE>(process_), 9);
        hasPassed();
    }

    /// The directory, in the spawned process; empty in any other.
    static std::filesystem::path directory() {
        wchar_t name[1024];
        const DWORD length = ::GetEnvironmentVariableW(L"TRV_TEST_DIRECTORY", name, 1024);
        return std::wstring(name, length);
    }

private:
    std::intptr_t process_ = -1;
};

}  // namespace trv::testing
