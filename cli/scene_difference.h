#pragma once

/// @file
/// What differs between the two assemblies of a page.

#include <cli/scene_components.h>
#include <cli/text_output.h>
#include <trvfiles/assembly/CTrvAssemblyData.h>

namespace trv::cli {

/// The same assemblies as records and as columns.
struct SceneSide {
    const CTrvAssemblyData& assembly;
    const SceneComponents& components;
};

/// Adds the array "diff" to the current object: an element for each component that differs, in the
/// order of a DifferenceWalk, and one for the dimension.
void writeSceneDifference(const SceneSide& first, const SceneSide& second, JsonWriter& json);

}  // namespace trv::cli
