// Compares a sectioned settings file with the simplest implementation of the rules of the format.

#include <fuzz/harness/own_directory.h>
#include <fuzz/harness/require.h>
#include <fuzz/targets.h>
#include <trvfiles/machine_context/CSectionedFile.h>

#include <filesystem>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace trv::fuzz {
namespace {

struct Section {
    std::vector<std::string> lines;
    int headerLine = -1;
};
using Sections = std::map<std::string, Section>;

struct Entry {
    std::string value;
    int line = 0;
};

std::string trimmed(const std::string& text) {
    constexpr const char* blanks = " \t\f\v\n\r";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::vector<std::string> linesOf(std::string text) {
    if (text.substr(0, 3) == "\xEF\xBB\xBF") text.erase(0, 3);
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        std::string line = text.substr(0, end);
        text.erase(0, end == std::string::npos ? end : end + 1);
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (end != std::string::npos || !line.empty()) lines.push_back(line);
    }
    return lines;
}

void keep(Sections& sections, const std::string& name, const Section& section) {
    bool isBlank = true;
    for (const std::string& line : section.lines)
        isBlank = isBlank && trimmed(line).empty();
    if (!name.empty() || !isBlank) sections[name] = section;
}

Sections parsePlainly(const std::string& text) {
    Sections sections;
    std::string name;
    Section section;
    int number = 0;
    for (const std::string& line : linesOf(text)) {
        const std::size_t end = line.find(']');
        if (line.substr(0, 1) == "[" && end != std::string::npos) {
            keep(sections, name, section);
            name = trimmed(line.substr(1, end - 1));
            section = {{}, number};
        } else {
            section.lines.push_back(line);
        }
        ++number;
    }
    keep(sections, name, section);
    return sections;
}

std::map<std::string, Entry> entriesOf(const Section& section) {
    std::map<std::string, Entry> entries;
    int line = section.headerLine;
    for (const std::string& text : section.lines) {
        ++line;
        const std::size_t equals = text.find('=');
        if (equals == std::string::npos || text[0] == '#') continue;
        entries[trimmed(text.substr(0, equals))] = {trimmed(text.substr(equals + 1)), line};
    }
    return entries;
}

std::string dumpOf(const Sections& sections) {
    std::string dump;
    for (const auto& [name, section] : sections) {
        dump += "[" + name + "]\n";
        for (const std::string& line : section.lines)
            dump += line + "\n";
        const auto entries = entriesOf(section);
        dump += "-- Vars:" + std::to_string(entries.size()) + " --\n";
        for (const auto& [key, entry] : entries)
            dump += key + "={" + entry.value + "}\n";
        dump += "------------------\n";
    }
    return dump;
}

void requireLookups(const CSectionedFile& file, const Sections& sections) {
    for (const auto& [name, section] : sections) {
        require(file.section(name, true).headerLine() == section.headerLine,
                "a section has the line of its header");
        require(file.section(name, true).lineCount() == static_cast<int>(section.lines.size()),
                "the lines of a section are counted");
        for (const auto& [key, entry] : entriesOf(section)) {
            std::string value;
            int line = -1;
            require(file.value(name, true, key, true, value, &line) && value == entry.value &&
                        line == entry.line,
                    "the last line of a key counts");
            require(file.sectionValue(file.section(name, false), key, false, value) ||
                        &file.section(name, false) != &file.section(name, true),
                    "if case is ignored, at least as many keys are found");
        }
    }
}

std::string dumpOf(const CSectionedFile& file) {
    std::ostringstream dump;
    file.dump(dump);
    return dump.str();
}

}  // namespace

void checkSectionedFile(std::string_view input) {
    const std::string text(input);
    const Sections expected = parsePlainly(text);

    CSectionedFile file;
    std::istringstream stream(text);
    require(file.parse(stream) == 0, "any text parses");
    require(dumpOf(file) == dumpOf(expected), "sections, lines and keys are as the rules say");
    requireLookups(file, expected);

    CSectionedFile fromDisk;
    require(fromDisk.parseFile(std::filesystem::path(writeOwnFile("f.ini", text)).wstring()) == 0,
            "any file parses");
    require(dumpOf(fromDisk) == dumpOf(file), "a file and a stream give the same result");
    require(fromDisk.hasUtf8Signature() == (text.substr(0, 3) == "\xEF\xBB\xBF"),
            "a UTF-8 signature is detected");
}

}  // namespace trv::fuzz
