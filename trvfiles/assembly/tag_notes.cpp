#include <trvfiles/assembly/tag_notes.h>
#include <trvfiles/assembly/xml_characters.h>
#include <trvfiles/assembly/xml_tags.h>
#include <trvfiles/support/file_fault.h>

#include <QHash>

#include <utility>

namespace trv {
namespace {

using Note = CFileFault::Note;

Note noteOf(Note::Kind kind, ElementPlace place, const XmlTag& tag, const XmlAttribute& attribute) {
    Note note;
    note.kind = kind;
    note.line = place.line;
    note.column = place.column;
    note.subject = tag.name.toStdString();
    note.attribute = attribute.name.toStdString();
    return note;
}

std::string attributeText(const Note& note) {
    return quoted_beginning(note.attribute) + " of <" + beginning_of(note.subject) + '>';
}

// The first reference of a value that is cut: "&#xE0041;". Empty if there is none.
QStringView cutReferenceIn(const QString& value, uint& number) {
    constexpr uint lastWhole = 0xFFFF;
    for (int begin = 0; (begin = value.indexOf(QLatin1String("&#"), begin)) >= 0; ++begin) {
        const int end = value.indexOf(QLatin1Char(';'), begin);
        if (end < 0) return {};
        const QStringView digits = QStringView(value).mid(begin + 2, end - begin - 2);
        if (referencedNumber(digits, number) && number > lastWhole) {
            return QStringView(value).mid(begin, end - begin + 1);
        }
    }
    return {};
}

std::string codePoint(uint number) {
    constexpr int digits = 4;
    constexpr int hexadecimal = 16;
    const QString text = QStringLiteral("%1").arg(number, digits, hexadecimal, QLatin1Char('0'));
    return "U+" + text.toUpper().toStdString();
}

void addCutReference(const XmlTag& tag, const XmlAttribute& attribute, ElementPlace place,
                     std::vector<Note>& notes) {
    uint number = 0;
    const QStringView reference = cutReferenceIn(attribute.value, number);
    if (reference.isEmpty()) return;
    Note note = noteOf(Note::Kind::cutReference, place, tag, attribute);
    note.value = reference.toString().toStdString();
    note.text = quoted_beginning(note.value) + " in attribute " + attributeText(note) +
                " is read as " + codePoint(number & 0xFFFFU);
    notes.push_back(std::move(note));
}

}  // namespace

void addTagNotes(const QString& tag, ElementPlace place, std::vector<Note>& notes) {
    XmlTag parsed;
    if (!parseTag(tag, 0, parsed)) return;
    QHash<QString, int> counts;
    for (const XmlAttribute& attribute : parsed.attributes) {
        ++counts[attribute.name];
        addCutReference(parsed, attribute, place, notes);
    }
    for (const XmlAttribute& attribute : parsed.attributes) {
        const int count = counts.take(attribute.name);
        if (count < 2) continue;
        Note note = noteOf(Note::Kind::repeatedAttribute, place, parsed, attribute);
        note.count = count;
        note.text = "attribute " + attributeText(note) + " occurs " + std::to_string(count) +
                    " times: the last one counts";
        notes.push_back(std::move(note));
    }
}

}  // namespace trv
