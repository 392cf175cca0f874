#include <trvfiles/assembly/assembly_notes.h>
#include <trvfiles/assembly/element_start.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace trv {
namespace {

using Kind = CFileFault::Note::Kind;

}  // namespace

CFileFault::Note& AssemblyNotes::add(Kind kind, ElementPlace place, std::string_view subject,
                                     std::string text, std::string_view attribute) {
    return notes_.emplace_back(CFileFault::Note{kind, place.line, place.column,
                                                std::string(subject), std::move(text),
                                                std::string(attribute)});
}

void AssemblyNotes::noteIgnored(const ElementStart& element, const KnownContent& parent,
                                std::string_view parentTag) {
    if (!count()) return;
    const std::string_view tag = element.tag();
    const bool isRepeated = isKnown(parent.children, tag);
    CFileFault::Note& note =
        isRepeated ? add(Kind::repeated, element.place(), tag,
                         "a further <" + std::string(tag) + "> in <" + std::string(parentTag) +
                             "> is ignored: the first one counts")
                   : add(Kind::unknownName, element.place(), tag,
                         unknownElementText(parent, parentTag, tag));
    note.parent = parentTag;
    if (!isRepeated) note.expected = nameMeantBy(tag, parent.children);
}

void AssemblyNotes::noteUnknownAttributes(const ElementStart& element, const KnownContent& known) {
    for (const std::string& name : element.attributesExcept(known.attributes)) {
        if (isForeignAttribute(name) || !count()) continue;
        CFileFault::Note& note = add(Kind::unknownName, element.place(), name,
                                     unknownAttributeText(known, element.tag(), name), name);
        note.parent = element.tag();
        note.expected = nameMeantBy(name, known.attributes);
    }
}

void AssemblyNotes::moveTo(std::vector<CFileFault::Note>& notes) {
    std::move(notes_.begin(), notes_.end(), std::back_inserter(notes));
    notes_.clear();
}

}  // namespace trv
