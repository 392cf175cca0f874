#include <cli/file_kind.h>
#include <trvfiles/axis/axis_file.h>
#include <trvfiles/machine_context/context_fields.h>
#include <trvfiles/machine_context/sectioned_lines.h>
#include <trvfiles/support/CFileFault.h>

#include <algorithm>
#include <string_view>

namespace trv::cli {
namespace {

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

bool hasContextSection(std::string_view text) {
    constexpr std::string_view utf8Signature = "\xEF\xBB\xBF";
    if (text.substr(0, utf8Signature.size()) == utf8Signature)
        text.remove_prefix(utf8Signature.size());
    for (std::size_t end = 0; (end = text.find('\n')) != std::string_view::npos;) {
        if (isContextHeader(text.substr(0, end))) return true;
        text.remove_prefix(end + 1);
    }
    return isContextHeader(text);
}

}  // namespace

// Before its first "<" an XML file contains only a byte order mark, the zeros of UTF-16 and white
// space.
bool looksLikeXml(std::string_view beginning) {
    constexpr std::string_view skipped("\xEF\xBB\xBF\xFE\xFF\0 \t\r\n", 10);
    constexpr std::size_t maxLength = 512;
    const std::string_view examined = beginning.substr(0, maxLength);
    const std::size_t first = examined.find_first_not_of(skipped);
    return first != std::string_view::npos && examined[first] == '<';
}

FileKind kindOf(std::string_view beginning) {
    constexpr int firstMatrixLine = 2;
    if (looksLikeXml(beginning)) return FileKind::assembly;
    AxisContent content;
    CFileFault fault;
    readAxisBytes(beginning, content, &fault);
    if (fault.line != firstMatrixLine || isAxisFlag(beginning)) return FileKind::axis;
    return hasContextSection(beginning) ? FileKind::machineContext : FileKind::unknown;
}

}  // namespace trv::cli
