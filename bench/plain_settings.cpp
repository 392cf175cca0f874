#include <bench/comparison.h>
#include <bench/plain_settings.h>

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace trv::bench {
namespace {

std::string wholeFile(const std::string& path) {
    std::FILE* file = std::fopen(path.c_str(), "r");
    require(file != nullptr, "opening a settings file");
    std::string text;
    char block[65536];
    for (std::size_t count = 0; (count = std::fread(block, 1, sizeof block, file)) != 0;)
        text.append(block, count);
    std::fclose(file);
    return text;
}

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t\r");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t\r") + 1 - first);
}

bool isNameLetter(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

}  // namespace

std::string foldedName(const std::string& name) {
    std::string folded = name;
    for (char& c : folded)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return folded;
}

void loadByHand(const std::string& path, PlainSettings& settings) {
    const std::string text = wholeFile(path);
    std::size_t begin = 0;
    while (begin < text.size()) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        const std::string_view line = std::string_view(text).substr(begin, end - begin);
        begin = end + 1;
        const std::size_t equals = line.find('=');
        if (line.empty() || line[0] == '#' || line[0] == '[') continue;
        if (equals == std::string_view::npos) continue;
        settings[foldedName(std::string(trimmed(line.substr(0, equals))))] =
            trimmed(line.substr(equals + 1));
    }
}

std::string expandByHand(const std::string& text, const PlainSettings& settings) {
    std::string result;
    for (std::size_t i = 0; i < text.size();) {
        if (text[i] != '$') {
            result += text[i++];
            continue;
        }
        const bool isBracketed = i + 1 < text.size() && text[i + 1] == '{';
        std::size_t end = i + (isBracketed ? 2 : 1);
        const std::size_t begin = end;
        while (end < text.size() && isNameLetter(text[end]))
            ++end;
        const std::string name = text.substr(begin, end - begin);
        i = end + (isBracketed ? 1 : 0);
        if (const char* value = std::getenv(name.c_str()); value != nullptr) {
            result += value;
        } else if (const auto found = settings.find(foldedName(name)); found != settings.end()) {
            result += found->second;
        }
    }
    return result;
}

}  // namespace trv::bench
