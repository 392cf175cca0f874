#include <trvfiles/environment/file_replacement.h>
#include <trvfiles/environment/store_writer_internal.h>
#include <trvfiles/machine_context/CMachineContextData.h>
#include <trvfiles/machine_context/CMachineContextIO.h>
#include <trvfiles/machine_context/CSectionedFile.h>
#include <trvfiles/machine_context/context_fields.h>
#include <trvfiles/support/file_fault.h>
#include <trvfiles/support/number_text.h>
#include <trvfiles/text/open_file.h>
#include <trvfiles/text/text_conversion.h>

#include <algorithm>
#include <optional>
#include <utility>

using trv::ContextField;

namespace {

using Kind = CFileFault::Note::Kind;

constexpr char headerSection[] = "header";

// Takes the sections of a parsed file into a record, in the order of the format. The notes are
// composed only if the caller wants them.
class Reader {
public:
    Reader(const CSectionedFile& file, CMachineContextData& data, CFileFault* fault)
        : file_(file), data_(data), fault_(fault) {}

    EFileIOStatus read() {
        std::string_view opened;
        for (const ContextField& field : trv::contextFields()) {
            if (field.section != opened) open(field.section);
            opened = field.section;
            // A section without lines counts as missing, and then requires no key.
            if (section_->lineCount() == 0) continue;
            if (file_.sectionValue(*section_, field.key, true, value_, &line_)) {
                take(field);
            } else if (field.isRequired) {
                return miss(field);
            } else {
                noteOtherCase(field);
            }
        }
        return eFileIOSuccess;
    }

private:
    void open(const char* name) {
        section_ = &file_.section(name, true);
        if (fault_ == nullptr || section_->lineCount() != 0 || !trv::isAlwaysWritten(name)) return;
        const bool hasHeader = section_->headerLine() >= 0;
        // Without a header of the name, one that differs in case may be meant.
        const int line =
            hasHeader ? section_->headerLine() : file_.section(name, false).headerLine();
        const char* const what = hasHeader   ? "] has no lines"
                                 : line >= 0 ? "] is missing: the name is in another case here"
                                             : "] is missing";
        fault_->notes.push_back(
            {Kind::missingSection, line + 1, 0, name, std::string("section [") + name + what});
    }

    void noteOtherCase(const ContextField& field) {
        if (fault_ == nullptr || !file_.sectionValue(*section_, field.key, false, value_, &line_)) {
            return;
        }
        const std::string name = field.name();
        fault_->notes.push_back({Kind::unknownName, section_->headerLine() + 1 + line_ + 1, 0, name,
                                 name + " is not read: its key is in another case here"});
    }

    void take(const ContextField& field) {
        const trv::NumberReading reading = trv::setFromFile(field, value_, data_);
        if (fault_ == nullptr) return;
        if (reading != trv::NumberReading::whole) noteNumber(field, reading);
        // The record converts the bytes to characters. If converting them back gives other bytes,
        // the value was not text.
        if (field.isText() && (data_.*field.text)() != value_) {
            addNote(Kind::notText, field,
                    " has bytes that are not text: ", "; they are replaced or dropped");
        }
    }

    void noteNumber(const ContextField& field, trv::NumberReading reading) {
        const bool isNone = reading == trv::NumberReading::none;
        if (field.isProximity()) {
            addNote(Kind::notANumber, field, " is not a number: ",
                    isNone ? "; it is read as 0" : "; the number at its beginning is read");
        } else {
            addNote(Kind::notANumber, field, " is not three numbers: ",
                    isNone ? "; it is ignored" : "; the three at its beginning are read");
        }
    }

    void addNote(Kind kind, const ContextField& field, const char* what, const char* consequence) {
        const std::string name = field.name();
        // headerLine() counts from 0, and line_ counts from the line after the header.
        const std::string value = trv::fromNarrow(value_).toStdString();
        const bool isNumber = kind == Kind::notANumber;
        fault_->notes.push_back(
            {kind, section_->headerLine() + 1 + line_ + 1, 0, name,
             name + what + (isNumber ? trv::quoted_number(value) : trv::quoted_beginning(value)) +
                 consequence});
    }

    EFileIOStatus miss(const ContextField& field) {
        if (fault_ != nullptr) {
            trv::set_fault(
                fault_, std::string("section [") + field.section + "] has no \"" + field.key + '"',
                section_->headerLine() + 1);
        }
        return eFileIOContentError;
    }

    const CSectionedFile& file_;
    CMachineContextData& data_;
    CFileFault* const fault_;
    const CSectionedFile::Section* section_ = nullptr;
    std::string value_;
    // Of the value in its section, counted from 0.
    int line_ = 0;
};

// The status if there is no storage for a section. It depends on the section, which is part of the
// interface.
EFileIOStatus withoutStorage(std::string_view section) {
    return section == "part" || section == "clamping_system" ? eFileIOContentError
                                                             : eFileIOStructureError;
}

}  // namespace

CMachineContextIO::CMachineContextIO(QString path) : path_(std::move(path)) {}

CMachineContextIO::~CMachineContextIO() = default;

EFileIOStatus CMachineContextIO::read(CMachineContextData& data, CFileFault* fault) {
    CSectionedFile sections;
    if (sections.parseFile(path_, fault) != 0) return eFileIOOpenError;
    return Reader(sections, data, fault).read();
}

EFileIOStatus CMachineContextIO::readText(std::string_view text, CMachineContextData& data,
                                          CFileFault* fault) {
    CSectionedFile sections;
    if (sections.parse(text, fault) != 0) return eFileIOOpenError;
    return Reader(sections, data, fault).read();
}

EFileIOStatus CMachineContextIO::write(const CMachineContextData& data, trv::file_replacement* held,
                                       CFileFault* fault) {
    const EFileIOStatus status = fill(data, fault);
    return status == eFileIOSuccess ? saveFile(held, fault) : status;
}

EFileIOStatus CMachineContextIO::writeText(std::string& text, const CMachineContextData& data,
                                           CFileFault* fault) {
    CMachineContextIO io{QString()};
    const EFileIOStatus status = io.fill(data, fault);
    if (status == eFileIOSuccess) text = io.text();
    return status;
}

EFileIOStatus CMachineContextIO::fill(const CMachineContextData& data, CFileFault* fault) {
    trv::clear_fault(fault);
    setVersion(trv::contextFormatVersion);
    return writeFields(data, fault);
}

// The status is that of the last section that fails.
EFileIOStatus CMachineContextIO::writeFields(const CMachineContextData& data, CFileFault* fault) {
    const auto& fields = trv::contextFields();
    const ContextField* const end = fields.data() + fields.size();
    EFileIOStatus status = eFileIOSuccess;
    for (const ContextField* first = fields.data(); first != end;) {
        const std::string_view section = first->section;
        const ContextField* const last = std::find_if(
            first, end, [&](const ContextField& field) { return field.section != section; });
        if (!writeSection(first, last, data)) status = withoutStorage(section);
        first = last;
    }
    if (status != eFileIOSuccess) trv::set_fault(fault, "no storage is left for the record");
    return status;
}

// A section that lacks one of its keys must not replace the good one of an existing file, so a key
// that cannot be set counts like a section that cannot be added.
bool CMachineContextIO::writeSection(const ContextField* first, const ContextField* last,
                                     const CMachineContextData& data) {
    int section = -1;
    if (first->section == std::string_view(headerSection)) {
        // The store may have a header already.
        section = findSection(headerSection);
        if (section < 0) section = addSection(headerSection);
        std::string version;
        trv::append_decimal(version, getVersion());
        if (!setText(section, "version", std::move(version))) return false;
    }
    for (const ContextField* field = first; field != last; ++field) {
        std::string value = trv::storedText(*field, data);
        if (value.empty() && !field->isWrittenEmpty) continue;
        if (section < 0) section = addSection(field->section);
        if (!setText(section, field->key, std::move(value))) return false;
    }
    return true;
}

// A line end would begin a line of its own, and that could set any key or open any section.
bool CMachineContextIO::setText(int section, const char* key, std::string value) {
    std::replace_if(
        value.begin(), value.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
    return section >= 0 && setValue(static_cast<std::int16_t>(section), key, value.c_str()) == 0;
}

EFileIOStatus CMachineContextIO::saveFile(trv::file_replacement* held, CFileFault* fault) {
    if (!trv::isOpenable(path_)) {
        trv::set_fault(fault, "not a valid file name");
        return eFileIOOpenError;
    }
    std::string path;
    if (!trv::runtimePath(path_, path)) {
        // Saving uses narrow names. The nearest name in the code page would name another file.
        trv::report_not_opened(trv::own_temporary_name(trv::toNarrow(path_)));
        trv::set_fault(fault, "the local code page lacks a character of the file name");
        return eFileIOOpenError;
    }
    std::optional<trv::file_replacement> own;
    if (held == nullptr) held = &own.emplace(path);
    const bool isOpen = held->is_open();
    const int result = save(path.c_str(), *held);
    if (result >= 0) return eFileIOSuccess;
    // The result is also -1 if there is no storage for the file's name, and is then taken for
    // EPERM. The exhausted storage has been reported through the error channel.
    trv::set_system_fault(fault, isOpen ? -result : held->open_failure());
    return eFileIOOpenError;
}
