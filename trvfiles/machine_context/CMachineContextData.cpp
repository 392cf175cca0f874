#include <trvfiles/machine_context/CMachineContextData.h>
#include <trvfiles/text/text_conversion.h>

#include <QString>

#include <cmath>

// A nested class of an exported one would be exported with it.
struct TRVFILES_NO_EXPORT CMachineContextData::Body {
    static const Body& of(const CMachineContextData& data) {
        // A local static: a static object of the host may call a getter before main() begins.
        static const Body defaults;
        return data.body_ == nullptr ? defaults : *data.body_;
    }

    static Body& own(CMachineContextData& data) {
        if (data.body_ == nullptr) data.body_ = std::make_unique<Body>();
        return *data.body_;
    }

    QString name;
    QString comment;
    QString machineName;
    QString machinePosition;
    QString surfaceGroup;
    QString clampingSystem;
    QString referenceAxis;
    double originX = 0;
    double originY = 0;
    double originZ = 0;
    double machineProximity = 0;
    double clampingProximity = 0;
};

namespace {

constexpr double nullTolerance = 1e-6;

// Written so that a NaN is not zero.
bool isWithinTolerance(double value) {
    return value <= nullTolerance;
}

}  // namespace

CMachineContextData::CMachineContextData() = default;

CMachineContextData::CMachineContextData(const CMachineContextData& other)
    : body_(other.body_ == nullptr ? nullptr : std::make_unique<Body>(*other.body_)) {}

CMachineContextData::CMachineContextData(CMachineContextData&& other) noexcept = default;

CMachineContextData& CMachineContextData::operator=(const CMachineContextData& other) {
    if (this != &other) *this = CMachineContextData(other);
    return *this;
}

CMachineContextData& CMachineContextData::operator=(CMachineContextData&& other) noexcept = default;
CMachineContextData::~CMachineContextData() = default;

std::string CMachineContextData::getName() const {
    return trv::toNarrow(Body::of(*this).name);
}
void CMachineContextData::setName(const std::string& name) {
    Body::own(*this).name = trv::fromNarrow(name);
}
std::wstring CMachineContextData::getNameW() const {
    return trv::toWide(Body::of(*this).name);
}
void CMachineContextData::setNameW(const std::wstring& name) {
    Body::own(*this).name = trv::fromWide(name);
}

std::string CMachineContextData::getComment() const {
    return trv::toNarrow(Body::of(*this).comment);
}
void CMachineContextData::setComment(const std::string& comment) {
    Body::own(*this).comment = trv::fromNarrow(comment);
}
std::wstring CMachineContextData::getCommentW() const {
    return trv::toWide(Body::of(*this).comment);
}
void CMachineContextData::setCommentW(const std::wstring& comment) {
    Body::own(*this).comment = trv::fromWide(comment);
}

std::string CMachineContextData::getMachineName() const {
    return trv::toNarrow(Body::of(*this).machineName);
}
void CMachineContextData::setMachineName(const std::string& machineName) {
    Body::own(*this).machineName = trv::fromNarrow(machineName);
}
std::wstring CMachineContextData::getMachineNameW() const {
    return trv::toWide(Body::of(*this).machineName);
}
void CMachineContextData::setMachineNameW(const std::wstring& machineName) {
    Body::own(*this).machineName = trv::fromWide(machineName);
}

std::string CMachineContextData::getMachinePosition() const {
    return trv::toNarrow(Body::of(*this).machinePosition);
}
void CMachineContextData::setMachinePosition(const std::string& machinePosition) {
    Body::own(*this).machinePosition = trv::fromNarrow(machinePosition);
}
std::wstring CMachineContextData::getMachinePositionW() const {
    return trv::toWide(Body::of(*this).machinePosition);
}
void CMachineContextData::setMachinePositionW(const std::wstring& machinePosition) {
    Body::own(*this).machinePosition = trv::fromWide(machinePosition);
}

std::string CMachineContextData::getSurfaceGroup() const {
    return trv::toNarrow(Body::of(*this).surfaceGroup);
}
void CMachineContextData::setSurfaceGroup(const std::string& surfaceGroup) {
    Body::own(*this).surfaceGroup = trv::fromNarrow(surfaceGroup);
}
std::wstring CMachineContextData::getSurfaceGroupW() const {
    return trv::toWide(Body::of(*this).surfaceGroup);
}
void CMachineContextData::setSurfaceGroupW(const std::wstring& surfaceGroup) {
    Body::own(*this).surfaceGroup = trv::fromWide(surfaceGroup);
}

std::string CMachineContextData::getClampingSystem() const {
    return trv::toNarrow(Body::of(*this).clampingSystem);
}
void CMachineContextData::setClampingSystem(const std::string& clampingSystem) {
    Body::own(*this).clampingSystem = trv::fromNarrow(clampingSystem);
}
std::wstring CMachineContextData::getClampingSystemW() const {
    return trv::toWide(Body::of(*this).clampingSystem);
}
void CMachineContextData::setClampingSystemW(const std::wstring& clampingSystem) {
    Body::own(*this).clampingSystem = trv::fromWide(clampingSystem);
}

std::string CMachineContextData::getReferenceAxisForOriginProgram() const {
    return trv::toNarrow(Body::of(*this).referenceAxis);
}
void CMachineContextData::setReferenceAxisForOriginProgram(const std::string& referenceAxis) {
    Body::own(*this).referenceAxis = trv::fromNarrow(referenceAxis);
}
std::wstring CMachineContextData::getReferenceAxisForOriginProgramW() const {
    return trv::toWide(Body::of(*this).referenceAxis);
}
void CMachineContextData::setReferenceAxisForOriginProgramW(const std::wstring& referenceAxis) {
    Body::own(*this).referenceAxis = trv::fromWide(referenceAxis);
}

void CMachineContextData::setOriginProgram(double x, double y, double z) {
    Body& own = Body::own(*this);
    own.originX = x;
    own.originY = y;
    own.originZ = z;
}

void CMachineContextData::getOriginProgram(double& x, double& y, double& z) const {
    x = Body::of(*this).originX;
    y = Body::of(*this).originY;
    z = Body::of(*this).originZ;
}

void CMachineContextData::setOriginProgram(const std::array<double, 3>& origin) {
    setOriginProgram(origin[0], origin[1], origin[2]);
}

std::array<double, 3> CMachineContextData::getOriginProgram() const {
    const Body& own = Body::of(*this);
    return {own.originX, own.originY, own.originZ};
}

void CMachineContextData::setMachineProximity(double proximity) {
    Body::own(*this).machineProximity = proximity;
}
double CMachineContextData::getMachineProximity() const {
    return Body::of(*this).machineProximity;
}

void CMachineContextData::setClampingProximity(double proximity) {
    Body::own(*this).clampingProximity = proximity;
}
double CMachineContextData::getClampingProximity() const {
    return Body::of(*this).clampingProximity;
}

void CMachineContextData::clear() {
    body_.reset();
}

bool CMachineContextData::isNull() const {
    const Body& fields = Body::of(*this);
    const double squaredDistance = fields.originX * fields.originX +
                                   fields.originY * fields.originY +
                                   fields.originZ * fields.originZ;
    return fields.name.isEmpty() && fields.comment.isEmpty() && fields.machineName.isEmpty() &&
           fields.machinePosition.isEmpty() && fields.surfaceGroup.isEmpty() &&
           fields.clampingSystem.isEmpty() && isWithinTolerance(squaredDistance) &&
           isWithinTolerance(std::fabs(fields.machineProximity)) &&
           isWithinTolerance(std::fabs(fields.clampingProximity)) && fields.referenceAxis.isEmpty();
}

bool CMachineContextData::isNotNull() const {
    return !isNull();
}
