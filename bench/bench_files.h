#pragma once

/// @file
/// Files that the measured workloads read and write.

#include <filesystem>
#include <string>

namespace trv::bench {

/// A directory of this process, which is removed when the process ends.
const std::filesystem::path& workDirectory();

/// The path of a file in workDirectory().
std::string workFile(const std::string& name);

/// The path of a file that is kept in memory if the system has a directory for that. Writing a
/// large file to a disk is sometimes limited by the disk, in the library and in its peers.
std::string memoryFile(const std::string& name);

void writeText(const std::string& path, const std::string& text);

}  // namespace trv::bench
