#pragma once

/// @file
/// Threads: any.

#include <string>
#include <vector>

namespace trv {

/// The texts one after the other, with a ";" between each two.
inline std::string join_list(const std::vector<std::string>& texts) {
    std::string joined;
    for (const std::string& text : texts) {
        if (&text != &texts.front()) joined += ';';
        joined += text;
    }
    return joined;
}

}  // namespace trv
