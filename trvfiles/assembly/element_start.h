#pragma once

/// @file
/// An element of an assembly document that starts.

#include <trvfiles/assembly/assembly_notes.h>
#include <trvfiles/assembly/known_names.h>

#include <string>
#include <string_view>
#include <vector>

namespace trv {

/// An element that starts, as the builder asks about it.
class ElementStart {
public:
    ElementStart(const ElementStart&) = delete;
    ElementStart& operator=(const ElementStart&) = delete;
    virtual ~ElementStart() = default;

    std::string_view tag() const { return tag_; }

    ElementPlace place() const { return place_; }

    /// @param value  takes the value in UTF-8, which is valid until the next call
    /// @return whether the element has the attribute
    virtual bool find(std::string_view attribute, std::string_view& value) const = 0;

    /// The value in narrow text; empty if the element does not have the attribute.
    virtual std::string narrow(std::string_view attribute) const = 0;

    /// The names of the other attributes in UTF-8, in byte order.
    virtual std::vector<std::string> attributesExcept(const KnownNames& names) const = 0;

protected:
    /// @param tag  has to outlive the object
    explicit ElementStart(std::string_view tag, ElementPlace place = {})
        : tag_(tag), place_(place) {}

private:
    const std::string_view tag_;
    const ElementPlace place_;
};

}  // namespace trv
