#pragma once

#include <fuzz/harness/require.h>
#include <trvfiles/axis/axis_file.h>
#include <trvfiles/support/CFileFault.h>

#include <cstdio>
#include <memory>
#include <string>

namespace trv::fuzz {

/// What reading an axis text gives: the content, or why there is none.
struct ReadAxis {
    AxisContent content;
    CFileFault fault;
};

/// Reads axis text from memory.
inline ReadAxis axisOf(std::string text) {
    // Not every system can open a memory file of 0 bytes.
    if (text.empty()) text = "\n";
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(
        fmemopen(text.data(), text.size(), "rb"), std::fclose);
    require(file != nullptr, "memory opens as a file");
    ReadAxis read;
    const bool isRead = readAxisText(file.get(), read.content, &read.fault);
    require(isRead == read.fault.reason.empty(), "a failure has a reason, and nothing else has");
    return read;
}

}  // namespace trv::fuzz
