#include <cli/assembly_walk.h>
#include <cli/component_selection.h>
#include <trvfiles/text/text_conversion.h>

#include <algorithm>
#include <cstddef>
#include <string>

namespace trv::cli {
namespace {

using Selected = std::vector<SelectedComponent>;

// In place of each component that does not remain is a nullptr.
constexpr SelectedComponent removed = {nullptr, 0, 0};

bool contains(const std::string& narrow, const QString& text) {
    return !narrow.empty() && fromNarrow(narrow).contains(text, Qt::CaseInsensitive);
}

bool contains(const ComponentBody& component, const QString& text) {
    return contains(component.name, text) || contains(component.comment, text) ||
           contains(component.geometryFileName, text);
}

// From the last component to the first: the next component on the level above one that remains is
// its parent.
void keepMatches(Selected& components, const QString& match) {
    std::int64_t parentLevel = -1;
    for (auto entry = components.rbegin(); entry != components.rend(); ++entry) {
        const std::int64_t level = entry->level;
        if (level == parentLevel || contains(*entry->component, match)) {
            parentLevel = level - 1;
        } else {
            *entry = removed;
        }
    }
    components.erase(
        std::remove_if(components.begin(), components.end(),
                       [](const SelectedComponent& entry) { return entry.component == nullptr; }),
        components.end());
}

// From the last component to the first: a component is the last of its siblings if none of its
// level has been met since its parent's next sibling.
void markLast(Selected& components) {
    std::vector<bool> isMet;
    for (auto entry = components.rbegin(); entry != components.rend(); ++entry) {
        const std::size_t level = entry->level;
        isMet.resize(level + 1);
        entry->isLast = isMet[level] ? 0 : 1;
        isMet[level] = true;
    }
}

}  // namespace

std::vector<SelectedComponent> selectComponents(const CTrvAssemblyData& assembly,
                                                const ComponentSelection& selection) {
    Selected components;
    forEachComponent(assembly, [&](const ComponentBody& component, std::size_t level) {
        if (selection.maxLevel && level > *selection.maxLevel) return;
        components.push_back({&component, static_cast<std::uint32_t>(level) & 0x7FFFFFFF, 0});
    });
    if (!selection.match.isEmpty()) keepMatches(components, selection.match);
    markLast(components);
    return components;
}

}  // namespace trv::cli
