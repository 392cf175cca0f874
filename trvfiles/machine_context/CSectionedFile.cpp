#include <trvfiles/machine_context/CSectionedFile.h>
#include <trvfiles/machine_context/sectioned_lines.h>
#include <trvfiles/support/ascii_case.h>
#include <trvfiles/support/file_fault.h>
#include <trvfiles/text/open_file.h>
#include <trvfiles/text/text_conversion.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <istream>
#include <ostream>
#include <utility>

namespace settings = trv::settings;

namespace {

// No settings file is this long. A Place counts in 32 bits, which is enough for it.
constexpr std::size_t maxBytes = std::size_t{256} << 20;
constexpr std::string_view utf8Signature = "\xEF\xBB\xBF";

// The elements are sorted by name in byte order. A search that ignores case cannot use this order:
// it is linear and takes the first match.
template <class Iterator, class NameOf>
Iterator find(Iterator first, Iterator last, std::string_view name, bool caseSensitive,
              NameOf nameOf) {
    if (!caseSensitive) {
        return std::find_if(first, last, [&](const auto& element) {
            return trv::equal_ignoring_case(nameOf(element), name);
        });
    }
    const auto found = std::lower_bound(
        first, last, name,
        [&](const auto& element, std::string_view wanted) { return nameOf(element) < wanted; });
    return found != last && nameOf(*found) == name ? found : last;
}

int failTooLong(CFileFault* fault) {
    trv::set_fault(fault, "the file is longer than 256 MiB");
    return -1;
}

}  // namespace

int CSectionedFile::parse(std::istream& stream, CFileFault* fault) {
    clear();
    trv::clear_fault(fault);
    if (!stream.good()) {
        trv::set_fault(fault, "the stream cannot be read");
        return -1;
    }
    std::string text;
    for (char c; stream.get(c);) {
        text += c;
        if (text.size() > maxBytes) return failTooLong(fault);
    }
    // The last line of a stream that goes bad is not complete. Without a line end nothing is left.
    const bool endsInMidLine = stream.bad();
    if (endsInMidLine) text.resize(text.rfind('\n') + 1);
    return parseText(std::move(text));
}

int CSectionedFile::parse(std::FILE* file, CFileFault* fault) {
    clear();
    trv::clear_fault(fault);
    std::string text;
    char block[16384];
    std::size_t length = 0;
    // A block that is not full is the last one. A further call would ask the system again, which
    // takes 5 % of the time of a small file.
    do {
        length = std::fread(block, 1, sizeof block, file);
        if (length > maxBytes - text.size()) return failTooLong(fault);
        text.append(block, length);
    } while (length == sizeof block);
    if (std::ferror(file) != 0) {
        trv::set_system_fault(fault, errno);
        return -1;
    }
    return parseText(std::move(text));
}

int CSectionedFile::parse(std::string_view text, CFileFault* fault) {
    clear();
    trv::clear_fault(fault);
    if (text.size() > maxBytes) return failTooLong(fault);
    return parseText(std::string(text));
}

int CSectionedFile::parseFile(const std::wstring& fileName, CFileFault* fault) {
    return parseFile(trv::pathFromWide(fileName).openable(), fault);
}

int CSectionedFile::parseFile(const QString& fileName, CFileFault* fault) {
    clear();
    trv::clear_fault(fault);
    // The C library would allocate a buffer for each file that it opens.
    char buffer[4096];
    const auto file = trv::openForRead(fileName, trv::platform::file_mode::text, fault);
    if (file == nullptr) return -1;
    static_cast<void>(std::setvbuf(file.get(), buffer, _IOFBF, sizeof buffer));
    return parse(file.get(), fault);
}

void CSectionedFile::clear() {
    sections_.clear();
    content_.reset();
    hasUtf8Signature_ = false;
}

int CSectionedFile::parseText(std::string text) {
    content_ = std::make_shared<Content>();
    content_->text = std::move(text);
    // Growing has reserved up to twice the length, and the text stays as long as the object.
    content_->text.shrink_to_fit();
    std::string_view unread = content_->text;
    hasUtf8Signature_ = unread.substr(0, utf8Signature.size()) == utf8Signature;
    if (hasUtf8Signature_) unread.remove_prefix(utf8Signature.size());
    reserve(unread);

    settings::Lines lines(unread);
    std::string_view line;
    std::string_view name;
    std::string_view ofSection = unread;
    int lineNumber = 0;
    open({}, -1);
    for (std::string_view before = unread; lines.next(line); before = lines.rest(), ++lineNumber) {
        if (settings::isHeader(line, name)) {
            ofSection.remove_suffix(before.size());
            close(ofSection);
            open(name, lineNumber);
            ofSection = lines.rest();
        } else {
            takeLine(line);
        }
    }
    close(ofSection);
    sortSections();
    return 0;
}

// Reserves exactly what the text holds. A list that grows by doubling would take three times its
// size at the last step. A section with a name takes 24 bytes and its header at least 4, "[a]" and
// a line end; a key takes 12 bytes and its line at least 2. So both lists take at most 6 times the
// size of the text.
void CSectionedFile::reserve(std::string_view unread) {
    // The section above the first header, and a section with an empty name until it is closed.
    constexpr std::size_t unnamedSections = 2;
    const settings::Counts counts = settings::countOf(unread);
    sections_.reserve(counts.sections + unnamedSections);
    content_->keys.reserve(counts.keys);
}

CSectionedFile::Place CSectionedFile::placeOf(std::string_view part) const {
    return {static_cast<std::uint32_t>(part.data() - content_->text.data()),
            static_cast<std::uint32_t>(part.size())};
}

void CSectionedFile::open(std::string_view name, int headerLine) {
    Section& section = sections_.emplace_back();
    if (headerLine >= 0) section.name_ = placeOf(name);
    section.headerLine_ = headerLine;
    section.firstKey_ = static_cast<std::uint32_t>(content_->keys.size());
}

void CSectionedFile::takeLine(std::string_view line) {
    Section& section = sections_.back();
    const int index = section.lineCount_++;
    std::string_view key;
    if (settings::isKeyLine(line, key)) content_->keys.push_back({placeOf(key), index});
}

// @param lines  all lines of the section
void CSectionedFile::close(std::string_view lines) {
    Section& section = sections_.back();
    if (section.name_.length != 0) {
        sortKeys(section);
        return;
    }
    // The first section has no name. A later one without a name replaces it, unless all of its
    // lines are blank.
    const bool isBlank = settings::trimmed(lines).empty();
    if (isBlank) section.lineCount_ = 0;
    if (!isBlank) sortKeys(section);
    if (sections_.size() == 1) return;
    if (!isBlank) sections_.front() = section;
    sections_.pop_back();
}

void CSectionedFile::sortKeys(Section& section) {
    // The last line of a key is sorted first, and std::unique() keeps the first one.
    const char* const text = content_->text.data();
    std::vector<KeyLine>& keys = content_->keys;
    const auto first = keys.begin() + static_cast<std::ptrdiff_t>(section.firstKey_);
    std::sort(first, keys.end(), [text](const KeyLine& left, const KeyLine& right) {
        const int order = left.key.in(text).compare(right.key.in(text));
        return order != 0 ? order < 0 : left.index > right.index;
    });
    const auto isSameKey = [text](const KeyLine& left, const KeyLine& right) {
        return left.key.in(text) == right.key.in(text);
    };
    keys.erase(std::unique(first, keys.end(), isSameKey), keys.end());
    section.keyCount_ = static_cast<std::uint32_t>(keys.size()) - section.firstKey_;
}

void CSectionedFile::sortSections() {
    // The last section of a name is sorted first, and std::unique() keeps the first one.
    const char* const text = content_->text.data();
    std::sort(sections_.begin(), sections_.end(),
              [text](const Section& left, const Section& right) {
                  const int order = left.name_.in(text).compare(right.name_.in(text));
                  return order != 0 ? order < 0 : left.headerLine_ > right.headerLine_;
              });
    const auto isSameName = [text](const Section& left, const Section& right) {
        return left.name_.in(text) == right.name_.in(text);
    };
    sections_.erase(std::unique(sections_.begin(), sections_.end(), isSameName), sections_.end());
    // The empty name is sorted first.
    if (sections_.front().lineCount_ == 0) sections_.erase(sections_.begin());
}

const CSectionedFile::Section& CSectionedFile::section(const std::string& name,
                                                       bool caseSensitive) const {
    // The result is a reference, so a section that is missing needs an object, too.
    static const Section none;
    if (sections_.empty()) return none;
    const char* const text = content_->text.data();
    const auto nameOf = [text](const Section& section) { return section.name_.in(text); };
    const auto found = find(sections_.begin(), sections_.end(), name, caseSensitive, nameOf);
    return found == sections_.end() ? none : *found;
}

bool CSectionedFile::sectionValue(const Section& section, const std::string& key,
                                  bool caseSensitive, std::string& value, int* lineNumber) const {
    if (section.keyCount_ == 0) return false;
    const KeyLine* const first = content_->keys.data() + section.firstKey_;
    const KeyLine* const last = first + section.keyCount_;
    const char* const text = content_->text.data();
    const auto keyOf = [text](const KeyLine& line) { return line.key.in(text); };
    const KeyLine* const line = find(first, last, key, caseSensitive, keyOf);
    if (line == last) return false;
    value = valueOf(*line);
    if (lineNumber != nullptr) *lineNumber = line->index;
    return true;
}

bool CSectionedFile::value(const std::string& sectionName, bool sectionCaseSensitive,
                           const std::string& key, bool keyCaseSensitive, std::string& value,
                           int* lineNumber) const {
    const Section& found = section(sectionName, sectionCaseSensitive);
    if (!sectionValue(found, key, keyCaseSensitive, value, lineNumber)) return false;
    if (lineNumber != nullptr) *lineNumber += found.headerLine() + 1;
    return true;
}

// A key ends before the first "=" of its line, so the first "=" after it is that one.
std::string_view CSectionedFile::valueOf(const KeyLine& line) const {
    std::string_view rest =
        std::string_view(content_->text).substr(line.key.start + line.key.length);
    rest = rest.substr(0, rest.find('\n'));
    return settings::trimmed(rest.substr(rest.find('=') + 1));
}

// The text from the first line of a section to the end of the file.
std::string_view CSectionedFile::textFrom(const Section& section) const {
    const std::string_view text = content_->text;
    if (section.headerLine_ < 0) return text.substr(hasUtf8Signature_ ? utf8Signature.size() : 0);
    const std::size_t headerEnd = text.find('\n', section.name_.start + section.name_.length);
    return headerEnd == std::string_view::npos ? std::string_view() : text.substr(headerEnd + 1);
}

void CSectionedFile::dump(std::ostream& stream) const {
    if (sections_.empty()) return;
    const char* const text = content_->text.data();
    for (const Section& section : sections_) {
        stream << '[' << section.name_.in(text) << "]\n";
        settings::Lines lines(textFrom(section));
        std::string_view line;
        for (int index = 0; index < section.lineCount_ && lines.next(line); ++index)
            stream << line << '\n';
        stream << "-- Vars:" << section.keyCount_ << " --\n";
        const KeyLine* const first = content_->keys.data() + section.firstKey_;
        for (const KeyLine* key = first; key != first + section.keyCount_; ++key)
            stream << key->key.in(text) << "={" << valueOf(*key) << "}\n";
        stream << "------------------\n";
    }
}
