#pragma once

/// @file
/// A walk over two assemblies that finds what differs.
///
/// Threads: any.

#include <cli/assembly_outline.h>
#include <cli/path_text.h>
#include <cli/rotation.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace trv::cli {

/// One difference between two assemblies. All pointers and references are valid while it is
/// received.
struct Difference {
    enum class Change {
        /// A subtree is only in the second assembly.
        added,
        /// A subtree is only in the first assembly.
        removed,
        /// A component has another place among its siblings.
        moved,
        /// A field has another value.
        changed,
        /// The same, but this does not make the records unequal.
        ignored
    };
    enum class Field {
        none,
        dimension,
        name,
        comment,
        geometryFile,
        enabled,
        translation,
        orientation,
        vec3
    };

    Change change;
    Field field;
    /// Of the component in the first assembly; for an added one in the second assembly. Empty for
    /// the dimension.
    const std::string& path;
    /// nullptr if the component is not in this assembly, and for the dimension.
    const OutlineNode* first;
    const OutlineNode* second;
    /// Among the siblings; 0 for a component that is not in this assembly.
    std::size_t firstIndex;
    std::size_t secondIndex;
    /// The values of dimension, translation and vec3; else nullptr.
    const double* firstVector;
    const double* secondVector;
    /// From the first orientation to the second one, if the field is the orientation and there is a
    /// rotation whose angle is not 0 in six decimals.
    std::optional<Rotation> rotation;
};

class DifferenceWalk {
public:
    /// Both assemblies have to live as long as the walk, unchanged.
    DifferenceWalk(const CTrvAssemblyData& first, const CTrvAssemblyData& second);

    /// Calls `receive` for each difference, a component's own before those of its children. There
    /// is one that is not ignored if and only if the records are unequal. Components are paired by
    /// pairSiblings(); the roots are always a pair. vec3 is ignored, and received only if no
    /// rotation describes it.
    void run(PathForm form, const std::function<void(const Difference&)>& receive) const;

private:
    const CTrvAssemblyData& first_;
    const CTrvAssemblyData& second_;
    AssemblyOutline firstOutline_;
    AssemblyOutline secondOutline_;
};

}  // namespace trv::cli
