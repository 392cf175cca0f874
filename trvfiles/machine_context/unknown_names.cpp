#include <trvfiles/machine_context/CSectionedFile.h>
#include <trvfiles/machine_context/context_fields.h>
#include <trvfiles/machine_context/unknown_names.h>
#include <trvfiles/support/ascii_case.h>
#include <trvfiles/support/file_fault.h>
#include <trvfiles/text/text_conversion.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

namespace trv {
namespace {

using Note = CFileFault::Note;

// A key of the file that no field of the record has.
bool isVersion(std::string_view section, std::string_view key) {
    return section == "header" && key == "version";
}

// The known section whose name is the same but for its case; nullptr if there is none.
const char* sectionMeantBy(std::string_view name) {
    const auto& fields = contextFields();
    const auto found = std::find_if(fields.begin(), fields.end(), [&](const ContextField& field) {
        return equal_ignoring_case(field.section, name);
    });
    return found == fields.end() ? nullptr : found->section;
}

// The same of a key.
const char* keyMeantBy(std::string_view section, std::string_view key) {
    const auto& fields = contextFields();
    const auto found = std::find_if(fields.begin(), fields.end(), [&](const ContextField& field) {
        return section == field.section && equal_ignoring_case(field.key, key);
    });
    return found == fields.end() ? nullptr : found->key;
}

std::string utf8(std::string_view name) {
    return fromNarrow(std::string(name)).toStdString();
}

// @param what      "section [x]" or "machine.x"
// @param expected  the known name; nullptr if there is none
void addNote(std::vector<Note>& notes, int line, std::string subject, const std::string& what,
             const char* expected) {
    Note note;
    note.kind = Note::Kind::unknownName;
    note.line = line + 1;
    note.subject = std::move(subject);
    note.text = what + " is ignored: ";
    if (expected == nullptr) {
        note.text += "machine contexts do not have it";
    } else {
        note.expected = expected;
        note.text += std::string("the name is spelled \"") + expected + '"';
    }
    notes.push_back(std::move(note));
}

void addUnknownKeys(const CSectionedFile& file, const CSectionedFile::Section& section,
                    std::string_view name, std::vector<Note>& notes) {
    for (const CSectionedFile::Name& key : file.keyNames(section)) {
        const char* const expected = keyMeantBy(name, key.text);
        if (isVersion(name, key.text) || (expected != nullptr && key.text == expected)) continue;
        std::string unused;
        if (expected != nullptr && !file.sectionValue(section, expected, true, unused)) continue;
        const std::string subject = std::string(name) + '.' + utf8(key.text);
        addNote(notes, key.line, subject, beginning_of(subject), expected);
        notes.back().parent = name;
    }
}

void addUnknownSection(const CSectionedFile& file, const CSectionedFile::Name& name,
                       std::vector<Note>& notes) {
    const char* const expected = sectionMeantBy(name.text);
    const bool isMissing = expected != nullptr && isAlwaysWritten(expected) &&
                           file.section(expected, true).lineCount() == 0;
    if (isMissing) return;
    const std::string subject = utf8(name.text);
    addNote(notes, name.line, subject, "section [" + beginning_of(subject) + ']', expected);
}

}  // namespace

void addUnknownNames(const CSectionedFile& file, std::vector<Note>& notes) {
    for (const CSectionedFile::Name& name : file.sectionNames()) {
        const CSectionedFile::Section& section = file.section(std::string(name.text), true);
        const char* const expected = sectionMeantBy(name.text);
        if (expected != nullptr && name.text == expected) {
            addUnknownKeys(file, section, name.text, notes);
        } else if (section.headerLine() >= 0) {
            addUnknownSection(file, name, notes);
        }
    }
}

}  // namespace trv
