#include <trvfiles/assembly/CTrvAssemblyComponentData.h>
#include <trvfiles/assembly/assembly_comparison.h>
#include <trvfiles/assembly/component_body.h>
#include <trvfiles/assembly/record_support.h>

#include <cstddef>
#include <utility>

// A host may build trees that are deeper than its stack, so no walk recurses: each keeps a list of
// the components or levels that are left.

namespace {

using trv::ComponentBody;

ComponentBody& own(std::unique_ptr<ComponentBody>& body) {
    if (body == nullptr) body = std::make_unique<ComponentBody>();
    return *body;
}

std::unique_ptr<ComponentBody> copyOf(const std::unique_ptr<ComponentBody>& body) {
    if (body == nullptr) return nullptr;
    return std::make_unique<ComponentBody>(body->copy());
}

}  // namespace

CTrvAssemblyComponentData::CTrvAssemblyComponentData() = default;

CTrvAssemblyComponentData::CTrvAssemblyComponentData(const CTrvAssemblyComponentData& other)
    : body_(copyOf(other.body_)) {}

CTrvAssemblyComponentData::CTrvAssemblyComponentData(CTrvAssemblyComponentData&& other) noexcept =
    default;

CTrvAssemblyComponentData& CTrvAssemblyComponentData::operator=(
    const CTrvAssemblyComponentData& other) {
    if (this != &other) body_ = copyOf(other.body_);
    return *this;
}

CTrvAssemblyComponentData& CTrvAssemblyComponentData::operator=(
    CTrvAssemblyComponentData&& other) noexcept = default;

CTrvAssemblyComponentData::~CTrvAssemblyComponentData() = default;

bool CTrvAssemblyComponentData::operator==(const CTrvAssemblyComponentData& other) const {
    struct Pair {
        const ComponentBody* one;
        const ComponentBody* other;
    };
    std::vector<Pair> pending;
    // Compares all but the children. A pair that has some goes to the list.
    const auto mayBeEqual = [&pending](const ComponentBody& one, const ComponentBody& two) {
        if (one.components.size() != two.components.size()) return false;
        if (trv::differenceOf(one, two).counts()) return false;
        if (!one.components.empty()) pending.push_back({&one, &two});
        return true;
    };
    if (!mayBeEqual(ComponentBody::of(*this), ComponentBody::of(other))) return false;
    while (!pending.empty()) {
        const Pair pair = pending.back();
        pending.pop_back();
        for (std::size_t i = 0; i < pair.one->components.size(); ++i) {
            if (!mayBeEqual(pair.one->components[i], pair.other->components[i])) return false;
        }
    }
    return true;
}

bool CTrvAssemblyComponentData::operator!=(const CTrvAssemblyComponentData& other) const {
    return !(*this == other);
}

std::string CTrvAssemblyComponentData::getName() const {
    return ComponentBody::of(*this).name;
}
void CTrvAssemblyComponentData::setName(std::string name) {
    own(body_).name = std::move(name);
}
std::wstring CTrvAssemblyComponentData::getNameW() const {
    return node().getNameW();
}
void CTrvAssemblyComponentData::setNameW(const std::wstring& name) {
    node().setNameW(name);
}

std::string CTrvAssemblyComponentData::getComment() const {
    return ComponentBody::of(*this).comment;
}
void CTrvAssemblyComponentData::setComment(std::string comment) {
    own(body_).comment = std::move(comment);
}
std::wstring CTrvAssemblyComponentData::getCommentW() const {
    return node().getCommentW();
}
void CTrvAssemblyComponentData::setCommentW(const std::wstring& comment) {
    node().setCommentW(comment);
}

std::string CTrvAssemblyComponentData::getGeometryFileName() const {
    return ComponentBody::of(*this).geometryFileName;
}
void CTrvAssemblyComponentData::setGeometryFileName(std::string fileName) {
    own(body_).geometryFileName = std::move(fileName);
}
std::wstring CTrvAssemblyComponentData::getGeometryFileNameW() const {
    return node().getGeometryFileNameW();
}
void CTrvAssemblyComponentData::setGeometryFileNameW(const std::wstring& fileName) {
    node().setGeometryFileNameW(fileName);
}

bool CTrvAssemblyComponentData::isEnabled() const {
    return ComponentBody::of(*this).enabled;
}
void CTrvAssemblyComponentData::setEnabled(bool enabled) {
    own(body_).enabled = enabled;
}

void CTrvAssemblyComponentData::getTranslation(double translation[3]) const {
    trv::copyVector(ComponentBody::of(*this).translation, translation);
}
void CTrvAssemblyComponentData::setTranslation(const double translation[3]) {
    trv::copyVector(translation, own(body_).translation);
}
std::array<double, 3> CTrvAssemblyComponentData::getTranslation() const {
    return node().getTranslation();
}
void CTrvAssemblyComponentData::setTranslation(const std::array<double, 3>& translation) {
    node().setTranslation(translation);
}

void CTrvAssemblyComponentData::getOrientation(double vec1[3], double vec2[3],
                                               double vec3[3]) const {
    trv::copyVector(ComponentBody::of(*this).vec1, vec1);
    trv::copyVector(ComponentBody::of(*this).vec2, vec2);
    trv::copyVector(ComponentBody::of(*this).vec3, vec3);
}
void CTrvAssemblyComponentData::setOrientation(const double vec1[3], const double vec2[3],
                                               const double vec3[3]) {
    ComponentBody& body = own(body_);
    trv::copyVector(vec1, body.vec1);
    trv::copyVector(vec2, body.vec2);
    trv::copyVector(vec3, body.vec3);
}
std::array<std::array<double, 3>, 3> CTrvAssemblyComponentData::getOrientation() const {
    return node().getOrientation();
}
void CTrvAssemblyComponentData::setOrientation(
    const std::array<std::array<double, 3>, 3>& vectors) {
    node().setOrientation(vectors);
}

std::vector<CTrvAssemblyComponentData> CTrvAssemblyComponentData::getComponents() const {
    const std::vector<ComponentBody>& children = ComponentBody::of(*this).components;
    std::vector<CTrvAssemblyComponentData> components(children.size());
    for (std::size_t i = 0; i < children.size(); ++i)
        components[i].body_ = std::make_unique<ComponentBody>(children[i].copy());
    return components;
}
void CTrvAssemblyComponentData::setComponents(std::vector<CTrvAssemblyComponentData> components) {
    ComponentBody& body = own(body_);
    // Assigned at the end: if memory runs out, the component keeps its children.
    std::vector<ComponentBody> children;
    children.reserve(components.size());
    for (CTrvAssemblyComponentData& component : components) {
        // Frees each component at once: otherwise a long list would be in memory twice.
        const std::unique_ptr<ComponentBody> taken = std::move(component.body_);
        children.push_back(taken == nullptr ? ComponentBody() : std::move(*taken));
    }
    body.components = std::move(children);
}

const CTrvAssemblyNode& CTrvAssemblyComponentData::node() const {
    return ComponentBody::of(*this);
}
CTrvAssemblyNode& CTrvAssemblyComponentData::node() {
    return own(body_);
}

// A component with a file is counted once, and what is below it is not. Flattening, below, does go
// there.
unsigned long long CTrvAssemblyComponentData::getComponentNumber() const {
    unsigned long long count = 0;
    std::vector<const ComponentBody*> pending{&ComponentBody::of(*this)};
    while (!pending.empty()) {
        const ComponentBody* next = pending.back();
        pending.pop_back();
        for (const ComponentBody& child : next->components) {
            if (!child.geometryFileName.empty()) {
                ++count;
            } else if (!child.components.empty()) {
                pending.push_back(&child);
            }
        }
    }
    return count;
}

void CTrvAssemblyComponentData::getComponentFileList(Math::XForm3Gen<double> parent,
                                                     std::vector<CComponentInfo>& list) const {
    struct Level {
        const std::vector<ComponentBody>* children;
        std::size_t next;
        Math::XForm3Gen<double> world;
    };
    std::vector<Level> levels;
    const auto enter = [&](const ComponentBody& component, const Math::XForm3Gen<double>& outer) {
        if (!component.enabled) return;
        const Math::XForm3Gen<double> world = placementOf(component) * outer;
        if (!component.geometryFileName.empty()) {
            const double* rows = world.data();
            list.emplace_back(component.geometryFileName, rows, rows + 4, rows + 8, rows + 12);
        }
        if (!component.components.empty()) levels.push_back({&component.components, 0, world});
    };

    enter(ComponentBody::of(*this), parent);
    while (!levels.empty()) {
        Level& level = levels.back();
        if (level.next == level.children->size()) {
            levels.pop_back();
            continue;
        }
        const ComponentBody& child = (*level.children)[level.next++];
        // enter() may grow the list of levels, and `level` would refer to freed memory.
        const Math::XForm3Gen<double> outer = level.world;
        enter(child, outer);
    }
}
