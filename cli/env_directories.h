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
/// makes lookups. If the elements of one definition cannot be told apart, because the parts of an
/// element are in several definitions or the list is longer than a search accepts, the origin of
/// all is that of the list's value.
///
/// @param value  as lookUp() returned it
/// @return empty if the list cannot be expanded
std::vector<ListedDirectory> directoriesOf(const Subject& list, const Value& value);

}  // namespace trv::cli
