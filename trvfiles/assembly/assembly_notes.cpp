#include <trvfiles/assembly/assembly_notes.h>
#include <trvfiles/assembly/element_start.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace trv {
namespace {

using Kind = CFileFault::Note::Kind;

}  // namespace

void AssemblyNotes::add(Kind kind, ElementPlace place, std::string_view subject, std::string text,
                        std::string_view attribute) {
    if (!count()) return;
    notes_.push_back({kind, place.line, place.column, std::string(subject), std::move(text),
                      std::string(attribute)});
}

void AssemblyNotes::noteIgnored(const ElementStart& element, const KnownContent& parent,
                                std::string_view parentTag) {
    if (!count()) return;
    const std::string_view tag = element.tag();
    if (isKnown(parent.children, tag)) {
        add(Kind::repeated, element.place(), tag,
            "a further <" + std::string(tag) + "> in <" + std::string(parentTag) +
                "> is ignored: the first one counts");
    } else {
        add(Kind::unknownName, element.place(), tag, unknownElementText(parent, parentTag, tag));
    }
}

void AssemblyNotes::noteUnknownAttributes(const ElementStart& element, const KnownContent& known) {
    for (const std::string& name : element.attributesExcept(known.attributes)) {
        if (isForeignAttribute(name)) continue;
        add(Kind::unknownName, element.place(), name,
            unknownAttributeText(known, element.tag(), name), name);
    }
}

void AssemblyNotes::moveTo(std::vector<CFileFault::Note>& notes) {
    std::move(notes_.begin(), notes_.end(), std::back_inserter(notes));
    notes_.clear();
}

}  // namespace trv
