// The functions of trvfiles.h for single components of an assembly.

#include <trvfiles/assembly/assembly_comparison.h>
#include <trvfiles/c/guarded_call.h>
#include <trvfiles/c/handle_objects.h>
#include <trvfiles/c/indexed_assembly.h>
#include <trvfiles/c/sized_struct.h>
#include <trvfiles/c/text_arguments.h>
#include <trvfiles/c/trvfiles.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace c = trv::c;

using c::IndexedAssembly;
using trv::ComponentBody;
using trv::ComponentFields;

namespace {

// By TRVFILES_COMPONENT_...
constexpr std::string ComponentFields::*textFields[] = {
    &ComponentFields::name, &ComponentFields::comment, &ComponentFields::geometryFileName};

// By TRVFILES_DIFFERENT_..., the lowest bit first.
constexpr bool trv::ComponentDifference::*differenceBits[] = {
    &trv::ComponentDifference::name,
    &trv::ComponentDifference::comment,
    &trv::ComponentDifference::geometryFileName,
    &trv::ComponentDifference::enabled,
    &trv::ComponentDifference::translation,
    &trv::ComponentDifference::vec1,
    &trv::ComponentDifference::vec2,
    &trv::ComponentDifference::vec3,
};

std::string& textField(ComponentFields& fields, std::int32_t number) {
    c::require(number >= 0 && static_cast<std::size_t>(number) < std::size(textFields),
               "the number is not that of a text of a component");
    return fields.*textFields[number];
}

const IndexedAssembly::Node& nodeAt(IndexedAssembly& assembly, std::size_t index) {
    const std::vector<IndexedAssembly::Node>& nodes = assembly.nodes();
    c::require(index < nodes.size(), "the component does not exist");
    return nodes[index];
}

trvfiles_component componentOf(const IndexedAssembly::Node& node) {
    const ComponentBody& body = *node.body;
    trvfiles_component values = {};
    values.parent = node.parent;
    values.subtree_size = node.subtreeSize;
    values.child_count = body.components.size();
    values.depth = node.depth;
    values.enabled = body.enabled ? 1 : 0;
    std::copy_n(body.translation, 3, values.translation);
    std::copy_n(body.vec1, 3, values.orientation);
    std::copy_n(body.vec2, 3, values.orientation + 3);
    std::copy_n(body.vec3, 3, values.orientation + 6);
    return values;
}

ComponentBody copyFrom(trvfiles_assembly source, std::size_t index) {
    if (source == 0) return ComponentBody();
    return nodeAt(*c::objectOf<IndexedAssembly>(source), index).body->copy();
}

}  // namespace

int32_t trvfiles_component_count(trvfiles_assembly assembly, size_t* count, trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        const auto object = c::objectOf<IndexedAssembly>(assembly);
        c::require(count);
        *count = object->nodes().size();
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_component_get(trvfiles_assembly assembly, size_t index,
                               trvfiles_component* component, trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        const auto object = c::objectOf<IndexedAssembly>(assembly);
        c::fill(component, componentOf(nodeAt(*object, index)));
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_component_get_text(trvfiles_assembly assembly, size_t index, int32_t field,
                                    trvfiles_texts text, trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        const auto object = c::objectOf<IndexedAssembly>(assembly);
        const auto result = c::objectOf<c::TextsObject>(text);
        result->texts = {c::utf8FromNarrow(textField(*nodeAt(*object, index).body, field))};
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_component_set_text(trvfiles_assembly assembly, size_t index, int32_t field,
                                    const char* text, trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        const auto object = c::objectOf<IndexedAssembly>(assembly);
        std::string& target = textField(*nodeAt(*object, index).body, field);
        target = c::narrowArgument(text);
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_component_set_enabled(trvfiles_assembly assembly, size_t index, int32_t enabled,
                                       trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        const auto object = c::objectOf<IndexedAssembly>(assembly);
        nodeAt(*object, index).body->enabled = enabled != 0;
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_component_set_placement(trvfiles_assembly assembly, size_t index,
                                         const double* translation, const double* orientation,
                                         trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        const auto object = c::objectOf<IndexedAssembly>(assembly);
        ComponentBody& body = *nodeAt(*object, index).body;
        if (translation != nullptr) std::copy_n(translation, 3, body.translation);
        if (orientation != nullptr) {
            std::copy_n(orientation, 3, body.vec1);
            std::copy_n(orientation + 3, 3, body.vec2);
            std::copy_n(orientation + 6, 3, body.vec3);
        }
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_component_add(trvfiles_assembly assembly, size_t parent, size_t position,
                               trvfiles_assembly source, size_t source_index, size_t* index,
                               trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        const auto object = c::objectOf<IndexedAssembly>(assembly);
        const ComponentBody& above = *nodeAt(*object, parent).body;
        c::require(position <= above.components.size(), "the position is after the last child");
        const std::size_t added = object->add(parent, position, copyFrom(source, source_index));
        if (index != nullptr) *index = added;
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_component_remove(trvfiles_assembly assembly, size_t index, trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        const auto object = c::objectOf<IndexedAssembly>(assembly);
        c::require(index != 0, "the root cannot be removed");
        nodeAt(*object, index);
        object->remove(index);
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_component_compare(trvfiles_assembly one, size_t index, trvfiles_assembly other,
                                   size_t other_index, uint32_t* differences,
                                   trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        const auto first = c::objectOf<IndexedAssembly>(one);
        const auto second = c::objectOf<IndexedAssembly>(other);
        c::require(differences);
        const trv::ComponentDifference found =
            trv::differenceOf(*nodeAt(*first, index).body, *nodeAt(*second, other_index).body);
        *differences = 0;
        for (std::size_t bit = 0; bit < std::size(differenceBits); ++bit)
            *differences |= found.*differenceBits[bit] ? std::uint32_t{1} << bit : 0;
        return TRVFILES_SUCCESS;
    });
}
