#pragma once

/// @file
/// The files that the catalogue creates, and the content of a directory as tests compare it.

#include <tests/common/file_bytes.h>

#include <filesystem>
#include <map>
#include <string>

namespace trv::testing {

/// The axis file of the identity, without CRs.
inline const std::string identityAxis =
    "      0\n"
    "      1.000000      0.000000      0.000000      0.000000\n"
    "      0.000000      1.000000      0.000000      0.000000\n"
    "      0.000000      0.000000      1.000000      0.000000\n"
    "      0.000000      0.000000      0.000000      1.000000\n"
    "      1.000000      0.000000      0.000000      0.000000\n"
    "      0.000000      1.000000      0.000000      0.000000\n"
    "      0.000000      0.000000      1.000000      0.000000\n"
    "      0.000000      0.000000      0.000000      1.000000\n";

/// The file of a context with only these fields set, without CRs.
inline std::string createdContext(const std::string& name, const std::string& machine,
                                  const std::string& position) {
    return "[header]\nversion=2\ncomment=\nname=" + name + "\n[machine]\nname=" + machine +
           "\nposition=" + position +
           "\nproximity=0.000000\n"
           "[postpro]\norigin_program=0.000000 0.000000 0.000000\nreference_axis=\n"
           "[clamping_system]\nproximity=0.000000\n";
}

/// The value of a directory in Contents.
inline const std::string aDirectory = "<directory>";

/// The files in a directory and its subdirectories. The key is the relative name in UTF-8 with "/",
/// the value the bytes without CRs.
using Contents = std::map<std::string, std::string>;

inline Contents contentsOf(const std::filesystem::path& directory) {
    Contents contents;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(directory)) {
        contents[entry.path().lexically_relative(directory).generic_u8string()] =
            entry.is_directory() ? aDirectory : textOf(entry.path());
    }
    return contents;
}

}  // namespace trv::testing
