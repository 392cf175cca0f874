#include <cli/context_fields.h>
#include <cli/context_rewrite.h>
#include <cli/context_values.h>
#include <cli/input_files.h>
#include <trvfiles/machine_context/CSectionedFile.h>
#include <trvfiles/machine_context/sectioned_lines.h>
#include <trvfiles/text/open_file.h>
#include <trvfiles/text/text_conversion.h>

#include <set>
#include <sstream>
#include <string>
#include <string_view>

namespace trv::cli {
namespace {

std::string bytesOf(const QString& name) {
    std::string content;
    const auto file = openForRead(resolved(name), platform::file_mode::binary);
    if (file == nullptr) return content;
    char block[4096];
    while (const std::size_t length = std::fread(block, 1, sizeof block, file.get()))
        content.append(block, length);
    return content;
}

// The lines, counted from 0, that a written file has as well.
std::set<int> keptLines(const CSectionedFile& file) {
    std::set<int> lines;
    std::string value;
    int line = 0;
    for (const ContextField& field : contextFields()) {
        lines.insert(file.section(field.section, true).headerLine());
        if (file.value(field.section, true, field.key, true, value, &line)) lines.insert(line);
    }
    const bool isVersioned = file.value("header", true, "version", true, value, &line);
    if (isVersioned && value == std::to_string(contextFormatVersion)) lines.insert(line);
    return lines;
}

// Whether nothing follows the "]" of a header.
bool isWholeHeader(std::string_view line) {
    return settings::trimmed(line.substr(line.find(']') + 1)).empty();
}

void findLine(const std::string& content, const CSectionedFile& file, RewriteLoss& loss) {
    const std::set<int> kept = keptLines(file);
    constexpr std::size_t signatureLength = 3;
    std::string_view rest(content);
    if (file.hasUtf8Signature()) rest.remove_prefix(signatureLength);
    for (int number = 0; !rest.empty(); ++number) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
        const std::string_view text = settings::trimmed(line);
        if (text.empty()) continue;
        const bool isKept = kept.count(number) != 0;
        if (isKept && (line.front() != '[' || isWholeHeader(line))) continue;
        loss.line = number + 1;
        loss.lineText = fromNarrow(std::string(text));
        return;
    }
}

// Why a value of a file would change; empty if it would not.
QString whyChanges(const ContextField& field, const std::string& bytes) {
    const QString value = fromNarrow(bytes);
    if (toNarrow(value) != bytes) return QStringLiteral("it holds bytes that are not text");
    if (field.isText()) return whyTextChanges(value);
    double numbers[3] = {};
    if (field.isProximity()) {
        if (!readNumbers(value, numbers, 1)) return QStringLiteral("it is not a number");
        return comesBack(numbers[0]) ? QString()
                                     : QStringLiteral("the number is too large for a file");
    }
    return readNumbers(value, numbers, 3) ? QString() : QStringLiteral("it is not three numbers");
}

void findValue(const CSectionedFile& file, const QStringList& newFields, RewriteLoss& loss) {
    for (const ContextField& field : contextFields()) {
        std::string value;
        if (newFields.contains(nameOf(field))) continue;
        if (!file.value(field.section, true, field.key, true, value)) continue;
        loss.reason = whyChanges(field, value);
        if (loss.reason.isEmpty()) continue;
        loss.field = nameOf(field);
        loss.value = fromNarrow(value);
        return;
    }
}

}  // namespace

// The whole file is compared with what is read of it: on Windows reading ends at a Ctrl-Z.
RewriteLoss rewriteLoss(const QString& name, const QStringList& newFields) {
    const std::string content = bytesOf(name);
    std::istringstream stream(content);
    CSectionedFile whole;
    CSectionedFile read;
    RewriteLoss loss;
    if (whole.parse(stream) != 0 || read.parseFile(resolved(name)) != 0) return loss;
    findLine(content, read, loss);
    findValue(whole, newFields, loss);
    return loss;
}

}  // namespace trv::cli
