#include <cli/input_files.h>
#include <cli/scene_components.h>
#include <trvfiles/assembly/flattening.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <utility>

namespace trv::cli {
namespace {

// Adds the images of the axes, and the translation.
void addPlacement(JsonWriter& json, const Math::XForm3Gen<double>& placement) {
    double numbers[12];
    double* to = numbers;
    for (int row = 0; row < 4; ++row)
        to = std::copy_n(placement.data() + std::ptrdiff_t{4} * row, 3, to);
    json.addBase64(numbers, 12);
}

// A file without an overall size has zeros.
bool isSize(const double dimension[3]) {
    const bool isFinite =
        std::isfinite(dimension[0]) && std::isfinite(dimension[1]) && std::isfinite(dimension[2]);
    return isFinite && (dimension[0] != 0 || dimension[1] != 0 || dimension[2] != 0);
}

}  // namespace

SceneComponents::SceneComponents(QString name, const CTrvAssemblyData& assembly, SceneFiles& files)
    : name_(std::move(name)), assembly_(assembly) {
    addComponents(ReferenceDirectory(name_), files);
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
    const auto visit = [&](const PlacedComponent& placed) {
        const ComponentBody& body = placed.component;
        ancestors.resize(placed.level);
        const int parent = ancestors.empty() ? -1 : ancestors.back();
        const bool isParentShown =
            parent < 0 || components_[static_cast<std::size_t>(parent)].isShown;
        ancestors.push_back(static_cast<int>(components_.size()));
        components_.push_back({&body, placed.world, parent, fileOf(body.geometryFileName),
                               isParentShown && body.enabled});
        return true;
    };
    visitPlacements(ComponentBody::of(assembly_.getRootComponent()), Math::XForm3Gen<double>(),
                    visit);
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
    writeComponents(json);
    writePlacements(
        "placements", [](const Component& component) { return component.isShown; }, json);
    writePlacements(
        "ghosts", [](const Component& component) { return !component.isShown; }, json);
}

void SceneComponents::writeComponents(JsonWriter& json) const {
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
    json.beginBase64("local");
    for (const Component& component : components_)
        addPlacement(json, placementOf(*component.body));
    json.endBase64();
    json.beginBase64("world");
    for (const Component& component : components_)
        addPlacement(json, component.world);
    json.endBase64();
    json.endObject();
}

void SceneComponents::writePlacements(const char* key, Selection isSelected,
                                      JsonWriter& json) const {
    std::vector<std::size_t> selected;
    for (std::size_t i = 0; i < components_.size(); ++i) {
        if (components_[i].file >= 0 && isSelected(components_[i])) selected.push_back(i);
    }
    json.beginObject(key);
    json.beginArray("component");
    for (const std::size_t i : selected)
        json.addIntegerElement(static_cast<long long>(i));
    json.endArray();
    json.beginArray("file");
    for (const std::size_t i : selected)
        json.addIntegerElement(components_[i].file);
    json.endArray();
    json.beginBase64("matrix");
    for (const std::size_t i : selected)
        addPlacement(json, components_[i].world);
    json.endBase64();
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
