#pragma once

/// @file
/// A file of variables as other libraries load it, and a parser written by hand.

#include <string>
#include <unordered_map>

namespace trv::bench {

/// Values by the names with their letters folded.
using PlainSettings = std::unordered_map<std::string, std::string>;

std::string foldedName(const std::string& name);

/// Takes the "NAME = value" lines of a section of this kind of file; comments and headers are
/// passed over.
void loadByHand(const std::string& path, PlainSettings& settings);

/// Replaces "$NAME" and "${NAME}" by the process's environment or by a setting.
std::string expandByHand(const std::string& text, const PlainSettings& settings);

}  // namespace trv::bench
