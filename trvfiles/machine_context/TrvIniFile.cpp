#include <trvfiles/environment/guards.h>
#include <trvfiles/environment/message_file.h>
#include <trvfiles/environment/message_store.h>
#include <trvfiles/environment/store_writer.h>
#include <trvfiles/environment/store_writer_internal.h>
#include <trvfiles/environment/variables.h>
#include <trvfiles/machine_context/TrvIniFile.h>
#include <trvfiles/support/file_system.h>
#include <trvfiles/support/number_text.h>

#include <memory>
#include <string>
#include <string_view>

namespace {

constexpr char headerSection[] = "header";

const char* textOf(const char* text) {
    return text == nullptr ? "" : text;
}

}  // namespace

// Not the virtual function: the derived part of the object is destroyed already.
TrvIniFile::~TrvIniFile() {
    TrvIniFile::close();
}

int TrvIniFile::load(const char* fileName) {
    // Loading creates the store if there is none, and keeps the existing one after a failure.
    trv::message_store* loaded = trv::load_message_file(document_, fileName);
    if (loaded == nullptr) return -1;
    document_ = loaded;
    if (const char* version = getHeaderValue("version"); version != nullptr) {
        std::string_view digits(version);
        int number = 0;
        trv::scan_decimal(digits, number);
        setVersion(number);
    }
    return 0;
}

int TrvIniFile::save(const char* fileName) {
    return trv::store_parameters(document_, fileName);
}

int TrvIniFile::save(const char* fileName, trv::file_replacement& held) {
    return trv::store_parameters(document_, fileName, held);
}

std::string TrvIniFile::text() const {
    return document_ == nullptr ? std::string() : trv::parameters_text(*document_, "");
}

void TrvIniFile::close() {
    trv::destroy_store(document_);
    document_ = nullptr;
}

int TrvIniFile::getVersion() const {
    return version_;
}

void TrvIniFile::setVersion(int version) {
    version_ = version;
}

int TrvIniFile::findSection(const char* name) const {
    return trv::find_section(document_, name);
}

int TrvIniFile::addSection(const char* name) {
    if (document_ == nullptr) document_ = trv::create_store();
    const std::uint16_t section = trv::add_section(document_, name);
    return section == trv::no_section ? -1 : section;
}

int TrvIniFile::setValue(std::int16_t section, const char* key, const char* value) {
    const std::string line = std::string(textOf(key)) + '=' + textOf(value);
    constexpr std::int32_t setByProgram = -1;
    // It is written when the store is saved, whatever the runtime has switched to for its own
    // texts.
    const trv::record_guard persistent(true);
    return trv::set_parameter(document_, section, line.c_str(), setByProgram, 0);
}

int TrvIniFile::setFloatValue(std::int16_t section, const char* key, float value) {
    return setValue(section, key, floatText(value).c_str());
}

std::string TrvIniFile::floatText(float value) {
    // Part of the format: the text of 1e20 is cut off in its digits.
    constexpr std::size_t maxLength = 19;
    std::string text;
    trv::append_fixed(text, static_cast<double>(value));
    if (text.size() > maxLength) text.resize(maxLength);
    return text;
}

int TrvIniFile::setHeaderValue(const char* key, const char* value) {
    int section = findSection(headerSection);
    if (section < 0) section = addSection(headerSection);
    return setValue(static_cast<std::int16_t>(section), key, value);
}

const char* TrvIniFile::getValue(const char* section, const char* key) const {
    const int index = findSection(section);
    return index < 0 ? nullptr : trv::find_parameter(document_, index, key, false);
}

const char* TrvIniFile::getHeaderValue(const char* key) const {
    return getValue(headerSection, key);
}

int TrvIniFile::lineCount(const char* section) const {
    const int index = findSection(section);
    return index < 0 ? -1 : trv::message_count(document_, index);
}

const char* TrvIniFile::getLine(std::int16_t section, int line) const {
    return trv::get_message(document_, section, line);
}

int TrvIniFile::forEachZoneFile(const char* directory, const char* suffix,
                                int (*callback)(const char* fileName, void* context),
                                void* context) {
    if (callback == nullptr) return -1;
    // The suffix may be the result of an earlier lookup, which the next lookup overwrites.
    const std::string namePattern = std::string("/*") + textOf(suffix);
    if (directory == nullptr) directory = trv::get_variable("TRVZONE");
    const std::string pattern = (directory == nullptr ? "." : directory) + namePattern;
    const std::unique_ptr<trv::file_listing, decltype(&trv::listing_free)> files(
        trv::list_matching(pattern.c_str()), trv::listing_free);
    while (const char* fileName = trv::listing_next(files.get())) {
        if (const int answer = callback(fileName, context); answer != 0) return answer;
    }
    return 0;
}
