#include <cli/context_values.h>
#include <trvfiles/environment/entry_text.h>
#include <trvfiles/machine_context/context_fields.h>
#include <trvfiles/machine_context/sectioned_lines.h>
#include <trvfiles/support/number_text.h>
#include <trvfiles/text/text_conversion.h>

#include <cmath>
#include <string_view>

namespace trv::cli {
namespace {

bool hasBlankAtAnEnd(std::string_view text) {
    return settings::trimmed(text).size() < text.size();
}

// Checks the line that the store writes: the store takes what follows a "+" for a reference.
bool losesReference(const std::string& value) {
    const std::string line = "=" + value;
    return without_references(line) != line;
}

}  // namespace

QString whyTextChanges(const QString& text) {
    constexpr QChar endOfTextFile(0x1A);
    if (text.contains(QLatin1Char('\n')) || text.contains(QLatin1Char('\r'))) {
        return QStringLiteral("a line end becomes a blank");
    }
    if (text.contains(QChar(0))) return QStringLiteral("what follows a zero is lost");
    const std::string narrow = toNarrow(text);
    if (fromNarrow(narrow) != text) {
        return QStringLiteral("the local code page lacks one of its characters");
    }
    if (text.contains(QChar::ReplacementCharacter)) {
        return QStringLiteral("it holds bytes that are not text");
    }
    if (hasBlankAtAnEnd(narrow)) return QStringLiteral("blanks at its ends are lost");
    if (losesReference(narrow)) {
        return QStringLiteral("what is between a \"+\" and a later \")\" is lost");
    }
    if (text.contains(endOfTextFile)) return QStringLiteral("code 26 ends the file on Windows");
    return {};
}

bool readNumbers(const QString& text, double* numbers, int count) {
    const std::string narrow = toNarrow(text);
    std::string_view rest(narrow);
    for (int i = 0; i < count; ++i) {
        const std::string_view before = rest;
        skip_white_space(rest);
        const bool isApart = i == 0 || rest.size() != before.size();
        if (!isApart || !scan_number(rest, numbers[i])) return false;
    }
    skip_white_space(rest);
    return rest.empty();
}

bool comesBack(double value) {
    constexpr double decimals = 1e-6;
    constexpr double singlePrecision = 1e-7;
    const std::string text = proximityText(value);
    std::string_view rest(text);
    double read = 0;
    scan_number(rest, read);
    if (std::isnan(value) || std::isinf(value) || std::isinf(read)) {
        return std::isnan(value) ? std::isnan(read) : value == read;
    }
    return std::fabs(value - read) <= decimals + singlePrecision * std::fabs(value);
}

}  // namespace trv::cli
