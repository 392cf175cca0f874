#include <trvfiles/assembly/CTrvAssemblyComponentData.h>
#include <trvfiles/assembly/component_body.h>
#include <trvfiles/assembly/record_support.h>

#include <utility>

namespace trv {

// Iterative and allocation-free: a list of open levels would need memory. Components of a level are
// freed from the last to the first. Before descending into a component's children, attach the
// remaining siblings to the first leaf below it, which is the last component to be freed there.
// Each path to a first leaf is followed once, so the time is linear.
ComponentBody::~ComponentBody() {
    std::vector<ComponentBody> level = std::move(components);
    while (!level.empty()) {
        std::vector<ComponentBody> below = std::move(level.back().components);
        level.pop_back();
        if (below.empty()) continue;
        if (!level.empty()) {
            ComponentBody* first = &below.front();
            while (!first->components.empty())
                first = &first->components.front();
            first->components = std::move(level);
        }
        level = std::move(below);
    }
}

ComponentBody& ComponentBody::operator=(ComponentBody&& other) noexcept {
    static_cast<ComponentFields&>(*this) = std::move(static_cast<ComponentFields&>(other));
    components = std::move(other.components);
    return *this;
}

const ComponentBody& ComponentBody::of(const CTrvAssemblyComponentData& component) {
    static const NeverDestroyed<ComponentBody> defaults;
    return component.body_ == nullptr ? defaults.get() : *component.body_;
}

ComponentBody& ComponentBody::editable(CTrvAssemblyComponentData& component) {
    if (component.body_ == nullptr) component.body_ = std::make_unique<ComponentBody>();
    return *component.body_;
}

CTrvAssemblyComponentData ComponentBody::toComponent(ComponentBody body) {
    CTrvAssemblyComponentData component;
    component.body_ = std::make_unique<ComponentBody>(std::move(body));
    return component;
}

ComponentBody ComponentBody::copy() const {
    struct Pending {
        const ComponentBody* from;
        ComponentBody* to;
    };
    const auto fieldsOf = [](const ComponentBody& body) -> const ComponentFields& { return body; };
    ComponentBody whole(fieldsOf(*this));
    std::vector<Pending> pending{{this, &whole}};
    while (!pending.empty()) {
        const Pending next = pending.back();
        pending.pop_back();
        const std::vector<ComponentBody>& children = next.from->components;
        std::vector<ComponentBody>& copies = next.to->components;
        copies.reserve(children.size());
        for (const ComponentBody& child : children)
            copies.emplace_back(fieldsOf(child));
        // The last one first, so that the copies are in the order in which a walk reads them.
        for (std::size_t i = children.size(); i-- > 0;) {
            if (!children[i].components.empty()) pending.push_back({&children[i], &copies[i]});
        }
    }
    return whole;
}

}  // namespace trv
