#pragma once

/// @file
/// A parser for a file of variables, and an expansion of references, written by hand.

#include <string>
#include <unordered_map>

namespace trv::bench {

/// Values by folded names.
using PlainSettings = std::unordered_map<std::string, std::string>;

std::string foldedName(const std::string& name);

/// Loads the "NAME = value" lines of a message file. Comments and headers are ignored.
void loadByHand(const std::string& path, PlainSettings& settings);

/// Replaces "$NAME" and "${NAME}" by the value of the process environment or by a setting.
std::string expandByHand(const std::string& text, const PlainSettings& settings);

}  // namespace trv::bench
