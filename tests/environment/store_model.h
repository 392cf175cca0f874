#pragma once

#include <cstddef>
#include <cstdint>
#include <iomanip>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace trv::testing {

/// The simplest implementation of a store: every lookup is a walk, every text is a string.
///
/// The model takes the offset of each text from the store under test, because references name texts
/// by it. Everything else it computes itself.
class StoreModel {
public:
    static constexpr int none = -1;

    struct Text {
        std::string text;
        std::string file;  // empty for set by program
        int line = 0;
        bool persistent = false;
        bool deleted = false;
        int previous = none;
        std::int32_t offset = none;
    };
    struct Section {
        std::string name;
        std::vector<int> slots;
    };

    std::vector<Text> texts;
    std::vector<Section> sections;
    bool recordFlag = true;

    static bool isEntry(const std::string& text) { return text.find('=') != std::string::npos; }
    static std::string skipBlanks(const std::string& text) {
        std::size_t start = 0;
        while (start < text.size() && isBlank(text[start]))
            ++start;
        return text.substr(start);
    }
    static std::string nameOf(const std::string& text) {
        std::string name = skipBlanks(text.substr(0, text.find('=')));
        while (!name.empty() && isBlank(name.back()))
            name.pop_back();
        return name;
    }
    static std::string valueOf(const std::string& text) {
        return skipBlanks(isEntry(text) ? text.substr(text.find('=') + 1) : text);
    }

    static std::string reference(std::int32_t offset) {
        std::ostringstream digits;
        digits << std::hex << std::uppercase << std::setw(8) << std::setfill('0') << offset;
        return "+(" + digits.str() + ")";
    }

    int findSection(const std::string& name) const {
        for (std::size_t i = 0; i < sections.size(); ++i)
            if (sections[i].name == name) return static_cast<int>(i);
        return none;
    }

    const Text& message(int section, int number) const { return at(idOf(section, number)); }
    int count(int section) const { return static_cast<int>(slots(section).size()); }

    /// The number of the first entry of a name, or `none`.
    int findEntry(int section, const std::string& name, bool exact, bool live) const {
        for (int number = 0; number < count(section); ++number) {
            const Text& text = message(section, number);
            if (!isEntry(text.text) || (live && text.deleted)) continue;
            const std::string found = nameOf(text.text);
            if (exact ? found == name : lowerCase(found) == lowerCase(name)) return number;
        }
        return none;
    }

    void append(int section, const std::string& text, const std::string& file, int line) {
        slots(section).push_back(add(text, file, line, none));
    }
    void replace(int section, int number, const std::string& text, const std::string& file,
                 int line) {
        const int old = idOf(section, number);
        slots(section)[static_cast<std::size_t>(number)] =
            add(withReferences(text, texts[static_cast<std::size_t>(old)].offset), file, line, old);
    }
    /// The number of the entry that was set, or `none` if the text is not an entry.
    int setParameter(int section, const std::string& text, const std::string& file, int line) {
        const std::string entry = skipBlanks(text);
        if (!isEntry(entry)) return none;
        const int number = findEntry(section, nameOf(entry), true, false);
        if (number != none) {
            replace(section, number, entry, file, line);
            return number;
        }
        append(section, entry, file, line);
        return count(section) - 1;
    }
    bool remove(int section, const std::string& name) {
        const int number = findEntry(section, name, true, false);
        if (number == none) return false;
        for (int id = idOf(section, number); id != none; id = at(id).previous)
            at(id).deleted = true;
        return true;
    }

    void convertNewlines() {
        for (const Section& section : sections) {
            for (const int id : section.slots) {
                std::string& text = at(id).text;
                for (std::size_t i = text.find("\\n"); i != std::string::npos;
                     i = text.find("\\n", i))
                    text.replace(i, 2, "\n");
            }
        }
    }

    std::string resolve(int section, int number) const {
        int id = idOf(section, number);
        std::string value = valueOf(at(id).text);
        std::vector<int> owner(value.size(), id);
        for (std::size_t i = 0; i < value.size();) {
            if (value.compare(i, 2, "++") == 0) {
                value.erase(i, 1);
                owner.erase(owner.begin() + static_cast<std::ptrdiff_t>(i));
                ++i;
            } else if (value[i] == '+' && isReference(value, i)) {
                const int earlier = textAt(std::stoull(value.substr(i + 2, 8), nullptr, 16));
                const int around = owner[i];
                if (earlier != none && at(earlier).offset < at(around).offset) {
                    insert(value, owner, i, 11, valueOf(at(earlier).text), earlier);
                } else {
                    insert(value, owner, i, 1, "$(TRVNULL)", around);
                    i += 10;
                }
            } else {
                ++i;
            }
        }
        return value;
    }

    /// The file that a save of the parameters of `file` has to make; the texts in it belong to the
    /// file from then on.
    std::string saveParameters(const std::string& file) {
        std::string content;
        int line = 1;
        for (const Section& section : sections) {
            bool header = false;
            for (const int slot : section.slots) {
                int id = slot;
                const Text& current = at(id);
                if (!current.file.empty() || !current.persistent || current.deleted) {
                    while (id != none && (at(id).deleted || at(id).file != file))
                        id = at(id).previous;
                }
                if (id == none) continue;
                if (!header) content += "[" + section.name + "]\n";
                line += header ? 0 : 1;
                header = true;
                content += withoutReferences(at(id).text) + "\n";
                at(id).file = file;
                at(id).line = line++;
            }
        }
        return content;
    }

    std::string saveMessages() {
        std::string content;
        int line = 1;
        for (const Section& section : sections) {
            content += "[" + section.name + "]\n";
            ++line;
            for (const int id : section.slots) {
                content += withoutReferences(at(id).text) + "\n";
                at(id).line = line++;
            }
        }
        return content;
    }

    static std::string withoutReferences(const std::string& text) {
        std::size_t i = isEntry(text) ? text.find('=') + 1 : 0;
        std::string plain = text.substr(0, i);
        while (i < text.size()) {
            plain += text[i];
            if (text[i] != '+') {
                ++i;
            } else if (text.compare(i, 2, "++") == 0) {
                plain += '+';
                i += 2;
            } else {
                const std::size_t closer = text.find(')', i);
                i = (closer == std::string::npos ? i : closer) + 1;
            }
        }
        return plain;
    }

    std::map<std::int64_t, int> idsByOffset;

    int idOf(int section, int number) const {
        return slots(section)[static_cast<std::size_t>(number)];
    }
    Text& at(int id) { return texts[static_cast<std::size_t>(id)]; }
    const Text& at(int id) const { return texts[static_cast<std::size_t>(id)]; }

private:
    static bool isBlank(char c) { return c >= '\x01' && c <= ' '; }
    static std::string lowerCase(std::string text) {
        for (char& c : text)
            c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
        return text;
    }
    static bool isReference(const std::string& text, std::size_t plus) {
        return text.size() >= plus + 11 && text[plus + 1] == '(' && text[plus + 10] == ')' &&
               text.find_first_not_of("0123456789ABCDEFabcdef", plus + 2) == plus + 10;
    }
    static std::string withReferences(const std::string& text, std::int32_t offset) {
        std::string changed = text;
        std::size_t i = isEntry(text) ? text.find('=') + 1 : 0;
        while ((i = changed.find('+', i)) != std::string::npos) {
            if (changed.compare(i, 2, "++") == 0) {
                i += 2;
            } else {
                changed.replace(i, 1, reference(offset));
                i += reference(offset).size();
            }
        }
        return changed;
    }
    static void insert(std::string& value, std::vector<int>& owner, std::size_t at,
                       std::size_t removed, const std::string& inserted, int id) {
        const auto place = owner.begin() + static_cast<std::ptrdiff_t>(at);
        owner.insert(owner.erase(place, place + static_cast<std::ptrdiff_t>(removed)),
                     inserted.size(), id);
        value.replace(at, removed, inserted);
    }

    std::vector<int>& slots(int section) {
        return sections[static_cast<std::size_t>(section)].slots;
    }
    const std::vector<int>& slots(int section) const {
        return sections[static_cast<std::size_t>(section)].slots;
    }
    int textAt(std::uint64_t offset) const {
        const auto found = idsByOffset.find(static_cast<std::int64_t>(offset));
        return found == idsByOffset.end() ? none : found->second;
    }
    int add(const std::string& text, const std::string& file, int line, int previous) {
        texts.push_back({text, file, line, recordFlag, false, previous, none});
        return static_cast<int>(texts.size()) - 1;
    }
};

}  // namespace trv::testing
