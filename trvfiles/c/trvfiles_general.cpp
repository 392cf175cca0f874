// The functions of trvfiles.h for the library, faults and texts.

#include <trvfiles/c/guarded_call.h>
#include <trvfiles/c/handle_objects.h>
#include <trvfiles/c/sized_struct.h>
#include <trvfiles/c/text_arguments.h>
#include <trvfiles/c/trvfiles.h>
#include <trvfiles/facade/CQvFilesIO.h>
#include <trvfiles/version.h>

namespace c = trv::c;

namespace {

struct StatusText {
    std::int32_t status;
    const char* text;
};

constexpr StatusText statusTexts[] = {
    {TRVFILES_SUCCESS, "success"},
    {TRVFILES_OPEN_ERROR, "the file cannot be opened, parsed or saved"},
    {TRVFILES_SHORT_WRITE, "the file was not written to its end"},
    {TRVFILES_CONTENT_ERROR, "something that the file needs is missing or malformed"},
    {TRVFILES_STRUCTURE_ERROR, "the file holds something else"},
    {TRVFILES_BAD_HANDLE, "a handle is 0, released or of another type"},
    {TRVFILES_BAD_ARGUMENT, "an argument is outside of its range"},
    {TRVFILES_BAD_TEXT, "a text is not UTF-8, too long or not in the code page"},
    {TRVFILES_OUT_OF_MEMORY, "out of memory"},
    {TRVFILES_FATAL_REPORT, "the runtime reported a fatal error"},
    {TRVFILES_FAILED, "the operation failed"},
    {TRVFILES_INTERNAL_ERROR, "an unexpected exception"},
    {TRVFILES_NOT_FOUND, "the file, section or entry does not exist"},
    {TRVFILES_SYNTAX_ERROR, "a name in brackets has no closing bracket"},
    {TRVFILES_BUFFER_TOO_SMALL, "a path is too long for a search"},
    {TRVFILES_NAME_TOO_LONG, "the expansion has no end, or a text is too long for a search"},
    {TRVFILES_UNDEFINED, "a variable is not defined"},
    {TRVFILES_NO_FILE_NAME, "a search reference has no name of a file"},
};

void refer(const char*& text, std::size_t& length, const std::string& to) {
    text = to.c_str();
    length = to.size();
}

trvfiles_note noteOf(const CFileFault::Note& note) {
    trvfiles_note values = {};
    values.kind = static_cast<std::int32_t>(note.kind);
    values.line = note.line;
    values.column = note.column;
    values.count = note.count;
    refer(values.subject, values.subject_length, note.subject);
    refer(values.text, values.text_length, note.text);
    refer(values.attribute, values.attribute_length, note.attribute);
    refer(values.value, values.value_length, note.value);
    refer(values.parent, values.parent_length, note.parent);
    refer(values.expected, values.expected_length, note.expected);
    return values;
}

trvfiles_fault_values valuesOf(const CFileFault& fault) {
    trvfiles_fault_values values = {};
    refer(values.reason, values.reason_length, fault.reason);
    refer(values.subject, values.subject_length, fault.subject);
    values.cause = static_cast<std::int32_t>(fault.cause);
    values.line = fault.line;
    values.column = fault.column;
    values.system_error = fault.systemError;
    values.note_count = fault.notes.size();
    return values;
}

}  // namespace

int32_t trvfiles_version() {
    return trv::version();
}

const char* trvfiles_version_text() {
    return trv::version_text();
}

const char* trvfiles_status_text(int32_t status) {
    for (const StatusText& known : statusTexts) {
        if (known.status == status) return known.text;
    }
    return "not a status";
}

int32_t trvfiles_release(trvfiles_handle handle, trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        if (c::handleTable().remove(handle) == nullptr) throw c::badHandle();
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_live_handles(size_t* count, trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        c::require(count);
        *count = c::handleTable().size();
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_fault_create(trvfiles_fault* created) {
    return c::guarded(0, [=](CFileFault*) {
        c::create<c::FaultObject>(created);
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_fault_get(trvfiles_fault fault, trvfiles_fault_values* values) {
    return c::guarded(0, [=](CFileFault*) {
        c::fill(values, valuesOf(c::objectOf<c::FaultObject>(fault)->values));
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_fault_get_note(trvfiles_fault fault, size_t index, trvfiles_note* note) {
    return c::guarded(0, [=](CFileFault*) {
        const auto object = c::objectOf<c::FaultObject>(fault);
        c::require(index < object->values.notes.size(), "the note does not exist");
        c::fill(note, noteOf(object->values.notes[index]));
        return TRVFILES_SUCCESS;
    });
}

const char* trvfiles_note_kind_name(int32_t kind) {
    return fileNoteKindName(static_cast<CFileFault::Note::Kind>(kind));
}

const char* trvfiles_fault_cause_name(int32_t cause) {
    return fileFaultCauseName(static_cast<CFileFault::Cause>(cause));
}

int32_t trvfiles_texts_create(trvfiles_texts* created, trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        c::create<c::TextsObject>(created);
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_texts_count(trvfiles_texts texts, size_t* count, trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        const auto object = c::objectOf<c::TextsObject>(texts);
        c::require(count);
        *count = object->texts.size();
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_texts_get(trvfiles_texts texts, size_t index, const char** text, size_t* length,
                           trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        const auto object = c::objectOf<c::TextsObject>(texts);
        c::require(text);
        c::require(index < object->texts.size(), "the text does not exist");
        const std::string& found = object->texts[index];
        *text = found.c_str();
        if (length != nullptr) *length = found.size();
        return TRVFILES_SUCCESS;
    });
}

int32_t trvfiles_absolute_path(const char* directory, const char* name, trvfiles_texts path,
                               trvfiles_fault fault) {
    return c::guarded(fault, [=](CFileFault*) {
        const auto result = c::objectOf<c::TextsObject>(path);
        const CQvFilesIO files(c::wideArgument(directory));
        result->texts = {c::utf8FromWide(files.absoluteFileName(c::wideArgument(name)))};
        return TRVFILES_SUCCESS;
    });
}
