#pragma once

/// @file
/// The fuzz targets. Each accepts any bytes as its input, passes them to one part of the library,
/// and checks the laws that hold for every input.

#include <string_view>

namespace trv::fuzz {

using Check = void (*)(std::string_view input);

struct Target {
    std::string_view name;
    Check check;
};

void checkAssemblyWriting(std::string_view input);
void checkAssemblyXml(std::string_view input);
void checkAxisText(std::string_view input);
void checkCInterface(std::string_view input);
void checkExpansion(std::string_view input);
void checkMachineContextRead(std::string_view input);
void checkMachineContextRoundTrip(std::string_view input);
void checkMessageFile(std::string_view input);
void checkPathSearchWildcard(std::string_view input);
void checkSectionedFile(std::string_view input);
void checkStoreOperations(std::string_view input);

inline constexpr Target targets[] = {
    {"assembly_writing", checkAssemblyWriting},
    {"assembly_xml", checkAssemblyXml},
    {"axis_text", checkAxisText},
    {"c_interface", checkCInterface},
    {"expansion", checkExpansion},
    {"machine_context_read", checkMachineContextRead},
    {"machine_context_round_trip", checkMachineContextRoundTrip},
    {"message_file", checkMessageFile},
    {"path_search_wildcard", checkPathSearchWildcard},
    {"sectioned_file", checkSectionedFile},
    {"store_operations", checkStoreOperations},
};

/// The target of that name, or nullptr.
constexpr const Target* findTarget(std::string_view name) {
    for (const Target& target : targets) {
        if (target.name == name) return &target;
    }
    return nullptr;
}

}  // namespace trv::fuzz
