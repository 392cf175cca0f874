#include <trvfiles/assembly/CTrvAssemblyData.h>
#include <trvfiles/assembly/vector3.h>

#include <utility>

struct CTrvAssemblyData::Body {
    double dimension[3] = {0, 0, 0};
    CTrvAssemblyComponentData rootComponent;
};

CTrvAssemblyData::CTrvAssemblyData() : body_(std::make_unique<Body>()) {}

CTrvAssemblyData::CTrvAssemblyData(const CTrvAssemblyData& other)
    : body_(std::make_unique<Body>(other.body())) {}

CTrvAssemblyData::CTrvAssemblyData(CTrvAssemblyData&& other) noexcept = default;

CTrvAssemblyData& CTrvAssemblyData::operator=(const CTrvAssemblyData& other) {
    if (this != &other) *this = CTrvAssemblyData(other);
    return *this;
}

CTrvAssemblyData& CTrvAssemblyData::operator=(CTrvAssemblyData&& other) noexcept = default;
CTrvAssemblyData::~CTrvAssemblyData() = default;

const CTrvAssemblyData::Body& CTrvAssemblyData::body() const {
    static const Body defaults;
    return body_ == nullptr ? defaults : *body_;
}

CTrvAssemblyData::Body& CTrvAssemblyData::ownBody() {
    if (body_ == nullptr) body_ = std::make_unique<Body>();
    return *body_;
}

void CTrvAssemblyData::getDimension(double dimension[3]) const {
    trv::copyVector(body().dimension, dimension);
}

void CTrvAssemblyData::setDimension(const double dimension[3]) {
    trv::copyVector(dimension, ownBody().dimension);
}

const CTrvAssemblyComponentData& CTrvAssemblyData::getRootComponent() const {
    return body().rootComponent;
}

CTrvAssemblyComponentData& CTrvAssemblyData::getRootComponent() {
    return ownBody().rootComponent;
}

void CTrvAssemblyData::setRootComponent(const CTrvAssemblyComponentData& component) {
    ownBody().rootComponent = component;
}

bool CTrvAssemblyData::operator==(const CTrvAssemblyData& other) const {
    double squaredDistance = 0;
    for (int i = 0; i < 3; ++i) {
        const double difference = body().dimension[i] - other.body().dimension[i];
        squaredDistance += difference * difference;
    }
    // The squared distance itself meets the tolerance, so sizes within 0.001 of each other agree.
    if (squaredDistance > 1e-6) return false;
    return body().rootComponent == other.body().rootComponent;
}

bool CTrvAssemblyData::operator!=(const CTrvAssemblyData& other) const {
    return !(*this == other);
}

unsigned long long CTrvAssemblyData::getComponentNumber() const {
    return body().rootComponent.getComponentNumber();
}

std::vector<CComponentInfo> CTrvAssemblyData::getComponentFileList() const {
    std::vector<CComponentInfo> list;
    body().rootComponent.getComponentFileList(Math::XForm3Gen<double>(), list);
    return list;
}
