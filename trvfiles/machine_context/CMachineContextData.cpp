#include <trvfiles/facade/text_conversion.h>
#include <trvfiles/machine_context/CMachineContextData.h>

#include <QString>

#include <cmath>

struct CMachineContextData::Body {
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

// Written so that a NaN does not count as zero.
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

// A local static, because a host's own static objects may ask before main() begins.
const CMachineContextData::Body& CMachineContextData::body() const {
    static const Body defaults;
    return body_ == nullptr ? defaults : *body_;
}

CMachineContextData::Body& CMachineContextData::ownBody() {
    if (body_ == nullptr) body_ = std::make_unique<Body>();
    return *body_;
}

std::string CMachineContextData::getName() const {
    return trv::toNarrow(body().name);
}
void CMachineContextData::setName(const std::string& name) {
    ownBody().name = trv::fromNarrow(name);
}
std::wstring CMachineContextData::getNameW() const {
    return trv::toWide(body().name);
}
void CMachineContextData::setNameW(const std::wstring& name) {
    ownBody().name = trv::fromWide(name);
}

std::string CMachineContextData::getComment() const {
    return trv::toNarrow(body().comment);
}
void CMachineContextData::setComment(const std::string& comment) {
    ownBody().comment = trv::fromNarrow(comment);
}
std::wstring CMachineContextData::getCommentW() const {
    return trv::toWide(body().comment);
}
void CMachineContextData::setCommentW(const std::wstring& comment) {
    ownBody().comment = trv::fromWide(comment);
}

std::string CMachineContextData::getMachineName() const {
    return trv::toNarrow(body().machineName);
}
void CMachineContextData::setMachineName(const std::string& machineName) {
    ownBody().machineName = trv::fromNarrow(machineName);
}
std::wstring CMachineContextData::getMachineNameW() const {
    return trv::toWide(body().machineName);
}
void CMachineContextData::setMachineNameW(const std::wstring& machineName) {
    ownBody().machineName = trv::fromWide(machineName);
}

std::string CMachineContextData::getMachinePosition() const {
    return trv::toNarrow(body().machinePosition);
}
void CMachineContextData::setMachinePosition(const std::string& machinePosition) {
    ownBody().machinePosition = trv::fromNarrow(machinePosition);
}
std::wstring CMachineContextData::getMachinePositionW() const {
    return trv::toWide(body().machinePosition);
}
void CMachineContextData::setMachinePositionW(const std::wstring& machinePosition) {
    ownBody().machinePosition = trv::fromWide(machinePosition);
}

std::string CMachineContextData::getSurfaceGroup() const {
    return trv::toNarrow(body().surfaceGroup);
}
void CMachineContextData::setSurfaceGroup(const std::string& surfaceGroup) {
    ownBody().surfaceGroup = trv::fromNarrow(surfaceGroup);
}
std::wstring CMachineContextData::getSurfaceGroupW() const {
    return trv::toWide(body().surfaceGroup);
}
void CMachineContextData::setSurfaceGroupW(const std::wstring& surfaceGroup) {
    ownBody().surfaceGroup = trv::fromWide(surfaceGroup);
}

std::string CMachineContextData::getClampingSystem() const {
    return trv::toNarrow(body().clampingSystem);
}
void CMachineContextData::setClampingSystem(const std::string& clampingSystem) {
    ownBody().clampingSystem = trv::fromNarrow(clampingSystem);
}
std::wstring CMachineContextData::getClampingSystemW() const {
    return trv::toWide(body().clampingSystem);
}
void CMachineContextData::setClampingSystemW(const std::wstring& clampingSystem) {
    ownBody().clampingSystem = trv::fromWide(clampingSystem);
}

std::string CMachineContextData::getReferenceAxisForOriginProgram() const {
    return trv::toNarrow(body().referenceAxis);
}
void CMachineContextData::setReferenceAxisForOriginProgram(const std::string& referenceAxis) {
    ownBody().referenceAxis = trv::fromNarrow(referenceAxis);
}
std::wstring CMachineContextData::getReferenceAxisForOriginProgramW() const {
    return trv::toWide(body().referenceAxis);
}
void CMachineContextData::setReferenceAxisForOriginProgramW(const std::wstring& referenceAxis) {
    ownBody().referenceAxis = trv::fromWide(referenceAxis);
}

void CMachineContextData::setOriginProgram(double x, double y, double z) {
    Body& own = ownBody();
    own.originX = x;
    own.originY = y;
    own.originZ = z;
}

void CMachineContextData::getOriginProgram(double& x, double& y, double& z) const {
    x = body().originX;
    y = body().originY;
    z = body().originZ;
}

void CMachineContextData::setMachineProximity(double proximity) {
    ownBody().machineProximity = proximity;
}
double CMachineContextData::getMachineProximity() const {
    return body().machineProximity;
}

void CMachineContextData::setClampingProximity(double proximity) {
    ownBody().clampingProximity = proximity;
}
double CMachineContextData::getClampingProximity() const {
    return body().clampingProximity;
}

void CMachineContextData::clear() {
    body_.reset();
}

bool CMachineContextData::isNull() const {
    const Body& fields = body();
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
