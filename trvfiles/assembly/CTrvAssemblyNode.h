#pragma once

/// @file
/// A component of an assembly in its place in the tree, to be read and edited there.

#include <trvfiles/export.h>

#include <array>
#include <cstddef>
#include <functional>
#include <string>

class CTrvAssemblyComponentData;

/// A component that belongs to a CTrvAssemblyComponentData: the component itself or any one below
/// it. A change of a node is a change of the tree, and no access copies a subtree:
///
///     for (CTrvAssemblyNode& child : assembly.getRootComponent().node().children())
///         child.setEnabled(false);
///
/// Only the library makes nodes, and a host refers to them. A reference is valid while the
/// component that owns the tree lives and is not assigned to, and as long as no list of children on
/// the way from it to the node is changed. Moving the owner keeps its nodes.
///
/// Texts, numbers and units are those of CTrvAssemblyComponentData; nothing is checked. No
/// operation recurses: the depth of a tree is limited by memory alone. Running out of it throws
/// std::bad_alloc, and the tree is then as it was.
///
/// Threads: const operations may run at once on one tree; anything else needs the tree alone.
class TRV_EXPORT CTrvAssemblyNode {
public:
    CTrvAssemblyNode(const CTrvAssemblyNode&) = delete;
    CTrvAssemblyNode& operator=(const CTrvAssemblyNode&) = delete;

    /// The display name, narrow or wide; the getters return copies.
    std::string getName() const;
    void setName(std::string name);
    std::wstring getNameW() const;
    void setNameW(const std::wstring& name);

    /// Free text, narrow or wide; the getters return copies.
    std::string getComment() const;
    void setComment(std::string comment);
    std::wstring getCommentW() const;
    void setCommentW(const std::wstring& comment);

    /// The geometry file as it was set, narrow or wide; empty if the component only groups
    /// children.
    std::string getGeometryFileName() const;
    void setGeometryFileName(std::string fileName);
    std::wstring getGeometryFileNameW() const;
    void setGeometryFileNameW(const std::wstring& fileName);

    /// Flattening leaves a component out that is not enabled, with all that is below it.
    bool isEnabled() const;
    void setEnabled(bool enabled);

    /// The origin in the parent's frame: x, y and z, in the project's length unit.
    std::array<double, 3> getTranslation() const;
    void setTranslation(const std::array<double, 3>& translation);

    /// The images of the x, y and z axes in the parent's frame.
    std::array<std::array<double, 3>, 3> getOrientation() const;
    void setOrientation(const std::array<std::array<double, 3>, 3>& vectors);

    /// The number of children: components directly below this one. getComponentNumber() of a
    /// component counts something else, placed geometry files.
    std::size_t getChildCount() const;

    /// A child in its place.
    ///
    /// @param index  below getChildCount(); a larger one is not checked
    const CTrvAssemblyNode& getChild(std::size_t index) const;
    CTrvAssemblyNode& getChild(std::size_t index);

    /// Inserts a child before that of an index. References to the children of this node and to all
    /// below them become invalid.
    ///
    /// @param index      at most getChildCount(), as larger ones are
    /// @param component  taken: one that is moved in is not copied
    /// @return the child in its place
    CTrvAssemblyNode& insertChild(std::size_t index, CTrvAssemblyComponentData component);

    /// insertChild() after the last child.
    CTrvAssemblyNode& addChild(CTrvAssemblyComponentData component);

    /// Removes a child with all that is below it. References to the children of this node and to
    /// all below them become invalid.
    ///
    /// @return whether there was a child of this index
    bool removeChild(std::size_t index);

    /// A copy of the component with all that is below it.
    CTrvAssemblyComponentData toComponent() const;

    /// Replaces the component and all that is below it. References to what was below it become
    /// invalid, those to this node stay valid.
    ///
    /// @param component  taken: one that is moved in is not copied
    void assign(CTrvAssemblyComponentData component);

    /// The children of a node for a range-based for. It refers to the node.
    template <class Node>
    class Children {
    public:
        /// Compared by the place in the list, which is not to change during a loop.
        class Iterator {
        public:
            /// Refers to the child of this index.
            Iterator(Node& parent, std::size_t index) : parent_(&parent), index_(index) {}
            /// The child.
            Node& operator*() const { return parent_->getChild(index_); }
            /// Goes on to the next child.
            Iterator& operator++() {
                ++index_;
                return *this;
            }
            /// Whether both refer to the same index.
            bool operator==(const Iterator& other) const { return index_ == other.index_; }
            /// Whether they refer to different indices.
            bool operator!=(const Iterator& other) const { return index_ != other.index_; }

        private:
            Node* parent_;
            std::size_t index_;
        };

        /// Refers to a node, which has to live longer.
        explicit Children(Node& parent) : parent_(parent) {}
        /// The first child, and the end of the children.
        Iterator begin() const { return {parent_, 0}; }
        Iterator end() const { return {parent_, parent_.getChildCount()}; }

    private:
        Node& parent_;
    };

    /// The children, in their order.
    Children<const CTrvAssemblyNode> children() const;
    Children<CTrvAssemblyNode> children();

    /// How a walk continues after a component.
    enum class Visit {
        /// With the children of the component, then with the next component.
        proceed,
        /// With the next component that is not below this one.
        skip,
        /// Not at all.
        stop
    };

    /// Gets each component of a walk and its level: 0 for the node at which the walk begins, 1 for
    /// its children.
    using Visitor = std::function<Visit(CTrvAssemblyNode& node, std::size_t level)>;
    using ConstVisitor = std::function<Visit(const CTrvAssemblyNode& node, std::size_t level)>;

    /// Calls a visitor for this node and for all below it, each one before its children, which come
    /// in their order. The walk does not recurse.
    ///
    /// A visitor may change the component that it gets, its children included: they are visited as
    /// they are after its call. It may not change the children of a component that is above.
    ///
    /// @param visitor  not empty; what it throws passes through
    /// @return whether the walk was not stopped
    bool visit(const ConstVisitor& visitor) const;
    bool visit(const Visitor& visitor);

protected:
    /// Only components construct, move and destroy their base.
    CTrvAssemblyNode() = default;
    CTrvAssemblyNode(CTrvAssemblyNode&&) noexcept = default;
    ~CTrvAssemblyNode() = default;
};
