#include <trvfiles/assembly/CTrvAssemblyComponentData.h>
#include <trvfiles/assembly/component_view.h>
#include <trvfiles/assembly/vector3.h>

#include <cmath>
#include <cstddef>
#include <utility>

// Trees may be deeper than any stack, so every walk over one keeps its own list of what is left.

namespace {

constexpr double placementTolerance = 1e-6;

bool differ(const double one[3], const double other[3]) {
    for (int i = 0; i < 3; ++i) {
        if (std::fabs(one[i] - other[i]) > placementTolerance) return true;
    }
    return false;
}

void setRow(Math::XForm3Gen<double>& form, int row, const double values[3], double last) {
    for (int column = 0; column < 3; ++column)
        form(row, column) = values[column];
    form(row, 3) = last;
}

}  // namespace

struct CTrvAssemblyComponentData::Body {
    Body() = default;
    Body(const Body&) = delete;
    Body& operator=(const Body&) = delete;

    ~Body() {
        // Grandchildren are hung into a list of their own before their parents go. The list runs
        // through the bodies themselves: a destructor must not need memory.
        Body* doomed = nullptr;
        adoptGrandchildren(*this, doomed);
        while (doomed != nullptr) {
            const std::unique_ptr<Body> body(std::exchange(doomed, doomed->nextDoomed));
            adoptGrandchildren(*body, doomed);
        }
    }

    static const Body& of(const CTrvAssemblyComponentData& data) {
        static const Body defaults;
        return data.body_ == nullptr ? defaults : *data.body_;
    }

    static Body& own(CTrvAssemblyComponentData& data) {
        if (data.body_ == nullptr) data.body_ = std::make_unique<Body>();
        return *data.body_;
    }

    // Takes the bodies of those children that have children themselves; what stays is flat.
    static void adoptGrandchildren(Body& body, Body*& doomed) {
        for (CTrvAssemblyComponentData& child : body.components) {
            if (child.body_ == nullptr || child.body_->components.empty()) continue;
            child.body_->nextDoomed = doomed;
            doomed = child.body_.release();
        }
        body.components.clear();
    }

    void copyFieldsFrom(const Body& other) {
        name = other.name;
        comment = other.comment;
        enabled = other.enabled;
        trv::copyVector(other.translation, translation);
        trv::copyVector(other.vec1, vec1);
        trv::copyVector(other.vec2, vec2);
        trv::copyVector(other.vec3, vec3);
        geometryFileName = other.geometryFileName;
    }

    static std::unique_ptr<Body> copyTree(const CTrvAssemblyComponentData& source) {
        if (source.body_ == nullptr) return nullptr;

        struct Pending {
            const Body* from;
            Body* to;
        };
        auto copy = std::make_unique<Body>();
        std::vector<Pending> pending{{source.body_.get(), copy.get()}};
        while (!pending.empty()) {
            const Pending next = pending.back();
            pending.pop_back();
            next.to->copyFieldsFrom(*next.from);

            const std::vector<CTrvAssemblyComponentData>& children = next.from->components;
            next.to->components.resize(children.size());
            for (std::size_t i = 0; i < children.size(); ++i) {
                const Body* from = children[i].body_.get();
                if (from == nullptr) continue;
                Body& to = own(next.to->components[i]);
                if (from->components.empty()) {
                    to.copyFieldsFrom(*from);
                } else {
                    pending.push_back({from, &to});
                }
            }
        }
        return copy;
    }

    bool hasFieldsOf(const Body& other) const {
        // vec3 is not compared, which hosts rely on.
        return name == other.name && comment == other.comment &&
               geometryFileName == other.geometryFileName && enabled == other.enabled &&
               !differ(vec1, other.vec1) && !differ(vec2, other.vec2) &&
               !differ(translation, other.translation) &&
               components.size() == other.components.size();
    }

    Math::XForm3Gen<double> placement() const {
        Math::XForm3Gen<double> form;
        setRow(form, 0, vec1, 0);
        setRow(form, 1, vec2, 0);
        setRow(form, 2, vec3, 0);
        setRow(form, 3, translation, 1);
        return form;
    }

    std::string name;
    std::string comment;
    bool enabled = true;
    double translation[3] = {0, 0, 0};
    double vec1[3] = {1, 0, 0};
    double vec2[3] = {0, 1, 0};
    double vec3[3] = {0, 0, 1};
    std::string geometryFileName;
    std::vector<CTrvAssemblyComponentData> components;
    Body* nextDoomed = nullptr;
};

CTrvAssemblyComponentData::CTrvAssemblyComponentData() = default;

CTrvAssemblyComponentData::CTrvAssemblyComponentData(const CTrvAssemblyComponentData& other)
    : body_(Body::copyTree(other)) {}

CTrvAssemblyComponentData::CTrvAssemblyComponentData(CTrvAssemblyComponentData&& other) noexcept =
    default;

CTrvAssemblyComponentData& CTrvAssemblyComponentData::operator=(
    const CTrvAssemblyComponentData& other) {
    // The copy is complete before the old tree goes: the source may be a part of it.
    if (this != &other) body_ = Body::copyTree(other);
    return *this;
}

CTrvAssemblyComponentData& CTrvAssemblyComponentData::operator=(
    CTrvAssemblyComponentData&& other) noexcept {
    // Swapped first, so that a child may be moved over its own ancestor.
    if (this != &other) {
        std::unique_ptr<Body> taken = std::move(other.body_);
        body_.swap(taken);
    }
    return *this;
}

CTrvAssemblyComponentData::~CTrvAssemblyComponentData() = default;

bool CTrvAssemblyComponentData::operator==(const CTrvAssemblyComponentData& other) const {
    if (!Body::of(*this).hasFieldsOf(Body::of(other))) return false;

    struct Pair {
        const Body* one;
        const Body* other;
    };
    std::vector<Pair> pending{{&Body::of(*this), &Body::of(other)}};
    while (!pending.empty()) {
        const Pair pair = pending.back();
        pending.pop_back();
        for (std::size_t i = 0; i < pair.one->components.size(); ++i) {
            const Body& child = Body::of(pair.one->components[i]);
            const Body& otherChild = Body::of(pair.other->components[i]);
            if (!child.hasFieldsOf(otherChild)) return false;
            if (!child.components.empty()) pending.push_back({&child, &otherChild});
        }
    }
    return true;
}

bool CTrvAssemblyComponentData::operator!=(const CTrvAssemblyComponentData& other) const {
    return !(*this == other);
}

std::string CTrvAssemblyComponentData::getName() const {
    return Body::of(*this).name;
}
void CTrvAssemblyComponentData::setName(std::string name) {
    Body::own(*this).name = std::move(name);
}

std::string CTrvAssemblyComponentData::getComment() const {
    return Body::of(*this).comment;
}
void CTrvAssemblyComponentData::setComment(std::string comment) {
    Body::own(*this).comment = std::move(comment);
}

std::string CTrvAssemblyComponentData::getGeometryFileName() const {
    return Body::of(*this).geometryFileName;
}
void CTrvAssemblyComponentData::setGeometryFileName(std::string fileName) {
    Body::own(*this).geometryFileName = std::move(fileName);
}

bool CTrvAssemblyComponentData::isEnabled() const {
    return Body::of(*this).enabled;
}
void CTrvAssemblyComponentData::setEnabled(bool enabled) {
    Body::own(*this).enabled = enabled;
}

void CTrvAssemblyComponentData::getTranslation(double translation[3]) const {
    trv::copyVector(Body::of(*this).translation, translation);
}
void CTrvAssemblyComponentData::setTranslation(const double translation[3]) {
    trv::copyVector(translation, Body::own(*this).translation);
}

void CTrvAssemblyComponentData::getOrientation(double vec1[3], double vec2[3],
                                               double vec3[3]) const {
    trv::copyVector(Body::of(*this).vec1, vec1);
    trv::copyVector(Body::of(*this).vec2, vec2);
    trv::copyVector(Body::of(*this).vec3, vec3);
}
void CTrvAssemblyComponentData::setOrientation(const double vec1[3], const double vec2[3],
                                               const double vec3[3]) {
    Body& own = Body::own(*this);
    trv::copyVector(vec1, own.vec1);
    trv::copyVector(vec2, own.vec2);
    trv::copyVector(vec3, own.vec3);
}

std::vector<CTrvAssemblyComponentData> CTrvAssemblyComponentData::getComponents() const {
    return Body::of(*this).components;
}
void CTrvAssemblyComponentData::setComponents(std::vector<CTrvAssemblyComponentData> components) {
    Body::own(*this).components.swap(components);
}

unsigned long long CTrvAssemblyComponentData::getComponentNumber() const {
    unsigned long long count = 0;
    std::vector<const Body*> pending{&Body::of(*this)};
    while (!pending.empty()) {
        const Body* next = pending.back();
        pending.pop_back();
        for (const CTrvAssemblyComponentData& child : next->components) {
            const Body& childBody = Body::of(child);
            if (!childBody.geometryFileName.empty()) {
                ++count;
            } else if (!childBody.components.empty()) {
                pending.push_back(&childBody);
            }
        }
    }
    return count;
}

void CTrvAssemblyComponentData::getComponentFileList(Math::XForm3Gen<double> parent,
                                                     std::vector<CComponentInfo>& list) const {
    struct Level {
        const std::vector<CTrvAssemblyComponentData>* children;
        std::size_t next;
        Math::XForm3Gen<double> world;
    };
    std::vector<Level> levels;
    const auto enter = [&](const Body& component, const Math::XForm3Gen<double>& outer) {
        if (!component.enabled) return;
        const Math::XForm3Gen<double> world = component.placement() * outer;
        if (!component.geometryFileName.empty()) {
            const double* rows = world.data();
            list.emplace_back(component.geometryFileName, rows, rows + 4, rows + 8, rows + 12);
        }
        if (!component.components.empty()) levels.push_back({&component.components, 0, world});
    };

    enter(Body::of(*this), parent);
    while (!levels.empty()) {
        Level& level = levels.back();
        if (level.next == level.children->size()) {
            levels.pop_back();
            continue;
        }
        const Body& child = Body::of((*level.children)[level.next++]);
        // Entering may grow the list of levels, which would move the placement away.
        const Math::XForm3Gen<double> outer = level.world;
        enter(child, outer);
    }
}

trv::ComponentView::ComponentView(const CTrvAssemblyComponentData& component)
    : ComponentView(CTrvAssemblyComponentData::Body::of(component)) {}

template <class Body>
trv::ComponentView::ComponentView(const Body& body)
    : name(body.name),
      comment(body.comment),
      geometryFileName(body.geometryFileName),
      enabled(body.enabled),
      translation(body.translation),
      vec1(body.vec1),
      vec2(body.vec2),
      vec3(body.vec3),
      components(body.components) {}
