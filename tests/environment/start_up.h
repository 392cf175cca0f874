#pragma once

/// @file
/// The messages of a start-up, and helpers for its tests.

#include <tests/common/channel_log.h>
#include <tests/common/death_test.h>
#include <trvfiles/environment/variables.h>

#include <string>
#include <vector>

namespace trv::testing {

inline constexpr char opening[] = "LOADING ENVIRONMENT FILES ....";
inline constexpr char closing[] = "LOADING ENVIRONMENT FILES ....done.";
inline constexpr char closingAfterOneFile[] = ".LOADING ENVIRONMENT FILES ....done.";
inline constexpr char closingAfterTwoFiles[] = "..LOADING ENVIRONMENT FILES ....done.";
inline constexpr char listError[] = "Error loading 'environ.cfg' files\n";

inline std::string loading(const std::string& file) {
    return "loading configuration file '" + file + "'";
}

inline std::string overloading(const std::string& file) {
    return "Overloading '" + file + "'\n";
}

inline std::string notLoaded(const std::string& file) {
    return "Error loading '" + file + "'\n";
}

inline std::string valueOf(const char* name) {
    const char* value = get_variable(name);
    return value != nullptr ? value : "<undefined>";
}

/// The trace lines of the loader itself, without those of lookups and expansions.
inline std::vector<std::string> progress(const ChannelLog& log) {
    std::vector<std::string> lines;
    for (const std::string& line : log.traces()) {
        const std::string start = line.substr(0, line.find(' '));
        if (start == "LOADING" || start == ".LOADING" || start == "..LOADING" ||
            start == "loading" || start == "Overloading") {
            lines.push_back(line);
        }
    }
    return lines;
}

/// A home file with this list of further directories.
inline std::string homeText(const std::string& list) {
    return "[var]\nN = home\nFROM_HOME = 1\n[path]\nENV = " + list + "\n";
}

}  // namespace trv::testing
