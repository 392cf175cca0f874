#pragma once

#include <fuzz/harness/require.h>
#include <trvfiles/axis/axis_file.h>

#include <cstdio>
#include <memory>
#include <string>

namespace trv::fuzz {

/// Reads axis text from memory.
inline AxisContent axisContentOf(std::string text) {
    // Not every system can open a memory file of 0 bytes.
    if (text.empty()) text = "\n";
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(
        fmemopen(text.data(), text.size(), "rb"), std::fclose);
    require(file != nullptr, "memory opens as a file");
    return readAxisContent(file.get());
}

}  // namespace trv::fuzz
