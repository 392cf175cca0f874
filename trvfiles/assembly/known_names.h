#pragma once

/// @file
/// Which elements and attributes the assembly format defines in each of its elements, for notes on
/// names that it does not define.
///
/// Threads: any.

#include <array>
#include <string>
#include <string_view>

namespace trv {

/// Up to three names; the rest are empty.
using KnownNames = std::array<std::string_view, 3>;

/// What may be in an element.
struct KnownContent {
    KnownNames attributes;
    KnownNames children;
};

namespace known {

extern const KnownContent root;
extern const KnownContent attributes;
extern const KnownContent component;
extern const KnownContent orientation;
extern const KnownContent data;
extern const KnownContent file;
/// A "Dimension", a "Translation" or a "vec1".
extern const KnownContent vector;

}  // namespace known

bool isKnown(const KnownNames& names, std::string_view name);

/// Whether an attribute belongs to XML itself or to another namespace, so that the format does not
/// have to define it: "xmlns", "xsi:schemaLocation".
bool isForeignAttribute(std::string_view name);

/// The known name that differs from another one in case only; empty if there is none.
std::string_view nameMeantBy(std::string_view name, const KnownNames& names);

/// The text of a note on an element that is ignored. If its name differs from a known one in case
/// only, the text says so.
std::string unknownElementText(const KnownContent& parent, std::string_view parentTag,
                               std::string_view tag);

/// The same for an attribute.
std::string unknownAttributeText(const KnownContent& element, std::string_view tag,
                                 std::string_view attribute);

}  // namespace trv
