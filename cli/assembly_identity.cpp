#include <cli/assembly_identity.h>
#include <trvfiles/assembly/component_body.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace trv::cli {
namespace {

bool haveIdenticalFields(const ComponentFields& one, const ComponentFields& other) {
    return one.name == other.name && one.comment == other.comment && one.enabled == other.enabled &&
           one.geometryFileName == other.geometryFileName &&
           areIdentical(one.translation, other.translation) && areIdentical(one.vec1, other.vec1) &&
           areIdentical(one.vec2, other.vec2) && areIdentical(one.vec3, other.vec3);
}

}  // namespace

bool areIdentical(const double one[3], const double other[3]) {
    const auto bitsOf = [](double number) {
        std::uint64_t bits = 0;
        std::memcpy(&bits, &number, sizeof bits);
        return bits;
    };
    return std::equal(one, one + 3, other,
                      [&](double left, double right) { return bitsOf(left) == bitsOf(right); });
}

// Iterative: the trees may be deeper than the stack.
bool areIdentical(const CTrvAssemblyData& one, const CTrvAssemblyData& other) {
    double dimension[3];
    double otherDimension[3];
    one.getDimension(dimension);
    other.getDimension(otherDimension);
    if (!areIdentical(dimension, otherDimension)) return false;

    struct Pair {
        const ComponentBody* one;
        const ComponentBody* other;
    };
    std::vector<Pair> pending = {
        {&ComponentBody::of(one.getRootComponent()), &ComponentBody::of(other.getRootComponent())}};
    while (!pending.empty()) {
        const Pair pair = pending.back();
        pending.pop_back();
        const std::size_t count = pair.one->components.size();
        if (!haveIdenticalFields(*pair.one, *pair.other)) return false;
        if (pair.other->components.size() != count) return false;
        for (std::size_t i = 0; i < count; ++i)
            pending.push_back({&pair.one->components[i], &pair.other->components[i]});
    }
    return true;
}

}  // namespace trv::cli
