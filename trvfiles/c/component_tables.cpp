#include <trvfiles/assembly/CComponentInfo.h>
#include <trvfiles/assembly/XForm3Gen.h>
#include <trvfiles/assembly/flattening.h>
#include <trvfiles/c/component_tables.h>
#include <trvfiles/c/refusal.h>
#include <trvfiles/c/text_arguments.h>

#include <algorithm>
#include <utility>

namespace trv::c {
namespace {

using Node = IndexedAssembly::Node;
using Transform = Math::XForm3Gen<double>;

Transform transformOf(const Placement& placement) {
    Transform transform;
    std::copy(placement.begin(), placement.end(), transform.data());
    return transform;
}

Placement placementFrom(const Transform& transform) {
    Placement placement;
    std::copy_n(transform.data(), placement.size(), placement.begin());
    return placement;
}

Placement worldOf(const CComponentInfo& placed) {
    const double* rows[4];
    placed.getOrientation(rows[0], rows[1], rows[2]);
    placed.getTranslation(rows[3]);
    Placement world = placementFrom(Transform());
    for (std::size_t row = 0; row < 4; ++row)
        std::copy_n(rows[row], 3, world.begin() + static_cast<std::ptrdiff_t>(4 * row));
    return world;
}

std::array<double, 9> orientationOf(const ComponentFields& fields) {
    std::array<double, 9> numbers;
    std::copy_n(fields.vec1, 3, numbers.begin());
    std::copy_n(fields.vec2, 3, numbers.begin() + 3);
    std::copy_n(fields.vec3, 3, numbers.begin() + 6);
    return numbers;
}

// The components that flattening lists, in its order.
std::vector<std::size_t> listedComponents(const std::vector<Node>& nodes) {
    std::vector<std::size_t> listed;
    for (std::size_t i = 0; i < nodes.size();) {
        const ComponentBody& body = *nodes[i].body;
        if (body.enabled && !body.geometryFileName.empty()) listed.push_back(i);
        i += body.enabled ? 1 : nodes[i].subtreeSize;
    }
    return listed;
}

template <class Element>
const double* numbersOf(const std::vector<Element>& elements) {
    return elements.empty() ? nullptr : elements.front().data();
}

}  // namespace

void TextColumn::add(std::string& text, const std::string& added) {
    appendUtf8(text, added);
    offsets_.push_back(text.size());
}

ComponentTable::ComponentTable(const std::vector<Node>& nodes) {
    reserve(nodes.size());
    reserveText(nodes);
    for (const Node& node : nodes)
        addNumbers(node);
    visitPlacements(*nodes.front().body, Transform(), [this](const PlacedComponent& placed) {
        world_.push_back(placementFrom(placed.world));
        return true;
    });
    name_.begin(text_);
    for (const Node& node : nodes)
        name_.add(text_, node.body->name);
    comment_.begin(text_);
    for (const Node& node : nodes)
        comment_.add(text_, node.body->comment);
    geometry_.begin(text_);
    for (const Node& node : nodes)
        geometry_.add(text_, node.body->geometryFileName);
}

void ComponentTable::reserve(std::size_t count) {
    parent_.reserve(count);
    subtreeSize_.reserve(count);
    enabled_.reserve(count);
    translation_.reserve(count);
    orientation_.reserve(count);
    world_.reserve(count);
    for (TextColumn* column : {&name_, &comment_, &geometry_})
        column->reserve(count);
}

// As narrow text; UTF-8 may be longer.
void ComponentTable::reserveText(const std::vector<Node>& nodes) {
    std::size_t length = 0;
    for (const Node& node : nodes) {
        const ComponentBody& body = *node.body;
        length += body.name.size() + body.comment.size() + body.geometryFileName.size();
    }
    text_.reserve(length);
}

void ComponentTable::addNumbers(const Node& node) {
    const ComponentBody& body = *node.body;
    parent_.push_back(node.parent);
    subtreeSize_.push_back(node.subtreeSize);
    enabled_.push_back(body.enabled ? 1 : 0);
    translation_.push_back({body.translation[0], body.translation[1], body.translation[2]});
    orientation_.push_back(orientationOf(body));
}

trvfiles_component_table ComponentTable::table() const {
    trvfiles_component_table table = {};
    table.count = parent_.size();
    table.parent = parent_.data();
    table.subtree_size = subtreeSize_.data();
    table.enabled = enabled_.data();
    table.translation = numbersOf(translation_);
    table.orientation = numbersOf(orientation_);
    table.world = numbersOf(world_);
    table.name = name_.offsets();
    table.comment = comment_.offsets();
    table.geometry = geometry_.offsets();
    table.text = text_.c_str();
    table.text_length = text_.size();
    return table;
}

PlacementTable::PlacementTable(IndexedAssembly& assembly, const Placement& parent)
    : component_(listedComponents(assembly.nodes())) {
    std::vector<CComponentInfo> placed;
    assembly.data().getRootComponent().getComponentFileList(transformOf(parent), placed);
    geometry_.begin(text_);
    for (const CComponentInfo& info : placed) {
        world_.push_back(worldOf(info));
        geometry_.add(text_, info.getFileName());
    }
}

trvfiles_placement_table PlacementTable::table() const {
    trvfiles_placement_table table = {};
    table.count = world_.size();
    table.component = component_.data();
    table.world = numbersOf(world_);
    table.geometry = geometry_.offsets();
    table.text = text_.c_str();
    table.text_length = text_.size();
    return table;
}

namespace {

// A text of a table; empty without offsets.
std::string textAt(const trvfiles_component_table& table, const std::size_t* offsets,
                   std::size_t index) {
    if (offsets == nullptr) return {};
    const std::size_t begin = offsets[index];
    const std::size_t end = offsets[index + 1];
    require(begin <= end && end <= table.text_length, "an offset is outside of the texts");
    if (begin == end) return {};
    require(table.text);
    return narrowArgument(std::string_view(table.text + begin, end - begin));
}

ComponentBody bodyAt(const trvfiles_component_table& table, std::size_t index) {
    ComponentBody body;
    body.name = textAt(table, table.name, index);
    body.comment = textAt(table, table.comment, index);
    body.geometryFileName = textAt(table, table.geometry, index);
    if (table.enabled != nullptr) body.enabled = table.enabled[index] != 0;
    if (table.translation != nullptr) {
        std::copy_n(table.translation + 3 * index, 3, body.translation);
    }
    if (table.orientation != nullptr) {
        const double* numbers = table.orientation + 9 * index;
        std::copy_n(numbers, 3, body.vec1);
        std::copy_n(numbers + 3, 3, body.vec2);
        std::copy_n(numbers + 6, 3, body.vec3);
    }
    return body;
}

struct OpenComponent {
    std::size_t index;
    ComponentBody body;
};

void closeLast(std::vector<OpenComponent>& open) {
    ComponentBody closed = std::move(open.back().body);
    open.pop_back();
    open.back().body.components.push_back(std::move(closed));
}

}  // namespace

ComponentBody treeOf(const trvfiles_component_table& table) {
    require(table.count != 0, "a tree has no root");
    require(table.parent);
    require(table.parent[0] == TRVFILES_NO_INDEX, "the first component has a parent");
    std::vector<OpenComponent> open;
    open.push_back({0, bodyAt(table, 0)});
    for (std::size_t i = 1; i < table.count; ++i) {
        while (open.size() > 1 && open.back().index != table.parent[i])
            closeLast(open);
        require(open.back().index == table.parent[i], "a component is not in document order");
        open.push_back({i, bodyAt(table, i)});
    }
    while (open.size() > 1)
        closeLast(open);
    return std::move(open.front().body);
}

}  // namespace trv::c
