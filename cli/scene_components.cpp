#include <cli/assembly_walk.h>
#include <cli/input_files.h>
#include <cli/scene_components.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace trv::cli {
namespace {

constexpr std::size_t numbersOfPlacement = 12;

void append(std::vector<double>& numbers, const double vector[3]) {
    numbers.insert(numbers.end(), vector, vector + 3);
}

void append(std::vector<double>& numbers, const CComponentInfo& entry) {
    const double* translation = nullptr;
    const double* axes[3] = {};
    entry.getTranslation(translation);
    entry.getOrientation(axes[0], axes[1], axes[2]);
    for (const double* const axis : axes)
        append(numbers, axis);
    append(numbers, translation);
}

// The list that the library gives if each component is enabled and has a file: its entries are the
// components, in their order. Iterative: the tree may be deeper than the stack.
std::vector<CComponentInfo> placementsOfAll(CTrvAssemblyData assembly) {
    std::vector<ComponentBody*> pending = {&ComponentBody::editable(assembly.getRootComponent())};
    while (!pending.empty()) {
        ComponentBody& component = *pending.back();
        pending.pop_back();
        component.enabled = true;
        component.geometryFileName = "any";
        for (ComponentBody& child : component.components)
            pending.push_back(&child);
    }
    return assembly.getComponentFileList();
}

// A file without an overall size has zeros.
bool isSize(const double dimension[3]) {
    const bool isFinite =
        std::isfinite(dimension[0]) && std::isfinite(dimension[1]) && std::isfinite(dimension[2]);
    return isFinite && (dimension[0] != 0 || dimension[1] != 0 || dimension[2] != 0);
}

}  // namespace

void SceneComponents::Placements::add(std::size_t component, const CComponentInfo& entry) {
    components.push_back(component);
    append(matrices, entry);
}

SceneComponents::SceneComponents(const QString& name, const CTrvAssemblyData& assembly,
                                 SceneFiles& files)
    : name_(name), assembly_(assembly) {
    addComponents(ReferenceDirectory(name), files);
}

// A walk in the order of the flattened list: each component before its children.
void SceneComponents::addComponents(const ReferenceDirectory& directory, SceneFiles& files) {
    std::unordered_map<std::string, int> known;
    const auto fileOf = [&](const std::string& name) {
        if (name.empty()) return -1;
        const auto found = known.find(name);
        if (found != known.end()) return found->second;
        return known.emplace(name, files.add(directory, name)).first->second;
    };
    // The indices of the current component and of those above it.
    std::vector<int> ancestors;
    forEachComponent(assembly_, [&](const ComponentBody& body, std::size_t level) {
        ancestors.resize(level);
        const int parent = ancestors.empty() ? -1 : ancestors.back();
        const bool isParentShown =
            parent < 0 || components_[static_cast<std::size_t>(parent)].isShown;
        ancestors.push_back(static_cast<int>(components_.size()));
        components_.push_back(
            {&body, parent, fileOf(body.geometryFileName), isParentShown && body.enabled});
    });
}

SceneComponents::Placements SceneComponents::shownPlacements() const {
    const std::vector<CComponentInfo> list = assembly_.getComponentFileList();
    Placements placements;
    placements.components.reserve(list.size());
    placements.matrices.reserve(numbersOfPlacement * list.size());
    auto entry = list.begin();
    for (std::size_t i = 0; i < components_.size(); ++i) {
        if (components_[i].isShown && components_[i].file >= 0) placements.add(i, *entry++);
    }
    return placements;
}

SceneComponents::Placements SceneComponents::ghostPlacements(
    const std::vector<CComponentInfo>& all) const {
    Placements placements;
    for (std::size_t i = 0; i < components_.size(); ++i) {
        if (!components_[i].isShown && components_[i].file >= 0) placements.add(i, all[i]);
    }
    return placements;
}

void SceneComponents::write(JsonWriter& json) const {
    json.add("path", displayName(name_));
    double dimension[3];
    assembly_.getDimension(dimension);
    if (isSize(dimension)) {
        const double origin[3] = {0, 0, 0};
        json.add("dimension", QJsonArray{jsonNumbers(origin, 3), jsonNumbers(dimension, 3)});
    } else {
        json.addNull("dimension");
    }
    const std::vector<CComponentInfo> all = placementsOfAll(assembly_);
    writeComponents(all, json);
    writePlacements("placements", shownPlacements(), json);
    writePlacements("ghosts", ghostPlacements(all), json);
}

void SceneComponents::writeComponents(const std::vector<CComponentInfo>& all,
                                      JsonWriter& json) const {
    const auto writeIntegers = [&](const char* key, int (*valueOf)(const Component&)) {
        json.beginArray(key);
        for (const Component& component : components_)
            json.addIntegerElement(valueOf(component));
        json.endArray();
    };
    const auto writeTexts = [&](const char* key, std::string ComponentFields::*text) {
        json.beginArray(key);
        for (const Component& component : components_)
            json.addTextElement(component.body->*text);
        json.endArray();
    };
    json.beginObject("components");
    writeIntegers("parent", [](const Component& component) { return component.parent; });
    writeTexts("name", &ComponentFields::name);
    writeTexts("comment", &ComponentFields::comment);
    writeIntegers("file", [](const Component& component) { return component.file; });
    writeIntegers("enabled",
                  [](const Component& component) { return component.body->enabled ? 1 : 0; });
    json.addBase64("local", localNumbers());
    std::vector<double> world;
    world.reserve(numbersOfPlacement * all.size());
    for (const CComponentInfo& entry : all)
        append(world, entry);
    json.addBase64("world", world);
    json.endObject();
}

std::vector<double> SceneComponents::localNumbers() const {
    std::vector<double> numbers;
    numbers.reserve(numbersOfPlacement * components_.size());
    for (const Component& component : components_) {
        const ComponentBody& body = *component.body;
        for (const double* const vector : {body.vec1, body.vec2, body.vec3, body.translation})
            append(numbers, vector);
    }
    return numbers;
}

void SceneComponents::writePlacements(const char* key, const Placements& placements,
                                      JsonWriter& json) const {
    json.beginObject(key);
    json.beginArray("component");
    for (const std::size_t component : placements.components)
        json.addIntegerElement(static_cast<long long>(component));
    json.endArray();
    json.beginArray("file");
    for (const std::size_t component : placements.components)
        json.addIntegerElement(components_[component].file);
    json.endArray();
    json.addBase64("matrix", placements.matrices);
    json.endObject();
}

std::unordered_map<const ComponentBody*, int> SceneComponents::indices() const {
    std::unordered_map<const ComponentBody*, int> indices;
    indices.reserve(components_.size());
    for (std::size_t i = 0; i < components_.size(); ++i)
        indices.emplace(components_[i].body, static_cast<int>(i));
    return indices;
}

}  // namespace trv::cli
