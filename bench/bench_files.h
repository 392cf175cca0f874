#pragma once

/// @file
/// Files that the measured workloads read and write.

#include <filesystem>
#include <string>

namespace trv::bench {

/// A directory of this process, which is removed when the process ends. It is in memory if the
/// system has a directory for that: a write to a disk takes longer while the disk is busy, in the
/// library and in its peers.
const std::filesystem::path& workDirectory();

/// The path of a file in workDirectory().
std::string workFile(const std::string& name);

/// The path of a file on a disk, for workloads that wait until a file is synced.
std::string diskFile(const std::string& name);

std::string readText(const std::string& path);
void writeText(const std::string& path, const std::string& text);

}  // namespace trv::bench
