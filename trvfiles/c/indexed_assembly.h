#pragma once

/// @file
/// The assembly to which a handle refers, with its components by index.

#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/assembly/component_body.h>
#include <trvfiles/c/handle_table.h>

#include <cstddef>
#include <mutex>
#include <vector>

namespace trv::c {

/// The components are numbered in document order. The list of them is made when it is first needed,
/// and again after the tree has changed elsewhere than at the end of that order.
///
/// Threads: nodes() and const operations may run at once; anything else needs the object alone.
class IndexedAssembly {
public:
    static constexpr HandleType type = HandleType::assembly;

    struct Node {
        ComponentBody* body;
        /// TRVFILES_NO_INDEX for the root.
        std::size_t parent;
        std::size_t subtreeSize;
        std::size_t depth;
    };

    IndexedAssembly();
    explicit IndexedAssembly(CTrvAssemblyData data);

    const CTrvAssemblyData& data() const { return data_; }

    /// The assembly, to be changed. The list of components is dropped.
    class Change {
    public:
        explicit Change(IndexedAssembly& assembly) : assembly_(assembly) {}
        ~Change() { assembly_.dropNodes(); }
        Change(const Change&) = delete;
        Change& operator=(const Change&) = delete;
        CTrvAssemblyData& data() { return assembly_.data_; }

    private:
        IndexedAssembly& assembly_;
    };

    void setDimension(const double dimension[3]) { data_.setDimension(dimension); }

    /// All components, the root first. Valid until the tree changes.
    const std::vector<Node>& nodes();

    /// Adds a component with all that is below it, and returns its index. REQUIRES: the index of a
    /// parent, and a position up to the number of its children.
    ///
    /// @throws std::bad_alloc; the assembly is then as it was
    std::size_t add(std::size_t parent, std::size_t position, ComponentBody added);

    /// Removes a component with all that is below it. REQUIRES: an index above 0.
    void remove(std::size_t index);

private:
    void dropNodes();
    void append(std::size_t parent, ComponentBody added);
    void insert(std::size_t parent, std::size_t position, ComponentBody added);
    std::size_t indexOfChild(std::size_t parent, std::size_t position);

    CTrvAssemblyData data_;
    std::mutex mutex_;
    // Empty if it is to be made.
    std::vector<Node> nodes_;
};

}  // namespace trv::c
