#pragma once

/// @file
/// The paths of components in the output and in the arguments of commands, such as
/// "Setup/Left vise[1]/Moving jaw[2]".
///
/// A path is the name of the root, "(root)" if that is empty. For each component below the root
/// it continues with "/", the name of the component and its index among its siblings, from 0 in
/// brackets. Names are written as shown() prints them.
///
/// Threads: any.

#include <trvfiles/assembly/component_body.h>

#include <QString>

#include <cstddef>
#include <string>
#include <vector>

namespace trv::cli {

/// The indices of a component and its parents among their siblings, from the root's child down.
/// Those of the root are empty.
using ComponentPlace = std::vector<std::size_t>;

/// The path of a component, in UTF-8.
///
/// REQUIRES: the place is that of a component of the tree.
std::string pathOf(const ComponentBody& root, const ComponentPlace& place);

struct ComponentSearch {
    ComponentPlace place;
    /// Why no component is found, human-readable; empty if one is. A part of the path that names
    /// nothing is quoted, together with the most similar name or the first one.
    QString mistake;
};

/// Finds the component of a path. An index may be left out after a name that is not empty and that
/// no sibling has.
///
/// A "/" and a "[" of a name are written as they are, as pathOf() does. If a path then means
/// several components, the one that is meant with all indices is found. If there are several of
/// those too, it is a mistake. As "\x2f" and "\x5b" the two characters always belong to a name.
///
/// A "\" begins an escape of shown(). Each character may be escaped.
///
/// The time is linear in the number of components and the lengths of the names.
ComponentSearch findComponent(const ComponentBody& root, const QString& path);

/// The component of a place.
///
/// REQUIRES: the place is that of a component of the tree.
const ComponentBody& componentAt(const ComponentBody& root, const ComponentPlace& place);
ComponentBody& componentAt(ComponentBody& root, const ComponentPlace& place);

}  // namespace trv::cli
