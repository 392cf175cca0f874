#include <cli/diagnostic_places.h>
#include <trvfiles/assembly/xml_tags.h>
#include <trvfiles/machine_context/sectioned_lines.h>
#include <trvfiles/support/number_text.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace trv::cli {
namespace {

using Kind = CFileFault::Note::Kind;

constexpr char blanks[] = " \t\v\f";

// A column from the bytes before it.
int columnAfter(std::string_view before) {
    return QString::fromUtf8(before.data(), static_cast<int>(before.size())).size() + 1;
}

// The first character from an index on that is no blank; the end of the line if there is none.
int columnFrom(const std::string& line, std::size_t index) {
    return columnAfter(std::string_view(line).substr(0, line.find_first_not_of(blanks, index)));
}

std::string lineOf(const SourceText& source, int number) {
    return source.line(number).toStdString();
}

Place firstCharacter(const SourceText& source, int line) {
    const std::string text = lineOf(source, line);
    return {line, text.empty() ? 0 : columnFrom(text, 0)};
}

// In the line of a key.
Place valueIn(const SourceText& source, int line) {
    const std::string text = lineOf(source, line);
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos) return firstCharacter(source, line);
    return {line, columnFrom(text, equals + 1)};
}

// The word at which reading four numbers stops.
Place faultyNumber(const SourceText& source, int line) {
    constexpr int numbers = 4;
    const std::string text = lineOf(source, line);
    if (text.empty()) return {line, 0};
    std::string_view rest(text);
    double ignored = 0;
    for (int i = 0; i < numbers && scan_number(rest, ignored);)
        ++i;
    return {line, columnFrom(text, text.size() - rest.size())};
}

Place inTag(const SourceText& source, const XmlTag& tag, const CFileFault::Note& note) {
    const QString wanted = QString::fromStdString(note.attribute);
    // Of an attribute that occurs twice the last one counts.
    const auto found =
        std::find_if(tag.attributes.rbegin(), tag.attributes.rend(),
                     [&](const XmlAttribute& attribute) { return attribute.name == wanted; });
    if (found == tag.attributes.rend()) return source.placeOf(tag.begin);
    const bool isAboutName = note.kind == Kind::unknownName || note.kind == Kind::repeatedAttribute;
    return source.placeOf(isAboutName ? found->position : found->valuePosition);
}

// The first character of a text, whose end is known, in an element; its end if that is not after
// text.
Place beginOfText(const SourceText& source, Place end) {
    const QString& text = source.text();
    const int position = source.positionOf(end);
    int begin = position < 1 ? -1 : text.lastIndexOf(QLatin1Char('>'), position - 1) + 1;
    while (begin >= 0 && begin < position && text.at(begin).isSpace())
        ++begin;
    return begin < 1 || begin >= position ? end : source.placeOf(begin);
}

}  // namespace

SourceText sourceOf(const QString& name, FileKind kind) {
    return SourceText::ofFile(
        name, kind == FileKind::assembly ? SourceText::Lines::ofXml : SourceText::Lines::ofText);
}

Place placeOfNote(const SourceText& source, FileKind kind, const CFileFault::Note& note) {
    const Place place = {note.line, note.column};
    if (place.line == 0) return place;
    if (note.kind == Kind::ignoredText) return beginOfText(source, place);
    if (kind == FileKind::assembly) {
        const XmlTag tag = tagEndingAt(source.text(), source.positionOf(place));
        return tag.name.isEmpty() ? place : inTag(source, tag, note);
    }
    const bool isOfKey = note.kind == Kind::notANumber || note.kind == Kind::notText;
    return isOfKey ? valueIn(source, note.line) : firstCharacter(source, note.line);
}

Place placeOfFailure(const SourceText& source, FileKind kind, Place place) {
    if (place.line == 0) return place;
    if (kind == FileKind::axis) return faultyNumber(source, place.line);
    if (kind != FileKind::assembly) return firstCharacter(source, place.line);
    const XmlTag tag = tagEndingAt(source.text(), source.positionOf(place));
    const bool isElement = !tag.name.isEmpty() && tag.kind != XmlTag::Kind::end;
    return isElement ? source.placeOf(tag.begin) : place;
}

Place placeOfValue(const SourceText& source, const QString& section, const QString& key) {
    const std::string wantedSection = section.toStdString();
    const std::string wantedKey = key.toStdString();
    bool isInside = false;
    int found = 0;
    for (int number = 1; number <= source.lineCount(); ++number) {
        const std::string line = lineOf(source, number);
        std::string_view name;
        if (settings::isHeader(line, name)) {
            isInside = name == wantedSection;
            if (isInside) found = 0;
        } else if (isInside && settings::isKeyLine(line, name) && name == wantedKey) {
            found = number;
        }
    }
    return found == 0 ? Place() : valueIn(source, found);
}

}  // namespace trv::cli
