#pragma once

/// @file
/// The code that a careful programmer would write without the library: an assembly as plain
/// structs, and the shortest code that reads, writes, flattens, compares and copies it.

#include <array>
#include <string>
#include <vector>

namespace trv::bench {

using PlainVector = std::array<double, 3>;

struct PlainComponent {
    std::string name;
    std::string comment;
    bool enabled = true;
    PlainVector translation = {0, 0, 0};
    PlainVector vec1 = {1, 0, 0};
    PlainVector vec2 = {0, 1, 0};
    PlainVector vec3 = {0, 0, 1};
    std::string geometryFile;
    std::vector<PlainComponent> components;
};

struct PlainAssembly {
    PlainVector dimension = {0, 0, 0};
    PlainComponent root;
};

struct PlainPlaced {
    std::string fileName;
    PlainVector vec1;
    PlainVector vec2;
    PlainVector vec3;
    PlainVector translation;
};

/// An assembly of flat groups of 100 leaves. The leaves of a small assembly are every nth of the
/// 100,000 leaves of the largest one, so that all sizes have the same kinds of numbers: small
/// numbers with an exponent take longer.
PlainAssembly plainSample(int leaves);

/// Reads with QDomDocument::setContent().
PlainAssembly readPlainly(const std::string& path);

/// Writes with std::to_chars, in blocks of 64 KiB. Texts need no references.
void writePlainly(const std::string& path, const PlainAssembly& assembly);

std::vector<PlainPlaced> flattenPlainly(const PlainAssembly& assembly);

bool areEqual(const PlainAssembly& one, const PlainAssembly& other);

}  // namespace trv::bench
