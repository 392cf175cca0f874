#pragma once

/// @file
/// The search for machine contexts through directories and the links between them.
///
/// Threads: any.

#include <trvfiles/catalogue/context_graph.h>

#include <QString>

#include <vector>

namespace trv {

/// Every path through a graph that ends at a context and enters no directory twice, depth-first, in
/// the order of the entries. A path that the system does not open, such as one with too many links,
/// is left out.
///
/// A directory is entered only if a context can be reached from it without the directories that
/// have been entered already. So the time is bounded by the number of results, their depth and the
/// size of those parts of the graph that links make cyclic; a graph without a context takes only
/// time in proportion to its size.
///
/// @param directories  as listContextDirectories() makes them; the search begins at the first one
/// @return the paths of the contexts
std::vector<QString> findContexts(const std::vector<ContextDirectory>& directories);

}  // namespace trv
