#pragma once

/// @file
/// When two assemblies are equal: the tolerances, and what differs between two components.
///
/// Threads: any.

#include <trvfiles/assembly/component_body.h>

namespace trv {

/// Which fields of two components differ; their children are not compared.
struct ComponentDifference {
    bool name = false;
    bool comment = false;
    bool geometryFileName = false;
    bool enabled = false;
    bool translation = false;
    bool vec1 = false;
    bool vec2 = false;
    /// Makes no component unequal to another one: hosts rely on it.
    bool vec3 = false;

    /// Whether the components are unequal.
    bool counts() const {
        return name || comment || geometryFileName || enabled || translation || vec1 || vec2;
    }
};

/// Compares texts byte for byte, and placements entry by entry with an absolute tolerance of 1e-6.
/// A NaN never makes a difference.
ComponentDifference differenceOf(const ComponentFields& one, const ComponentFields& other);

/// Whether the squared distance of two overall sizes is more than 1e-6, so that sizes within 0.001
/// of each other are equal. A NaN never makes a difference.
bool dimensionsDiffer(const double one[3], const double other[3]);

}  // namespace trv
