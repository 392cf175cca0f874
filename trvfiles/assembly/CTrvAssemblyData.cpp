#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/assembly/assembly_comparison.h>
#include <trvfiles/assembly/record_support.h>

#include <utility>

// A nested class of an exported one would be exported with it.
struct TRVFILES_NO_EXPORT CTrvAssemblyData::Body {
    static const Body& of(const CTrvAssemblyData& data) {
        static const trv::NeverDestroyed<Body> defaults;
        return data.body_ == nullptr ? defaults.get() : *data.body_;
    }

    static Body& own(CTrvAssemblyData& data) {
        if (data.body_ == nullptr) data.body_ = std::make_unique<Body>();
        return *data.body_;
    }

    double dimension[3] = {0, 0, 0};
    CTrvAssemblyComponentData rootComponent;
};

CTrvAssemblyData::CTrvAssemblyData() : body_(std::make_unique<Body>()) {}

CTrvAssemblyData::CTrvAssemblyData(const CTrvAssemblyData& other)
    : body_(std::make_unique<Body>(Body::of(other))) {}

CTrvAssemblyData::CTrvAssemblyData(CTrvAssemblyData&& other) noexcept = default;

CTrvAssemblyData& CTrvAssemblyData::operator=(const CTrvAssemblyData& other) {
    // Only the copy can throw, and then nothing has changed.
    if (this != &other) *this = CTrvAssemblyData(other);
    return *this;
}

CTrvAssemblyData& CTrvAssemblyData::operator=(CTrvAssemblyData&& other) noexcept {
    if (this == &other) return *this;
    if (body_ == nullptr) {
        body_ = std::move(other.body_);
    } else if (other.body_ == nullptr) {
        *body_ = Body();
    } else {
        // Moves into the existing root: the host may hold references to both roots.
        *body_ = std::exchange(*other.body_, Body());
    }
    return *this;
}

CTrvAssemblyData::~CTrvAssemblyData() = default;

void CTrvAssemblyData::getDimension(double dimension[3]) const {
    trv::copyVector(Body::of(*this).dimension, dimension);
}

void CTrvAssemblyData::setDimension(const double dimension[3]) {
    trv::copyVector(dimension, Body::own(*this).dimension);
}

std::array<double, 3> CTrvAssemblyData::getDimension() const {
    return trv::arrayOf(Body::of(*this).dimension);
}

void CTrvAssemblyData::setDimension(const std::array<double, 3>& dimension) {
    setDimension(dimension.data());
}

const CTrvAssemblyComponentData& CTrvAssemblyData::getRootComponent() const {
    return Body::of(*this).rootComponent;
}

CTrvAssemblyComponentData& CTrvAssemblyData::getRootComponent() {
    return Body::own(*this).rootComponent;
}

void CTrvAssemblyData::setRootComponent(const CTrvAssemblyComponentData& component) {
    Body::own(*this).rootComponent = component;
}

bool CTrvAssemblyData::operator==(const CTrvAssemblyData& other) const {
    const Body& first = Body::of(*this);
    const Body& second = Body::of(other);
    return !trv::dimensionsDiffer(first.dimension, second.dimension) &&
           first.rootComponent == second.rootComponent;
}

bool CTrvAssemblyData::operator!=(const CTrvAssemblyData& other) const {
    return !(*this == other);
}

unsigned long long CTrvAssemblyData::getComponentNumber() const {
    return Body::of(*this).rootComponent.getComponentNumber();
}

std::vector<CComponentInfo> CTrvAssemblyData::getComponentFileList() const {
    std::vector<CComponentInfo> list;
    Body::of(*this).rootComponent.getComponentFileList(Math::XForm3Gen<double>(), list);
    return list;
}
