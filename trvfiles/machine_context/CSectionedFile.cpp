#include <trvfiles/facade/open_file.h>
#include <trvfiles/facade/text_conversion.h>
#include <trvfiles/machine_context/CSectionedFile.h>
#include <trvfiles/support/ascii_case.h>

#include <algorithm>
#include <cstddef>
#include <istream>
#include <ostream>
#include <utility>

namespace {

constexpr std::size_t mostBytes = std::size_t{256} << 20;
constexpr std::string_view utf8Signature = "\xEF\xBB\xBF";

// The set is the format's own: " \t\f\v\n\r".
constexpr bool isBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

// Takes lines off the front of a text.
class Lines {
public:
    explicit Lines(std::string_view text) : rest_(text) {}

    // The next line without its end. False at the end of the text; an empty line there, which may
    // have been a lone CR, is none.
    bool next(std::string_view& line) {
        const std::size_t end = rest_.find('\n');
        const bool isTerminated = end != std::string_view::npos;
        line = rest_.substr(0, end);
        rest_.remove_prefix(isTerminated ? end + 1 : rest_.size());
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        return isTerminated || !line.empty();
    }

    std::string_view rest() const { return rest_; }

private:
    std::string_view rest_;
};

bool isHeader(std::string_view line, std::string_view& name) {
    if (line.empty() || line.front() != '[') return false;
    const std::size_t end = line.find(']');
    if (end == std::string_view::npos) return false;
    name = trimmed(line.substr(1, end - 1));
    return true;
}

bool isKeyLine(std::string_view line, std::string_view& key, std::string_view& value) {
    if (line.empty() || line.front() == '#') return false;
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) return false;
    key = trimmed(line.substr(0, equals));
    value = trimmed(line.substr(equals + 1));
    return true;
}

// Finds a name among elements that are sorted by it; the first that matches where case is ignored.
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

}  // namespace

int CSectionedFile::parse(std::istream& stream) {
    clear();
    if (!stream.good()) return -1;
    std::string text;
    for (char c; stream.get(c);) {
        text += c;
        if (text.size() > mostBytes) return -1;
    }
    const bool endsInMidLine = stream.bad();
    if (endsInMidLine) text.resize(text.rfind('\n') + 1);
    return parseText(std::move(text));
}

int CSectionedFile::parse(std::FILE* file) {
    clear();
    std::string text;
    char block[16384];
    std::size_t length = 0;
    while ((length = std::fread(block, 1, sizeof block, file)) != 0) {
        if (length > mostBytes - text.size()) return -1;
        text.append(block, length);
    }
    if (std::ferror(file) != 0) return -1;
    return parseText(std::move(text));
}

int CSectionedFile::parseFile(const std::wstring& fileName) {
    return parseFile(trv::pathFromWide(fileName).openable());
}

int CSectionedFile::parseFile(const QString& fileName) {
    clear();
    char buffer[4096];
    const auto file = trv::openForRead(fileName, trv::platform::file_mode::text);
    if (file == nullptr) return -1;
    static_cast<void>(std::setvbuf(file.get(), buffer, _IOFBF, sizeof buffer));
    return parse(file.get());
}

void CSectionedFile::clear() {
    sections_.clear();
    content_.reset();
    hasUtf8Signature_ = false;
}

int CSectionedFile::parseText(std::string text) {
    constexpr std::size_t usualSections = 8;
    constexpr std::size_t usualKeys = 16;
    content_ = std::make_shared<Content>();
    content_->text = std::move(text);
    content_->keys.reserve(usualKeys);
    sections_.reserve(usualSections);

    std::string_view unread = content_->text;
    hasUtf8Signature_ = unread.substr(0, utf8Signature.size()) == utf8Signature;
    if (hasUtf8Signature_) unread.remove_prefix(utf8Signature.size());

    Lines lines(unread);
    open({}, -1, unread);
    std::string_view line;
    std::string_view name;
    int lineNumber = 0;
    for (std::string_view before = unread; lines.next(line); before = lines.rest(), ++lineNumber) {
        if (isHeader(line, name)) {
            close(before);
            open(name, lineNumber, lines.rest());
        } else {
            takeLine(line);
        }
    }
    close({});
    sortSections();
    return 0;
}

// @param rest  what follows the header
void CSectionedFile::open(std::string_view name, int headerLine, std::string_view rest) {
    Section& section = sections_.emplace_back();
    section.name_ = name;
    section.text_ = rest;
    section.headerLine_ = headerLine;
    section.keys_ = &content_->keys;
    section.firstKey_ = content_->keys.size();
}

void CSectionedFile::takeLine(std::string_view line) {
    Section& section = sections_.back();
    Section::KeyLine keyLine = {{}, {}, section.lineCount_++};
    if (isKeyLine(line, keyLine.key, keyLine.value)) content_->keys.push_back(keyLine);
}

// @param rest  what follows the last line of the section
void CSectionedFile::close(std::string_view rest) {
    Section& section = sections_.back();
    section.text_.remove_suffix(rest.size());
    if (section.name_.empty() && trimmed(section.text_).empty()) {
        sections_.pop_back();
        return;
    }
    // The last line of a key first, which is the one that stays.
    std::vector<Section::KeyLine>& keys = content_->keys;
    const auto first = keys.begin() + static_cast<std::ptrdiff_t>(section.firstKey_);
    std::sort(first, keys.end(), [](const Section::KeyLine& left, const Section::KeyLine& right) {
        const int order = left.key.compare(right.key);
        return order != 0 ? order < 0 : left.index > right.index;
    });
    const auto isSameKey = [](const Section::KeyLine& left, const Section::KeyLine& right) {
        return left.key == right.key;
    };
    keys.erase(std::unique(first, keys.end(), isSameKey), keys.end());
    section.keyCount_ = keys.size() - section.firstKey_;
}

void CSectionedFile::sortSections() {
    // The last section of a name first, which is the one that stays.
    std::sort(sections_.begin(), sections_.end(), [](const Section& left, const Section& right) {
        const int order = left.name_.compare(right.name_);
        return order != 0 ? order < 0 : left.headerLine_ > right.headerLine_;
    });
    const auto isSameName = [](const Section& left, const Section& right) {
        return left.name_ == right.name_;
    };
    sections_.erase(std::unique(sections_.begin(), sections_.end(), isSameName), sections_.end());
}

const CSectionedFile::Section& CSectionedFile::section(const std::string& name,
                                                       bool caseSensitive) const {
    static const Section none;
    const auto nameOf = [](const Section& section) { return section.name_; };
    const auto found = find(sections_.begin(), sections_.end(), name, caseSensitive, nameOf);
    return found == sections_.end() ? none : *found;
}

bool CSectionedFile::sectionValue(const Section& section, const std::string& key,
                                  bool caseSensitive, std::string& value, int* lineNumber) const {
    if (section.keyCount_ == 0) return false;
    const auto keyOf = [](const Section::KeyLine& line) { return line.key; };
    const auto line = find(section.begin(), section.end(), key, caseSensitive, keyOf);
    if (line == section.end()) return false;
    value = line->value;
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

void CSectionedFile::dump(std::ostream& stream) const {
    for (const Section& section : sections_) {
        stream << '[' << section.name_ << "]\n";
        Lines lines(section.text_);
        for (std::string_view line; lines.next(line);)
            stream << line << '\n';
        stream << "-- Vars:" << section.keyCount_ << " --\n";
        for (const Section::KeyLine& line : section)
            stream << line.key << "={" << line.value << "}\n";
        stream << "------------------\n";
    }
}
