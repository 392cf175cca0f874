#pragma once

/// @file
/// The definitions of a variable or a path list in the configuration, and the value that each one
/// extends.
///
/// All texts are narrow ones, as the runtime has them.

#include <cli/env_origin.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace trv::cli {

/// One entry of the configuration.
struct Definition {
    /// "NAME = value" as it is written, without the blanks around it.
    std::string entry;
    Origin origin;
    /// Whether a "+" in the entry means the value so far.
    bool extends = false;
    /// Whether that value exceeds a limit of resolve_references().
    bool isBeyondLimits = false;
    /// The value so far; empty unless the entry `extends` it within the limits.
    std::string extended;
};

/// The definitions of one name, each replaced by the next.
///
/// It holds offsets in the environment's store, and is valid as long as that store.
class History {
public:
    /// The number of definitions that are shown at each end of a long history.
    static constexpr std::size_t shownAtEachEnd = 5;

    /// Appends a text of the environment's store, after those that it replaced.
    void add(std::int32_t text);

    std::size_t size() const { return texts_.size(); }

    /// How many definitions forEach() leaves out: 0 if the history is short, or if `all` is set.
    std::size_t leftOut(bool all) const;

    /// Calls `show` with the definitions, the oldest first, and `leaveOut` once in place of those
    /// that are left out. Takes time for the length of the texts and of the values that are shown.
    void forEach(bool all, const std::function<void(const Definition&)>& show,
                 const std::function<void()>& leaveOut) const;

private:
    std::vector<std::int32_t> texts_;
};

}  // namespace trv::cli
