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

/// The path of a file that is kept in memory where the system has a place for that. A large file on
/// a disk is written at the disk's pace now and then, whoever writes it.
std::string memoryFile(const std::string& name);

void writeText(const std::string& path, const std::string& text);

}  // namespace trv::bench
