#pragma once

#include <fuzz/harness/require.h>
#include <trvfiles/axis/axis_file.h>

#include <cstdio>
#include <memory>
#include <string>

namespace trv::fuzz {

/// Reads axis text from memory.
inline AxisContent axisContentOf(std::string text) {
    // A memory file of no bytes cannot be opened everywhere.
    if (text.empty()) text = "\n";
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(
        fmemopen(text.data(), text.size(), "rb"), std::fclose);
    require(file != nullptr, "memory opens as a file");
    return readAxisContent(file.get());
}

}  // namespace trv::fuzz
