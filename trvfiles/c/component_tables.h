#pragma once

/// @file
/// The components and placements of an assembly as arrays, and the way back.

#include <trvfiles/c/handle_table.h>
#include <trvfiles/c/indexed_assembly.h>
#include <trvfiles/c/trvfiles.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace trv::c {

using Placement = std::array<double, 16>;

/// Texts one after the other, with the offsets between them.
class TextColumn {
public:
    void add(std::string& text, const std::string& added);
    const std::size_t* offsets() const { return offsets_.data(); }
    /// The offset at which the first text begins.
    void begin(const std::string& text) { offsets_.push_back(text.size()); }
    void reserve(std::size_t count) { offsets_.reserve(count + 1); }

private:
    std::vector<std::size_t> offsets_;
};

/// All components of an assembly.
class ComponentTable {
public:
    static constexpr HandleType type = HandleType::components;

    /// REQUIRES: all components of one assembly in document order.
    explicit ComponentTable(const std::vector<IndexedAssembly::Node>& nodes);

    trvfiles_component_table table() const;

private:
    void reserve(std::size_t count);
    void reserveText(const std::vector<IndexedAssembly::Node>& nodes);
    void addNumbers(const IndexedAssembly::Node& node);

    std::vector<std::size_t> parent_;
    std::vector<std::size_t> subtreeSize_;
    std::vector<std::uint8_t> enabled_;
    std::vector<std::array<double, 3>> translation_;
    std::vector<std::array<double, 9>> orientation_;
    std::vector<Placement> world_;
    std::string text_;
    TextColumn name_;
    TextColumn comment_;
    TextColumn geometry_;
};

/// A flattened assembly.
class PlacementTable {
public:
    static constexpr HandleType type = HandleType::placements;

    /// @param parent  the placement of the root's parent
    PlacementTable(IndexedAssembly& assembly, const Placement& parent);

    trvfiles_placement_table table() const;

private:
    std::vector<std::size_t> component_;
    std::vector<Placement> world_;
    std::string text_;
    TextColumn geometry_;
};

/// The tree that a table describes.
///
/// @throws Refusal if it describes none
ComponentBody treeOf(const trvfiles_component_table& table);

}  // namespace trv::c
