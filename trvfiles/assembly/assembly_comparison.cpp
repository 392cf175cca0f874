#include <trvfiles/assembly/assembly_comparison.h>

#include <cmath>

namespace trv {
namespace {

constexpr double placementTolerance = 1e-6;
constexpr double squaredDistanceTolerance = 1e-6;

// Written so that a NaN does not differ.
bool vectorsDiffer(const double one[3], const double other[3]) {
    for (int i = 0; i < 3; ++i) {
        if (std::fabs(one[i] - other[i]) > placementTolerance) return true;
    }
    return false;
}

}  // namespace

ComponentDifference differenceOf(const ComponentFields& one, const ComponentFields& other) {
    ComponentDifference difference;
    difference.name = one.name != other.name;
    difference.comment = one.comment != other.comment;
    difference.geometryFileName = one.geometryFileName != other.geometryFileName;
    difference.enabled = one.enabled != other.enabled;
    difference.translation = vectorsDiffer(one.translation, other.translation);
    difference.vec1 = vectorsDiffer(one.vec1, other.vec1);
    difference.vec2 = vectorsDiffer(one.vec2, other.vec2);
    difference.vec3 = vectorsDiffer(one.vec3, other.vec3);
    return difference;
}

bool dimensionsDiffer(const double one[3], const double other[3]) {
    double squaredDistance = 0;
    for (int i = 0; i < 3; ++i) {
        const double difference = one[i] - other[i];
        squaredDistance += difference * difference;
    }
    return squaredDistance > squaredDistanceTolerance;
}

}  // namespace trv
