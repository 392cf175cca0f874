#pragma once

/// @file
/// A second writer of assembly files, by way of Qt's DOM, with which tests compare the first one.

#include <trvfiles/assembly/dom_tree.h>

#include <string>

class CTrvAssemblyData;

namespace trv::testing {

/// REQUIRES: setInvalidDataPolicy().
///
/// @param tree  an empty document, which takes the elements
/// @param text  takes the bytes of the file
/// @return false if the file could not be read back
bool writeByDom(const CTrvAssemblyData& data, DomTree& tree, std::string& text);

}  // namespace trv::testing
