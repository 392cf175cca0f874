#include <cli/file_kind.h>
#include <trvfiles/axis/axis_file.h>
#include <trvfiles/machine_context/context_fields.h>
#include <trvfiles/machine_context/sectioned_lines.h>
#include <trvfiles/support/CFileFault.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace trv::cli {
namespace {

constexpr std::size_t beginningLength = 512;

// Before its first "<" an XML file contains only a byte order mark, the zeros of UTF-16 and white
// space.
bool looksLikeXml(std::string_view beginning) {
    constexpr std::string_view skipped("\xEF\xBB\xBF\xFE\xFF\0 \t\r\n", 10);
    const std::size_t first = beginning.find_first_not_of(skipped);
    return first != std::string_view::npos && beginning[first] == '<';
}

bool isAxisFlag(std::string_view beginning) {
    constexpr std::string_view blanks(" \t\r");
    const std::string_view line = beginning.substr(0, beginning.find('\n'));
    const std::size_t first = line.find_first_not_of(blanks);
    if (first == std::string_view::npos) return false;
    const std::string_view flag = line.substr(first, line.find_last_not_of(blanks) + 1 - first);
    return flag == "0" || flag == "1";
}

bool isContextHeader(std::string_view line) {
    std::string_view name;
    if (!settings::isHeader(line, name)) return false;
    const auto& fields = contextFields();
    return std::any_of(fields.begin(), fields.end(),
                       [&](const ContextField& field) { return field.section == name; });
}

// Reads up to the first header of a context, at most a part of the file: geometry files are long.
bool hasContextSection(std::FILE* file) {
    constexpr std::size_t maxBytes = std::size_t{1} << 20;
    constexpr std::size_t blockLength = 16384;
    constexpr std::string_view utf8Signature = "\xEF\xBB\xBF";
    char block[blockLength];
    std::string pending;
    bool isFirstBlock = true;
    for (std::size_t read = 0; read < maxBytes;) {
        const std::size_t length = std::fread(block, 1, sizeof block, file);
        read += length;
        pending.append(block, length);
        std::string_view unread(pending);
        if (isFirstBlock && unread.substr(0, utf8Signature.size()) == utf8Signature) {
            unread.remove_prefix(utf8Signature.size());
        }
        isFirstBlock = false;
        for (std::size_t end = 0; (end = unread.find('\n')) != std::string_view::npos;) {
            if (isContextHeader(unread.substr(0, end))) return true;
            unread.remove_prefix(end + 1);
        }
        if (length == 0) return isContextHeader(unread);
        // A line that is not a header is not needed as a whole.
        pending =
            unread.substr(0, 1) == "[" ? std::string(unread) : std::string(!unread.empty(), ' ');
    }
    return false;
}

}  // namespace

FileKind kindOf(std::FILE* file) {
    constexpr int firstMatrixLine = 2;
    char block[beginningLength];
    const std::string_view beginning(block, std::fread(block, 1, sizeof block, file));
    if (looksLikeXml(beginning)) return FileKind::assembly;

    std::rewind(file);
    AxisContent content;
    CFileFault fault;
    readAxisText(file, content, &fault);
    if (fault.line != firstMatrixLine || isAxisFlag(beginning)) return FileKind::axis;

    std::rewind(file);
    return hasContextSection(file) ? FileKind::machineContext : FileKind::unknown;
}

bool isEmpty(std::FILE* file) {
    std::rewind(file);
    return std::fgetc(file) == EOF;
}

}  // namespace trv::cli
