#pragma once

/// @file
/// Files that the measured works read and write.

#include <filesystem>
#include <string>

namespace trv::bench {

/// A directory of the process's own, which is removed with it.
const std::filesystem::path& workDirectory();

/// The path of a file in it.
std::string workFile(const std::string& name);

void writeText(const std::string& path, const std::string& text);

}  // namespace trv::bench
