#pragma once

/// @file
/// The directories of a path list, each with the definition that names it.
///
/// All texts are narrow ones, as the runtime has them.

#include <cli/env_lookup.h>
#include <cli/env_origin.h>

#include <string>
#include <vector>

namespace trv::cli {

struct ListedDirectory {
    /// Expanded, in the runtime's form.
    std::string path;
    /// The definition in which the element is written: that of another path list if the list refers
    /// to it, or the one that a "+" means.
    Origin origin;
    bool exists;
};

/// The elements of a path list, expanded, in the order in which a search tries them. Expanding them
/// makes lookups. An element that is made of several definitions belongs to the one in which it
/// begins. If a reference reaches from one element into the next, or if the list is longer than a
/// search accepts or refers to others too often, the origin of all is that of the list's value.
///
/// @param value  as lookUp() returned it
/// @return empty if the list cannot be expanded
std::vector<ListedDirectory> directoriesOf(const Subject& list, const Value& value);

}  // namespace trv::cli
