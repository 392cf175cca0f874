#include <trvfiles/assembly/assembly_names.h>
#include <trvfiles/assembly/known_names.h>
#include <trvfiles/support/ascii_case.h>
#include <trvfiles/support/file_fault.h>

#include <algorithm>

namespace trv {
namespace {

std::string inBrackets(std::string_view tag) {
    return '<' + beginning_of(tag) + '>';
}

}  // namespace

namespace known {

constexpr KnownContent root = {{names::version}, {names::attributes, names::component}};
constexpr KnownContent attributes = {{}, {names::dimension}};
constexpr KnownContent component = {{names::name, names::comment, names::enabled},
                                    {names::translation, names::orientation, names::data}};
constexpr KnownContent orientation = {{}, {names::vec1, names::vec2, names::vec3}};
constexpr KnownContent data = {{names::number}, {names::component, names::file}};
constexpr KnownContent file = {{names::name}, {}};
constexpr KnownContent vector = {{names::x, names::y, names::z}, {}};

}  // namespace known

bool isKnown(const KnownNames& names, std::string_view name) {
    return !name.empty() && std::find(names.begin(), names.end(), name) != names.end();
}

std::string_view nameMeantBy(std::string_view name, const KnownNames& names) {
    const auto found = std::find_if(names.begin(), names.end(), [&](std::string_view known) {
        return !known.empty() && equal_ignoring_case(known, name);
    });
    return found == names.end() ? std::string_view() : *found;
}

bool isForeignAttribute(std::string_view name) {
    return name == "xmlns" || name.find(':') != std::string_view::npos;
}

std::string unknownElementText(const KnownContent& parent, std::string_view parentTag,
                               std::string_view tag) {
    const std::string text = inBrackets(tag) + " in " + inBrackets(parentTag) + " is ignored: ";
    const std::string_view meant = nameMeantBy(tag, parent.children);
    return meant.empty() ? text + "the format has no such element there"
                         : text + "the name is spelled " + inBrackets(meant);
}

std::string unknownAttributeText(const KnownContent& element, std::string_view tag,
                                 std::string_view attribute) {
    const std::string text =
        "attribute " + quoted_beginning(attribute) + " of " + inBrackets(tag) + " is ignored: ";
    const std::string_view meant = nameMeantBy(attribute, element.attributes);
    return meant.empty() ? text + "the format has no such attribute there"
                         : text + "the name is spelled " + quoted_beginning(meant);
}

}  // namespace trv
