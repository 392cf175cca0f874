#pragma once

/// @file
/// The parts of the page of `trvfiles view` that are the same for every assembly. The build
/// generates page_parts.cpp from viewer/ and from the files of three.js.
///
/// Threads: any.

#include <string_view>
#include <vector>

namespace trv::cli {

struct PageParts {
    std::vector<std::string_view> styles;
    /// The markup of the body, without scripts.
    std::string_view body;
    /// The notice that has to be in every copy of three.js.
    std::string_view license;
    /// In the order in which they run. Empty if three.js was not found when the command was built.
    std::vector<std::string_view> scripts;
};

const PageParts& embeddedPageParts();

}  // namespace trv::cli
