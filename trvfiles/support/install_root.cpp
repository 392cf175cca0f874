#include <trvfiles/support/ascii_case.h>
#include <trvfiles/support/file_system.h>
#include <trvfiles/support/install_root.h>
#include <trvfiles/support/platform.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

constexpr std::size_t module_name_space = 512;

// Cuts the last part off a path, with the separator before it; an only part stays.
bool cut_last_part(std::string_view& path, std::string_view& part) {
    const std::size_t separator = path.rfind('/');
    if (separator == std::string_view::npos) return false;
    part = path.substr(separator + 1);
    path = path.substr(0, separator);
    return true;
}

bool is_set(const char* value) {
    return value != nullptr && *value != '\0';
}

std::string root_outside_trvhome() {
    const char* server_root = platform::get_environment("TRVHOME_LS");
    return is_set(server_root) ? server_root : root_of_program(platform::program_file());
}

}  // namespace

std::string root_of_program(std::string program_file) {
    if (program_file.size() >= module_name_space) return {};
    std::replace(program_file.begin(), program_file.end(), '\\', '/');
    std::string_view root = program_file;
    std::string_view name;
    std::string_view directory;
    std::string_view parent;
    if (!cut_last_part(root, name) || !cut_last_part(root, directory) ||
        !cut_last_part(root, parent)) {
        return {};
    }
    const bool is_installed =
        equal_ignoring_case(directory, "msw") && equal_ignoring_case(parent, "exe");
    return is_installed ? std::string(root) : std::string();
}

const char* install_root(bool publish) {
    // Never destroyed: static objects of a host may still use the root.
    static std::string& root = *new std::string;
    const char* home = platform::get_environment("TRVHOME");
    if (is_set(home)) {
        root = home;
        return root.c_str();
    }
    root = root_outside_trvhome();
    if (root.empty()) return nullptr;
    if (publish) platform::set_environment("TRVHOME", root.c_str());
    return root.c_str();
}

}  // namespace trv
