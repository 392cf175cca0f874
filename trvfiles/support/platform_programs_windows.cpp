#include <trvfiles/support/platform_programs.h>

#include <windows.h>

#include <cstdint>

namespace trv::platform {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

}  // namespace

std::string open_on_desktop(const std::filesystem::path& file) {
    // Values up to 32 are failures.
    constexpr std::intptr_t last_failure = 32;
    const HINSTANCE result =
        ShellExecuteW(nullptr, L"open", file.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
    const auto code = reinterpret_cast<std::intptr_t>(result);
    return code > last_failure ? std::string() : "the shell reports error " + std::to_string(code);
}

}  // namespace trv::platform
