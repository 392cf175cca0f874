#pragma once

/// @file
/// The fields of a machine context as a plain struct, and functions that read and save them with
/// other libraries, under the same sections and keys.

#include <string>

namespace trv::bench {

struct PlainContext {
    std::string name;
    std::string comment;
    std::string machineName;
    std::string machinePosition;
    std::string machineProximity;
    std::string origin;
    std::string referenceAxis;
    std::string surfaceGroup;
    std::string clampingSystem;
    std::string clampingProximity;
};

PlainContext sampleContext(const std::string& comment);

PlainContext readWithQSettings(const std::string& path);
PlainContext readWithGKeyFile(const std::string& path);
PlainContext readWithSimpleIni(const std::string& path);
PlainContext readWithInih(const std::string& path);
PlainContext readWithKConfig(const std::string& path);

void saveWithQSettings(const std::string& path, const PlainContext& context);
void saveWithGKeyFile(const std::string& path, const PlainContext& context);
void saveWithKConfig(const std::string& path, const PlainContext& context);

/// Writes a temporary file, which is synced and renamed.
void saveByHand(const std::string& path, const PlainContext& context);

}  // namespace trv::bench
