#pragma once

/// @file
/// An assembly as the columns of the data of a page: its components in the order of the file, and
/// the placements that the library computes.
///
/// Threads: any.

#include <cli/scene_files.h>
#include <cli/text_output.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/assembly/XForm3Gen.h>
#include <trvfiles/assembly/component_body.h>

#include <QString>

#include <unordered_map>
#include <vector>

namespace trv::cli {

class SceneComponents {
public:
    /// @param name      of the assembly file
    /// @param assembly  has to live as long as the object, unchanged
    /// @param files     gets the geometry files, also those of disabled components
    SceneComponents(QString name, const CTrvAssemblyData& assembly, SceneFiles& files);

    /// Adds the members of an element of "assemblies" to the current object.
    void write(JsonWriter& json) const;

    /// The index of each component.
    std::unordered_map<const ComponentBody*, int> indices() const;

private:
    struct Component {
        const ComponentBody* body;
        Math::XForm3Gen<double> world;
        /// -1 for the root.
        int parent;
        /// -1 if it has no geometry file.
        int file;
        /// Neither the component nor one above it is disabled.
        bool isShown;
    };
    using Selection = bool (*)(const Component& component);

    void addComponents(const ReferenceDirectory& directory, SceneFiles& files);
    void writeComponents(JsonWriter& json) const;
    /// Writes the columns of the components with a file that are selected.
    void writePlacements(const char* key, Selection isSelected, JsonWriter& json) const;

    QString name_;
    const CTrvAssemblyData& assembly_;
    std::vector<Component> components_;
};

}  // namespace trv::cli
