#include <trvfiles/support/ascii_case.h>
#include <trvfiles/support/program_root.h>

#include <algorithm>
#include <string_view>

namespace trv {
namespace {

[[gnu::used]] const char source_id[] = "$Id$ TRAVIK";

constexpr std::size_t max_path_length = 511;

// Consumes the last part of a path and the separator before it. A path of one part keeps it.
bool consume_last_part(std::string_view& path, std::string_view& part) {
    const std::size_t separator = path.rfind('/');
    if (separator == std::string_view::npos) return false;
    part = path.substr(separator + 1);
    path = path.substr(0, separator);
    return true;
}

}  // namespace

std::string root_of_program(std::string program_file) {
    if (program_file.size() > max_path_length) return {};
    std::replace(program_file.begin(), program_file.end(), '\\', '/');
    std::string_view root = program_file;
    std::string_view name;
    std::string_view directory;
    std::string_view parent;
    if (!consume_last_part(root, name) || !consume_last_part(root, directory) ||
        !consume_last_part(root, parent)) {
        return {};
    }
    const bool is_installed =
        equal_ignoring_case(directory, "msw") && equal_ignoring_case(parent, "exe");
    return is_installed ? std::string(root) : std::string();
}

}  // namespace trv
